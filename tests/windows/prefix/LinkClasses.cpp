// Makes a Wine prefix show the user's classes where the system's are looked for:
//   link_classes
// On Windows the classes that everybody sees are the machine's with the user's over them. Wine
// shows the machine's alone, so that what is registered for the user is never found. The user's
// branch becomes a link to the machine's. Does nothing where that has been done.
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

constexpr wchar_t kClasses[] = L"Software\\Classes";
constexpr wchar_t kTarget[] = L"\\Registry\\Machine\\Software\\Classes";

bool IsLink() {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, kClasses, REG_OPTION_OPEN_LINK, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return false;
  }
  DWORD type = 0;
  const LSTATUS status =
      RegQueryValueExW(key, L"SymbolicLinkValue", nullptr, &type, nullptr, nullptr);
  RegCloseKey(key);
  return status == ERROR_SUCCESS && type == REG_LINK;
}

}  // namespace

int main() {
  if (IsLink()) return 0;
  RegDeleteTreeW(HKEY_CURRENT_USER, kClasses);
  RegDeleteKeyW(HKEY_CURRENT_USER, kClasses);
  HKEY key = nullptr;
  LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER, kClasses, 0, nullptr, REG_OPTION_CREATE_LINK,
                                   KEY_WRITE | KEY_CREATE_LINK, nullptr, &key, nullptr);
  if (status == ERROR_SUCCESS) {
    status =
        RegSetValueExW(key, L"SymbolicLinkValue", 0, REG_LINK,
                       reinterpret_cast<const BYTE*>(kTarget), sizeof kTarget - sizeof *kTarget);
    RegCloseKey(key);
  }
  if (status != ERROR_SUCCESS) std::fprintf(stderr, "link_classes: error %ld\n", long{status});
  return status == ERROR_SUCCESS ? 0 : 1;
}
