#include <windows.h>

#include "foundation/system/LiveCounts.h"
#include "foundation/system/Registry.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

class RegistryKey {
 public:
  RegistryKey() = default;
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;
  ~RegistryKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  HKEY get() const { return key_; }
  HKEY* put() { return &key_; }

 private:
  HKEY key_ = nullptr;
  LiveCount<LiveKind::kRegistryKey> live_;
};

bool WriteValue(WideView key, WideView name, DWORD type, const void* data, std::size_t bytes) {
  RegistryKey open;
  if (RegCreateKeyExW(HKEY_CURRENT_USER, ToWinText(key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr,
                      open.put(), nullptr) != ERROR_SUCCESS) {
    return false;
  }
  return RegSetValueExW(open.get(), ToWinText(name).c_str(), 0, type,
                        static_cast<const BYTE*>(data), static_cast<DWORD>(bytes)) == ERROR_SUCCESS;
}

}  // namespace

bool ReadUserText(WideView key, WideView name, std::size_t maxBytes, Wide& text) {
  text.clear();
  RegistryKey open;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, ToWinText(key).c_str(), 0, KEY_READ, open.put()) !=
      ERROR_SUCCESS) {
    return false;
  }
  std::wstring buffer(maxBytes / sizeof(wchar_t), L'\0');
  DWORD bytes = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
  DWORD type = 0;
  if (RegQueryValueExW(open.get(), ToWinText(name).c_str(), nullptr, &type,
                       reinterpret_cast<BYTE*>(buffer.data()), &bytes) != ERROR_SUCCESS) {
    return false;
  }
  if (type != REG_SZ && type != REG_EXPAND_SZ) return false;
  buffer.resize(bytes / sizeof(wchar_t));
  // The terminator is stored with the text, or missing, as its writer pleased.
  text = FromWinText(std::wstring_view(buffer).substr(0, buffer.find(L'\0')));
  return true;
}

bool WriteUserText(WideView key, WideView name, WideView text) {
  const std::wstring value = ToWinText(text);
  return WriteValue(key, name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

bool WriteUserNumber(WideView key, WideView name, std::uint32_t number) {
  return WriteValue(key, name, REG_DWORD, &number, sizeof number);
}

}  // namespace quillmarch
