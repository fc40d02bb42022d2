#include "host/thread/HostCallGuard.h"

#include <atomic>

#include "foundation/automation/Automation.h"

namespace quillmarch::host {

namespace {

// The check is a plain function and may be asked by any thread.
std::atomic<const HostThread*> guarded{nullptr};

bool CallerMayTouchTheHost() {
  const HostThread* thread = guarded.load();
  return thread == nullptr || thread->OnHostThread();
}

}  // namespace

HostCallGuard::HostCallGuard(const HostThread& thread) {
  guarded = &thread;
  SetHostThreadCheck(&CallerMayTouchTheHost);
}

HostCallGuard::~HostCallGuard() {
  SetHostThreadCheck(nullptr);
  guarded = nullptr;
}

}  // namespace quillmarch::host
