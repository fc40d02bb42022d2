// What only the system can say about itself: processor, version, unique numbers. Any thread.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

struct OsVersion {
  std::uint32_t major = 0;
  std::uint32_t minor = 0;
  std::uint32_t build = 0;
};

// A GUID in its four fields.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::uint8_t data4[8] = {};
};

// "Windows_NT", or the system's own name elsewhere.
Wide SystemName();
// "x86", "x64" or "arm64"; any other processor is "x64".
Wide MachineWord();
// The version that the system really has.
bool ReadOsVersion(OsVersion& version);
// The version that the system shows to this program.
bool ReadShownOsVersion(OsVersion& version);
// A fresh random GUID.
bool NewGuid(Guid& guid);

}  // namespace quillmarch
