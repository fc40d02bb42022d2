#include <windows.h>

#include <objbase.h>

#include <algorithm>

#include "foundation/system/SystemIdentity.h"

namespace quillmarch {

Wide SystemName() {
  return u"Windows_NT";
}

Wide MachineWord() {
  SYSTEM_INFO info{};
  GetNativeSystemInfo(&info);
  switch (info.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_INTEL:
      return u"x86";
    case 12:  // PROCESSOR_ARCHITECTURE_ARM64
      return u"arm64";
    default:
      return u"x64";
  }
}

bool ReadOsVersion(OsVersion& version) {
  // By name, as the import libraries do not promise it.
  const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
  if (ntdll == nullptr) return false;
  const FARPROC found = GetProcAddress(ntdll, "RtlGetVersion");
  if (found == nullptr) return false;
  using Reader = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto read = reinterpret_cast<Reader>(reinterpret_cast<void*>(found));
  OSVERSIONINFOW info{};
  info.dwOSVersionInfoSize = sizeof info;
  static_assert(sizeof info == 276);
  if (read(&info) != 0) return false;
  version = {info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber};
  return true;
}

bool ReadShownOsVersion(OsVersion& version) {
  OSVERSIONINFOEXW info{};
  info.dwOSVersionInfoSize = sizeof info;
  static_assert(sizeof info == 284);
  if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&info))) return false;
  version = {info.dwMajorVersion, info.dwMinorVersion, info.dwBuildNumber};
  return true;
}

bool NewGuid(Guid& guid) {
  GUID made{};
  if (FAILED(CoCreateGuid(&made))) return false;
  guid.data1 = made.Data1;
  guid.data2 = made.Data2;
  guid.data3 = made.Data3;
  std::copy(std::begin(made.Data4), std::end(made.Data4), guid.data4);
  return true;
}

}  // namespace quillmarch
