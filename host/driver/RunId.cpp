#include "host/driver/RunId.h"

#include <atomic>

namespace {

std::atomic<std::uint64_t> runIdCounter{0};

}  // namespace

std::uint64_t NextRunId(std::uint64_t tickCount) {
  std::uint64_t seen = runIdCounter.load();
  while (seen < tickCount && !runIdCounter.compare_exchange_weak(seen, tickCount)) {
  }
  return ++runIdCounter;
}
