#include <sys/random.h>
#include <sys/utsname.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "foundation/SystemIdentity.h"

Wide SystemName() {
  utsname info{};
  return ::uname(&info) == 0 ? ToWide(info.sysname) : Wide(u"Unknown");
}

Wide MachineWord() {
  utsname info{};
  if (::uname(&info) != 0) return u"x64";
  const std::string_view machine(info.machine);
  if (machine == "aarch64") return u"arm64";
  if (machine.size() == 4 && machine.starts_with('i') && machine.ends_with("86")) return u"x86";
  return u"x64";
}

bool ReadOsVersion(OsVersion& version) {
  utsname info{};
  unsigned major = 0;
  unsigned minor = 0;
  unsigned build = 0;
  if (::uname(&info) != 0) return false;
  if (std::sscanf(info.release, "%u.%u.%u", &major, &minor, &build) < 2) return false;
  version = {major, minor, build};
  return true;
}

bool ReadShownOsVersion(OsVersion&) {
  return false;
}

bool NewGuid(Guid& guid) {
  std::uint8_t bytes[16];
  if (::getrandom(bytes, sizeof bytes, 0) != static_cast<ssize_t>(sizeof bytes)) return false;
  std::memcpy(&guid.data1, bytes, 4);
  std::memcpy(&guid.data2, bytes + 4, 2);
  std::memcpy(&guid.data3, bytes + 6, 2);
  std::memcpy(guid.data4, bytes + 8, 8);
  // Version 4 and the variant of RFC 4122, as a GUID of Windows has them.
  guid.data3 = static_cast<std::uint16_t>((guid.data3 & 0x0FFFu) | 0x4000u);
  guid.data4[0] = static_cast<std::uint8_t>((guid.data4[0] & 0x3Fu) | 0x80u);
  return true;
}
