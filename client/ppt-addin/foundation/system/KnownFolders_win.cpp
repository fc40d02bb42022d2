#include <windows.h>

#include <shlobj.h>

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

Wide ShellFolder(int csidl) {
  wchar_t path[MAX_PATH] = {};
  if (FAILED(SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path))) return {};
  return FromWinText(path);
}

Wide FileNameOf(HMODULE module) {
  wchar_t path[MAX_PATH] = {};
  const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
  // A path that fills the buffer was cut, and its folder would be somebody else's.
  if (length == 0 || length == MAX_PATH) return {};
  return FromWinText({path, length});
}

}  // namespace

Wide LocalDataFolder() {
  return ShellFolder(CSIDL_LOCAL_APPDATA);
}
Wide RoamingDataFolder() {
  return ShellFolder(CSIDL_APPDATA);
}

Wide ModulePath() {
  HMODULE module = nullptr;
  const auto* own = reinterpret_cast<const wchar_t*>(&ModulePath);
  if (!GetModuleHandleExW(
          GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
          own, &module)) {
    return {};
  }
  return FileNameOf(module);
}

const Wide& ProcessImageName() {
  static const Wide name = LastComponent(FileNameOf(nullptr));
  return name;
}

}  // namespace quillmarch
