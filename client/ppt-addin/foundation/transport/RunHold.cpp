#include "foundation/transport/RunHold.h"

#include <chrono>
#include <thread>

namespace quillmarch {

namespace {
constexpr std::chrono::milliseconds kPauseSleep{50};
}

bool IsSet(const RunFlag* flag) {
  return flag != nullptr && flag->load(std::memory_order_relaxed) != 0;
}

bool HoldWhilePaused(const RunFlag* cancel, const RunFlag* pause) {
  while (IsSet(pause) && !IsSet(cancel)) std::this_thread::sleep_for(kPauseSleep);
  return !IsSet(cancel);
}

}  // namespace quillmarch
