#include <windows.h>

#include "foundation/system/Clock.h"

namespace quillmarch {

LocalTime LocalTimeNow() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

std::uint64_t SystemTickCount() {
  return GetTickCount64();
}

std::uint32_t CurrentThreadNumber() {
  return GetCurrentThreadId();
}

}  // namespace quillmarch
