#include <windows.h>

#include "foundation/seams/UserRegistry.h"
#include "foundation/system/LiveCounts.h"
#include "foundation/system/WinText.h"

namespace quillmarch {

namespace {

class OpenKey {
 public:
  OpenKey(WideView key, REGSAM access)
      : code_(static_cast<UserRegistry::Code>(
            RegOpenKeyExW(HKEY_CURRENT_USER, ToWinText(key).c_str(), 0, access, &key_))) {}
  ~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  UserRegistry::Code code() const { return code_; }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
  LiveCount<LiveKind::kRegistryKey> live_;
  UserRegistry::Code code_;
};

UserRegistry::Code Put(WideView key, WideView name, DWORD type, const void* data,
                       std::size_t bytes) {
  const OpenKey open(key, KEY_SET_VALUE);
  if (open.code() != UserRegistry::kDone) return open.code();
  return static_cast<UserRegistry::Code>(RegSetValueExW(open.get(), ToWinText(name).c_str(), 0,
                                                        type, static_cast<const BYTE*>(data),
                                                        static_cast<DWORD>(bytes)));
}

class WindowsRegistry final : public UserRegistry {
 public:
  Code CreateKey(WideView key) override {
    HKEY made = nullptr;
    const LSTATUS code = RegCreateKeyExW(HKEY_CURRENT_USER, ToWinText(key).c_str(), 0, nullptr, 0,
                                         KEY_READ | KEY_WRITE, nullptr, &made, nullptr);
    if (made != nullptr) RegCloseKey(made);
    return static_cast<Code>(code);
  }
  Code PutText(WideView key, WideView name, WideView text) override {
    const std::wstring value = ToWinText(text);
    return Put(key, name, REG_SZ, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
  }
  Code PutNumber(WideView key, WideView name, std::uint32_t number) override {
    return Put(key, name, REG_DWORD, &number, sizeof number);
  }
  Code DeleteValue(WideView key, WideView name) override {
    const OpenKey open(key, KEY_SET_VALUE);
    if (open.code() != kDone) return open.code();
    return static_cast<Code>(RegDeleteValueW(open.get(), ToWinText(name).c_str()));
  }
  Code DeleteKey(WideView key) override {
    return static_cast<Code>(RegDeleteKeyW(HKEY_CURRENT_USER, ToWinText(key).c_str()));
  }
  Code DeleteTree(WideView key) override {
    return static_cast<Code>(RegDeleteTreeW(HKEY_CURRENT_USER, ToWinText(key).c_str()));
  }
  bool Exists(WideView key) override { return OpenKey(key, KEY_READ).code() == kDone; }
  bool IsEmpty(WideView key) override {
    const OpenKey open(key, KEY_READ);
    DWORD keys = 1;
    DWORD values = 1;
    return open.code() == kDone &&
           RegQueryInfoKeyW(open.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values,
                            nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
           keys == 0 && values == 0;
  }
};

}  // namespace

UserRegistry& SystemUserRegistry() {
  static WindowsRegistry registry;
  return registry;
}

}  // namespace quillmarch
