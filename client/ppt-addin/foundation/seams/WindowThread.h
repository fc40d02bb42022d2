// The thread of a host with a message loop. Posts and timers come as messages of a window that
// nobody sees, so they come whenever the host handles messages: in its own loop, in a menu, in a
// message box. Windows only.
#pragma once

#include <windows.h>

#include <atomic>
#include <map>
#include <memory>
#include <optional>

#include "foundation/seams/HostThread.h"
#include "foundation/system/LiveCounts.h"

namespace quillmarch {

class WindowThread final : public HostThread {
 public:
  // The message that carries a posted call; its block is in lParam.
  static constexpr UINT kPostMessage = WM_APP + 48;

  WindowThread() = default;
  ~WindowThread() { Close(); }
  WindowThread(const WindowThread&) = delete;
  WindowThread& operator=(const WindowThread&) = delete;

  // The calling thread is the host thread from here on. False when no window can be made.
  // Does nothing while it is open.
  bool Open();
  // Timers are gone, posts that wait are destroyed unrun, and every later one fails, until it is
  // opened again. Called on the host thread; elsewhere it does nothing.
  void Close();

  std::uint64_t TickCount() override { return GetTickCount64(); }
  void Sleep(std::uint32_t ms) override { ::Sleep(ms); }
  bool PumpUntil(const std::function<bool()>& done, std::uint32_t ms) override;
  bool Post(Callable call) override;
  bool SetTimer(TimerId id, std::uint32_t ms, Callable call) override;
  void KillTimer(TimerId id) override;
  // Here the clock never leaps.
  void OutsideWorkBegins() override {}
  void OutsideWorkEnds() override {}
  bool OnHostThread() const override { return GetCurrentThreadId() == threadId_; }

 private:
  struct Timer {
    std::shared_ptr<const Callable> call;
    LiveCount<LiveKind::kTimer> live;
  };

  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  void OnTimer(WPARAM number);

  std::atomic<HWND> window_{nullptr};
  std::atomic<DWORD> threadId_{0};
  std::optional<LiveCount<LiveKind::kWindow>> liveWindow_;
  std::map<TimerId, Timer> timers_;
};

}  // namespace quillmarch
