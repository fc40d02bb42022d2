#include <unistd.h>

#include <ctime>

#include "foundation/system/Clock.h"

namespace quillmarch {

LocalTime LocalTimeNow() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  // Within a second the fields stay; looking the time zone up costs more than all the rest.
  thread_local std::time_t known = -1;
  thread_local std::tm fields{};
  if (now.tv_sec != known) {
    ::localtime_r(&now.tv_sec, &fields);
    known = now.tv_sec;
  }
  LocalTime t;
  t.year = static_cast<unsigned>(fields.tm_year + 1900);
  t.month = static_cast<unsigned>(fields.tm_mon + 1);
  t.day = static_cast<unsigned>(fields.tm_mday);
  t.hour = static_cast<unsigned>(fields.tm_hour);
  t.minute = static_cast<unsigned>(fields.tm_min);
  t.second = static_cast<unsigned>(fields.tm_sec);
  t.millisecond = static_cast<unsigned>(now.tv_nsec / 1000000);
  return t;
}

std::uint64_t SystemTickCount() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
         static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
}

std::uint32_t CurrentThreadNumber() {
  thread_local const auto number = static_cast<std::uint32_t>(::gettid());
  return number;
}

}  // namespace quillmarch
