#include "support/ManualHostThread.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <vector>

namespace quillmarch::addin::test {

namespace {
constexpr std::uint64_t kGapMs = 1000000;
std::atomic<std::uint64_t> nextBegin{kGapMs};
}  // namespace

ManualHostThread::ManualHostThread() : now_(nextBegin.load()) {}

ManualHostThread::~ManualHostThread() {
  nextBegin = TickCount() + kGapMs;
}

void ManualHostThread::Sleep(std::uint32_t ms) {
  sleeps.push_back(ms);
  if (!sleepsAreInstant) WaitForOutsideWork(ms);
  Advance(ms);
}

bool ManualHostThread::PumpUntil(const std::function<bool()>& done, std::uint32_t ms) {
  const std::uint64_t until = TickCount() + ms;
  while (!done()) {
    if (toldToEnd || TickCount() >= until) return false;
    RunPosts();
    FireDueTimers();
    if (done()) return true;
    const std::lock_guard lock(mutex_);
    if (!posts_.empty() || toldToEnd) continue;
    std::uint64_t next = until;
    for (const auto& [id, timer] : timers_) next = std::min(next, timer.due);
    if (next > TickCount()) Advance(next - TickCount());
  }
  return true;
}

bool ManualHostThread::Post(Callable call) {
  if (refusesPosts) return false;
  while (holdsPostsOfWorkers && !OnHostThread()) std::this_thread::yield();
  const std::lock_guard lock(mutex_);
  posts_.emplace_back(++postings_, std::move(call));
  changed_.notify_all();
  return true;
}

bool ManualHostThread::SetTimer(TimerId id, std::uint32_t ms, Callable call) {
  if (refusesTimers) return false;
  timers_[id] = {ms, TickCount() + ms, std::move(call)};
  return true;
}

void ManualHostThread::KillTimer(TimerId id) {
  timers_.erase(id);
}

void ManualHostThread::OutsideWorkBegins() {
  const std::lock_guard lock(mutex_);
  ++outside_;
}

void ManualHostThread::OutsideWorkEnds() {
  const std::lock_guard lock(mutex_);
  --outside_;
  changed_.notify_all();
}

void ManualHostThread::FireDueTimers() {
  std::vector<TimerId> due;
  for (const auto& [id, timer] : timers_) {
    if (timer.due <= TickCount()) due.push_back(id);
  }
  for (const TimerId id : due) {
    const auto found = timers_.find(id);
    if (found == timers_.end()) continue;
    found->second.due = TickCount() + found->second.period;
    const Callable call = found->second.call;
    call();
  }
}

void ManualHostThread::RunPosts() {
  std::uint64_t last = 0;
  {
    const std::lock_guard lock(mutex_);
    last = postings_;
  }
  for (;;) {
    Callable call;
    {
      const std::lock_guard lock(mutex_);
      if (posts_.empty() || posts_.front().first > last) return;
      call = std::move(posts_.front().second);
      posts_.pop_front();
    }
    call();
  }
}

bool ManualHostThread::HasPosts() {
  const std::lock_guard lock(mutex_);
  return !posts_.empty();
}

bool ManualHostThread::Leap() {
  if (timers_.empty() || outsideWork() > 0) return false;
  const auto next =
      std::min_element(timers_.begin(), timers_.end(),
                       [](const auto& a, const auto& b) { return a.second.due < b.second.due; });
  if (next->second.due > TickCount()) Advance(next->second.due - TickCount());
  FireDueTimers();
  return true;
}

int ManualHostThread::outsideWork() {
  const std::lock_guard lock(mutex_);
  return outside_;
}

bool ManualHostThread::WaitForOutsideWork(std::uint32_t ms) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::milliseconds(ms), [this] { return outside_ <= 0; });
}

void ManualHostThread::WaitForPostOrOutsideWork(std::uint32_t ms) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, std::chrono::milliseconds(ms),
                    [this] { return outside_ <= 0 || !posts_.empty(); });
}

}  // namespace quillmarch::addin::test
