// The host thread of the headless host: an event loop with posted calls, timers and a clock that
// either keeps real time or skips every wait that nothing outside needs.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "foundation/seams/HostThread.h"

namespace quillmarch::host {

enum class ClockMode {
  kPaced,    // real time, as a user would see it
  kUnpaced,  // waits are skipped while no outside work is under way
};

// The thread that constructs a LoopThread is the host thread. Unless a member says otherwise, it
// is called there only.
class LoopThread final : public HostThread {
 public:
  explicit LoopThread(ClockMode mode);
  // Closes. Every other thread must have stopped using the object.
  ~LoopThread() override;
  LoopThread(const LoopThread&) = delete;
  LoopThread& operator=(const LoopThread&) = delete;

  // Milliseconds of the machine's steady clock, plus every millisecond skipped, by earlier loops
  // of the process too. Any thread.
  std::uint64_t TickCount() override;
  void Sleep(std::uint32_t ms) override;
  // Told to end means closed.
  bool PumpUntil(const std::function<bool()>& done, std::uint32_t ms) override;
  bool Post(Callable call) override;
  // A period below 10 ms counts as 10 ms. After a late firing the next one comes a whole period
  // later: nothing is caught up.
  bool SetTimer(TimerId id, std::uint32_t ms, Callable call) override;
  void KillTimer(TimerId id) override;
  void OutsideWorkBegins() override;
  void OutsideWorkEnds() override;
  bool OnHostThread() const override;

  // Runs posts and timers until `done` says so; it is asked before the first and after each of
  // them. May be called again afterwards, and from within a post or a timer.
  void RunUntil(const std::function<bool()>& done);

  // Runs what is pending now, without waiting or leaping: the posts made before the call in their
  // order, then each due timer once. For host calls that let messages through, so it may be
  // entered again from within a post or a timer.
  void PumpPending();

  // Ends the thread's life as a target: timers are gone, posts not yet run are destroyed without
  // being run, and every later Post answers false. Idempotent.
  void Close();

 private:
  struct Posted {
    std::uint64_t number;
    Callable call;
  };
  struct Timer {
    std::uint64_t due;     // tick count
    std::uint64_t number;  // order of arming, decides among equal times
    std::uint32_t period;
    std::shared_ptr<const Callable> call;
  };

  // With `done`, stops as soon as it answers true and then gives true itself.
  bool RunPass(const std::function<bool()>* done);
  // Until there is a post or a due timer, or the tick count has come to `limit`.
  void WaitForWork(std::uint64_t limit);
  bool Closed();
  std::uint64_t Now() const;
  const Timer* NextTimer() const;
  void Nap(std::unique_lock<std::mutex>& lock);

  const ClockMode mode_;
  const std::thread::id hostThread_;
  std::atomic<std::uint64_t> leaptMs_;

  std::map<TimerId, Timer> timers_;  // host thread only
  std::uint64_t armings_ = 0;        // host thread only
  // When posts ran last; host thread only.
  std::chrono::steady_clock::time_point ranPosts_{};

  std::mutex mutex_;
  std::condition_variable wake_;
  // Guarded by the mutex.
  std::deque<Posted> posts_;
  std::uint64_t postings_ = 0;
  std::uint32_t outsideWork_ = 0;
  bool closed_ = false;
  bool napping_ = false;  // the host thread looks for posts by itself soon
};

}  // namespace quillmarch::host
