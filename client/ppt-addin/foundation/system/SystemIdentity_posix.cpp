#include <sys/random.h>
#include <sys/utsname.h>

#include <array>
#include <charconv>
#include <cstring>
#include <system_error>

#include "foundation/system/SystemIdentity.h"

namespace quillmarch {

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
  if (::uname(&info) != 0) return false;
  // "6.1.0-13-amd64": two numbers at least.
  std::array<unsigned, 3> numbers{};
  const char* at = info.release;
  const char* const end = at + std::strlen(at);
  std::size_t read = 0;
  while (read < numbers.size()) {
    const auto [behind, error] = std::from_chars(at, end, numbers[read]);
    if (error != std::errc()) break;
    ++read;
    at = behind;
    if (at == end || *at != '.') break;
    ++at;
  }
  if (read < 2) return false;
  version = {numbers[0], numbers[1], numbers[2]};
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

}  // namespace quillmarch
