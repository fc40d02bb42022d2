// A host thread whose clock the test moves. Timers and posts run when the test says so; the clock
// also moves by itself over a Sleep. Every instance's clock begins behind the last one's end, as
// quiet times outlive a run.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "foundation/seams/HostThread.h"

namespace quillmarch::addin::test {

class ManualHostThread final : public HostThread {
 public:
  ManualHostThread();
  ~ManualHostThread() override;

  std::uint64_t TickCount() override { return now_.load(std::memory_order_relaxed); }
  // While outside work is under way, waits for its end, up to `ms` of real time; then the clock
  // has moved by `ms`.
  void Sleep(std::uint32_t ms) override;
  // Where nothing is left to run, the clock leaps to the next timer or to the end of the wait.
  bool PumpUntil(const std::function<bool()>& done, std::uint32_t ms) override;
  bool Post(Callable call) override;
  bool SetTimer(TimerId id, std::uint32_t ms, Callable call) override;
  void KillTimer(TimerId id) override;
  void OutsideWorkBegins() override;
  void OutsideWorkEnds() override;
  bool OnHostThread() const override { return std::this_thread::get_id() == owner_; }

  // Moves the clock without firing anything.
  void Advance(std::uint64_t ms) { now_.fetch_add(ms, std::memory_order_relaxed); }
  // Fires all timers that are due now, once each; from inside a host call this is re-entry.
  void FireDueTimers();
  // Runs the posts made before the call; a call that runs posts itself takes them in turn.
  void RunPosts();
  bool HasPosts();
  // Moves the clock to the next timer and fires it; false without timers or with outside work.
  bool Leap();

  int outsideWork();
  // Blocks for at most `ms` of real time; true when no outside work is left.
  bool WaitForOutsideWork(std::uint32_t ms);
  // The same, and a post that waits ends it too.
  void WaitForPostOrOutsideWork(std::uint32_t ms);

  // What Sleep was asked for, in order.
  std::vector<std::uint32_t> sleeps;
  bool sleepsAreInstant = false;  // Sleep then never waits for outside work
  bool refusesTimers = false;
  bool refusesPosts = false;
  // Posts of other threads wait as long as it is set.
  std::atomic<bool> holdsPostsOfWorkers{false};
  bool toldToEnd = false;  // as by a quit message
  int timersSet() const { return static_cast<int>(timers_.size()); }

 private:
  struct Timer {
    std::uint32_t period = 0;
    std::uint64_t due = 0;
    Callable call;
  };

  std::atomic<std::uint64_t> now_;
  std::map<TimerId, Timer> timers_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::uint64_t postings_ = 0;
  std::deque<std::pair<std::uint64_t, Callable>> posts_;  // numbered in order
  int outside_ = 0;
  std::thread::id owner_ = std::this_thread::get_id();
};

}  // namespace quillmarch::addin::test
