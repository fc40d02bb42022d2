#include "pane/PendingRequest.h"

#include <chrono>

namespace quillmarch::addin {

void RequestEvent::Set() {
  // Notified under the lock: the waiter may release the event as soon as it sees it set.
  const std::lock_guard lock(mutex_);
  set_ = true;
  changed_.notify_all();
}

bool RequestEvent::IsSet() {
  const std::lock_guard lock(mutex_);
  return set_;
}

bool RequestEvent::Wait(std::uint32_t ms) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return set_; });
}

}  // namespace quillmarch::addin
