#include "shell/windows/SystemRegistration.h"

#include <windows.h>

#include <oleauto.h>

#include "foundation/automation/ComPtr.h"
#include "foundation/system/KnownFolders.h"
#include "foundation/system/WinText.h"
#include "shell/windows/TypeLibrary.h"

namespace quillmarch::addin {

// The compiler's headers leave these out; the import library has them.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* helpFolder);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID id, WORD major, WORD minor, LCID locale,
                                        SYSKIND system);
}

std::uint32_t SystemRegistration::ThreadLocale() {
  return GetThreadLocale();
}

void SystemRegistration::SetThreadLocale(std::uint32_t locale) {
  ::SetThreadLocale(locale);
}

ResultCode SystemRegistration::RegisterTypeLibrary() {
  std::wstring path = ToWinText(ModulePath());
  if (path.empty()) return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
  ComPtr<ITypeLib> library;
  const HRESULT loaded = LoadTypeLib(path.c_str(), library.put());
  if (FAILED(loaded)) return loaded;
  return RegisterTypeLibForUser(library.get(), path.data(), nullptr);
}

ResultCode SystemRegistration::UnregisterTypeLibrary() {
  return UnRegisterTypeLibForUser(kPptAddinLibrary, kLibraryMajor, kLibraryMinor, LOCALE_NEUTRAL,
                                  SYS_WIN64);
}

}  // namespace quillmarch::addin
