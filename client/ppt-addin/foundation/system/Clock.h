// The system's clocks and the calling thread's number. Any thread.
#pragma once

#include <cstdint>

namespace quillmarch {

// Local wall-clock time.
struct LocalTime {
  unsigned year = 0;
  unsigned month = 0;  // 1 to 12
  unsigned day = 0;    // 1 to 31
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  unsigned millisecond = 0;
};

LocalTime LocalTimeNow();

// Milliseconds since the system started, never falling.
std::uint64_t SystemTickCount();

std::uint32_t CurrentThreadNumber();

}  // namespace quillmarch
