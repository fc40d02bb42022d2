// The host's own thread as the add-in sees it: a clock, timers, posted calls and sleeps. Exactly
// one thread touches host objects, and every timer and posted call runs on it.
#pragma once

#include <cstdint>
#include <functional>

namespace quillmarch {

class HostThread {
 public:
  using Callable = std::function<void()>;
  using TimerId = std::uint32_t;

  virtual ~HostThread() = default;

  // Milliseconds since some fixed moment, never falling. Host thread or worker.
  virtual std::uint64_t TickCount() = 0;

  // Blocks the host thread. Timers and posts wait meanwhile.
  virtual void Sleep(std::uint32_t ms) = 0;

  // Blocks the host thread too, yet lets timers and posts (on Windows: messages) through meanwhile,
  // until `done` answers true or `ms` have gone. `done` is asked first and after each of them.
  // False when the time is over, and at once when the thread has been told to end: it stays told.
  virtual bool PumpUntil(const std::function<bool()>& done, std::uint32_t ms) = 0;

  // Runs `call` on the host thread later, in the order of posting. Any thread. False when the
  // thread is gone; the callable is then destroyed without being run.
  virtual bool Post(Callable call) = 0;

  // Fires every `ms` until killed; setting an id that runs replaces it. Host thread only.
  virtual bool SetTimer(TimerId id, std::uint32_t ms, Callable call) = 0;
  virtual void KillTimer(TimerId id) = 0;

  // Work outside the host thread (a worker, a page request) begins or ends. While any lasts, a
  // clock that leaps keeps real time. Calls nest; any thread.
  virtual void OutsideWorkBegins() = 0;
  virtual void OutsideWorkEnds() = 0;

  // True on the host thread itself; the debug checks of automation calls ask it.
  virtual bool OnHostThread() const = 0;
};

}  // namespace quillmarch
