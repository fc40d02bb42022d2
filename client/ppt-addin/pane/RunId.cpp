#include "pane/RunId.h"

#include <atomic>

namespace quillmarch::addin {

namespace {
std::atomic<std::uint64_t> runIdCounter{0};
}  // namespace

std::uint64_t NewRunId(std::uint64_t tickCount) {
  std::uint64_t last = runIdCounter.load();
  while (last < tickCount && !runIdCounter.compare_exchange_weak(last, tickCount)) {
  }
  return ++runIdCounter;
}

}  // namespace quillmarch::addin
