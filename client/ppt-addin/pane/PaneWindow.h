// The window of a pane as any thread may know it: where calls for its thread are left, and whether
// it still lives. And the pane's timers.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

#include "foundation/seams/HostThread.h"

namespace quillmarch::addin {

class PaneWindow : public std::enable_shared_from_this<PaneWindow> {
  struct Key {};  // lets only Make construct

 public:
  using Callable = HostThread::Callable;

  // `thread` outlives the object and everybody who holds it.
  static std::shared_ptr<PaneWindow> Make(HostThread& thread);
  PaneWindow(Key, HostThread& thread);
  PaneWindow(const PaneWindow&) = delete;
  PaneWindow& operator=(const PaneWindow&) = delete;

  // Any thread. The calls run in the order of posting and never inside Post. False when the call
  // was destroyed unrun at once.
  bool Post(Callable call);

  // Host thread. A timer of this window only, whatever ids other windows use. False when the
  // window is gone or the timer cannot be had.
  bool SetTimer(std::uint32_t id, std::uint32_t ms, Callable call);
  void KillTimer(std::uint32_t id);

  // Host thread. The window is gone from here on: calls still waiting are destroyed unrun.
  // Idempotent; the timers are the caller's to kill.
  void Destroy();
  bool lives() const;

 private:
  using Waiting = std::pair<std::uint64_t, Callable>;  // numbered in the order of posting

  void RunNext();
  HostThread::TimerId HostTimer(std::uint32_t id) const;

  HostThread& thread_;
  const std::uint32_t timerBase_;
  mutable std::mutex mutex_;
  bool lives_ = true;            // guarded
  std::uint64_t postings_ = 0;   // guarded
  std::deque<Waiting> waiting_;  // guarded; each has its post on the thread
};

// The one road from any thread to a pane's window thread. A null window, or one that has gone,
// loses the call silently. An empty callable ends the process when its turn comes.
void PostToPane(const std::shared_ptr<PaneWindow>& window, PaneWindow::Callable call);

}  // namespace quillmarch::addin
