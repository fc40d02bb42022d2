#include "service/engines/ApertiumPool.h"

#include <algorithm>
#include <utility>

namespace quillmarch::service {

namespace {
constexpr std::chrono::milliseconds kStopCheck{50};
}  // namespace

ApertiumPool::ApertiumPool(std::string modeFile, std::chrono::milliseconds silenceLimit)
    : modeFile_(std::move(modeFile)), silenceLimit_(silenceLimit) {}

void ApertiumPool::Grant() {
  for (auto next = waiting_.begin(); next != waiting_.end();) {
    if (idle_.empty() && all_.size() == kPipelines) return;
    Waiting& waiting = **next;
    std::size_t& held = held_[waiting.client];
    if (held == kPipelinesOfAClient) {
      ++next;
      continue;
    }
    if (idle_.empty()) {
      all_.push_back(std::make_unique<ApertiumProcess>(modeFile_, silenceLimit_));
      idle_.push_back(all_.back().get());
    }
    waiting.process = idle_.back();
    idle_.pop_back();
    ++held;
    next = waiting_.erase(next);
  }
}

ApertiumPool::Lease ApertiumPool::Acquire(const std::string& client,
                                          const std::atomic<bool>& stop) {
  std::unique_lock lock(mutex_);
  Waiting me{client};
  waiting_.push_back(&me);
  Grant();
  // The stop is only a flag, so it is looked at from time to time.
  while (me.process == nullptr && !stop) changed_.wait_for(lock, kStopCheck);
  if (me.process != nullptr) return Lease(*this, client, *me.process);
  waiting_.erase(std::find(waiting_.begin(), waiting_.end(), &me));
  return {};
}

void ApertiumPool::Release(const std::string& client, ApertiumProcess& process) {
  {
    const std::lock_guard lock(mutex_);
    // The one used last is warm, so it is taken first.
    idle_.push_back(&process);
    if (--held_[client] == 0) held_.erase(client);
    Grant();
  }
  changed_.notify_all();
}

}  // namespace quillmarch::service
