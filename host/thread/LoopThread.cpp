#include "host/thread/LoopThread.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>
#include <vector>

namespace quillmarch::host {

namespace {

// What Windows makes of a shorter period. A timer of 0 would never let an unpaced clock get ahead.
constexpr std::uint32_t kShortestPeriodMs = 10;

// A worker posts more often than a thread can be woken for less than the posts cost. What it posts
// sooner than this after the last ones waits for the rest.
constexpr std::chrono::microseconds kNapTime{500};

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

using SteadyClock = std::chrono::steady_clock;

std::uint64_t SteadyMs() {
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(SteadyClock::now().time_since_epoch())
          .count());
}

// The moment at which the steady clock, counted in whole milliseconds, shows `ms`.
SteadyClock::time_point SteadyMoment(std::uint64_t ms) {
  return SteadyClock::time_point(std::chrono::milliseconds(static_cast<std::int64_t>(ms)));
}

// Moments outlive a loop, such as the quiet time after a run's last write, so the next loop's
// clock goes on where the last one's stood.
std::atomic<std::uint64_t> leaptBefore{0};

}  // namespace

LoopThread::LoopThread(ClockMode mode)
    : mode_(mode), hostThread_(std::this_thread::get_id()), leaptMs_(leaptBefore.load()) {}

LoopThread::~LoopThread() {
  Close();
  leaptBefore = std::max(leaptBefore.load(), leaptMs_.load());
}

std::uint64_t LoopThread::Now() const {
  return SteadyMs() + leaptMs_.load();
}

std::uint64_t LoopThread::TickCount() {
  return Now();
}

bool LoopThread::OnHostThread() const {
  return std::this_thread::get_id() == hostThread_;
}

void LoopThread::Sleep(std::uint32_t ms) {
  const std::uint64_t until = Now() + ms;
  std::unique_lock lock(mutex_);
  for (;;) {
    const std::uint64_t now = Now();
    if (now >= until) return;
    if (mode_ == ClockMode::kUnpaced && outsideWork_ == 0) {
      leaptMs_ += until - now;
      return;
    }
    wake_.wait_until(lock, SteadyMoment(until - leaptMs_.load()));
  }
}

bool LoopThread::Post(Callable call) {
  bool wake = false;
  {
    std::lock_guard lock(mutex_);
    if (closed_) return false;
    // Whoever waits waits for the first post, and a worker posts thousands.
    wake = posts_.empty() && !napping_;
    posts_.push_back({++postings_, std::move(call)});
  }
  if (wake) wake_.notify_all();
  return true;
}

bool LoopThread::SetTimer(TimerId id, std::uint32_t ms, Callable call) {
  {
    std::lock_guard lock(mutex_);
    if (closed_) return false;
  }
  const std::uint32_t period = std::max(ms, kShortestPeriodMs);
  timers_[id] = {Now() + period, ++armings_, period,
                 std::make_shared<const Callable>(std::move(call))};
  return true;
}

void LoopThread::KillTimer(TimerId id) {
  timers_.erase(id);
}

void LoopThread::OutsideWorkBegins() {
  std::lock_guard lock(mutex_);
  ++outsideWork_;
}

void LoopThread::OutsideWorkEnds() {
  {
    std::lock_guard lock(mutex_);
    if (outsideWork_ > 0) --outsideWork_;
  }
  wake_.notify_all();
}

void LoopThread::RunUntil(const std::function<bool()>& done) {
  while (!done()) {
    if (RunPass(&done)) return;
    WaitForWork(kNoLimit);
  }
}

bool LoopThread::PumpUntil(const std::function<bool()>& done, std::uint32_t ms) {
  const std::uint64_t until = Now() + ms;
  while (!done()) {
    if (Closed() || Now() >= until) return false;
    if (RunPass(&done)) return true;
    if (!Closed()) WaitForWork(until);
  }
  return true;
}

void LoopThread::PumpPending() {
  RunPass(nullptr);
}

bool LoopThread::RunPass(const std::function<bool()>* done) {
  std::uint64_t lastPost = 0;
  {
    std::lock_guard lock(mutex_);
    lastPost = postings_;
  }
  for (;;) {
    Callable call;
    {
      std::lock_guard lock(mutex_);
      // By number and not by count: a pass inside a call may have run some of them already.
      if (posts_.empty() || posts_.front().number > lastPost) break;
      call = std::move(posts_.front().call);
      posts_.pop_front();
    }
    if (call) call();
    ranPosts_ = SteadyClock::now();
    if (done != nullptr && (*done)()) return true;
  }

  struct Due {
    std::uint64_t due;
    std::uint64_t number;
    TimerId id;
  };
  std::vector<Due> dueTimers;
  const std::uint64_t now = Now();
  for (const auto& [id, timer] : timers_) {
    if (timer.due <= now) dueTimers.push_back({timer.due, timer.number, id});
  }
  std::sort(dueTimers.begin(), dueTimers.end(), [](const Due& a, const Due& b) {
    return a.due != b.due ? a.due < b.due : a.number < b.number;
  });
  for (const Due& due : dueTimers) {
    const auto found = timers_.find(due.id);
    // Killed, replaced or fired by an earlier call of this pass.
    if (found == timers_.end() || found->second.number != due.number) continue;
    found->second.due = Now() + found->second.period;
    found->second.number = ++armings_;
    // The call may kill or replace its own timer, so it is held here.
    const std::shared_ptr<const Callable> call = found->second.call;
    if (*call) (*call)();
    if (done != nullptr && (*done)()) return true;
  }
  return false;
}

const LoopThread::Timer* LoopThread::NextTimer() const {
  const Timer* next = nullptr;
  for (const auto& [id, timer] : timers_) {
    if (next == nullptr || timer.due < next->due) next = &timer;
  }
  return next;
}

void LoopThread::Nap(std::unique_lock<std::mutex>& lock) {
  const auto until = ranPosts_ + kNapTime;
  napping_ = true;
  while (outsideWork_ > 0 && SteadyClock::now() < until) wake_.wait_until(lock, until);
  napping_ = false;
}

void LoopThread::WaitForWork(std::uint64_t limit) {
  const Timer* next = NextTimer();
  const std::uint64_t wakeAt = next == nullptr ? limit : std::min(next->due, limit);
  std::unique_lock lock(mutex_);
  Nap(lock);
  while (posts_.empty()) {
    if (wakeAt == kNoLimit) {
      wake_.wait(lock);
      continue;
    }
    const std::uint64_t now = Now();
    if (wakeAt <= now) return;
    if (mode_ == ClockMode::kUnpaced && outsideWork_ == 0) {
      leaptMs_ += wakeAt - now;
      return;
    }
    wake_.wait_until(lock, SteadyMoment(wakeAt - leaptMs_.load()));
  }
}

bool LoopThread::Closed() {
  const std::lock_guard lock(mutex_);
  return closed_;
}

void LoopThread::Close() {
  std::deque<Posted> dropped;
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
    dropped.swap(posts_);
  }
  // Destroyed outside the lock: what a callable holds may itself post when it goes.
  std::map<TimerId, Timer> timers;
  timers.swap(timers_);
}

}  // namespace quillmarch::host
