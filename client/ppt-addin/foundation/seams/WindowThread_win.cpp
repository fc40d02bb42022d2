#include "foundation/seams/WindowThread.h"

#include <exception>
#include <utility>

#include "foundation/system/OwnModule.h"

namespace quillmarch {

namespace {

constexpr wchar_t kClass[] = L"QuillmarchHostThread";

// A posted call on its way.
using Block = HostThread::Callable;

// Windows knows no timer 0.
constexpr UINT_PTR TimerNumber(HostThread::TimerId id) {
  return UINT_PTR{id} + 1;
}

// A call that throws has run out of memory; it is lost as if it had never been made.
void Run(const HostThread::Callable& call) {
  try {
    call();
  } catch (const std::exception&) {
  }
}

void DropWaitingPosts(HWND window) {
  MSG message;
  while (PeekMessageW(&message, window, WindowThread::kPostMessage, WindowThread::kPostMessage,
                      PM_REMOVE) != FALSE) {
    if (message.message == WM_QUIT) {  // comes whatever was asked for, and is the host's
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    const std::unique_ptr<Block> unrun(reinterpret_cast<Block*>(message.lParam));
  }
}

}  // namespace

bool WindowThread::Open() {
  if (window_ != nullptr) return true;
  WNDCLASSEXW windowClass = {};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = &Receive;
  windowClass.hInstance = OwnModule();
  windowClass.lpszClassName = kClass;
  // Fails when it is there already, which is as good.
  RegisterClassExW(&windowClass);
  threadId_ = GetCurrentThreadId();
  const HWND window =
      CreateWindowExW(0, kClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, OwnModule(), nullptr);
  if (window == nullptr) return false;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  liveWindow_.emplace();
  window_ = window;
  return true;
}

void WindowThread::Close() {
  if (window_ == nullptr || !OnHostThread()) return;
  // From here on posts fail, so that none comes after the last look.
  const HWND window = window_.exchange(nullptr);
  for (const auto& [id, timer] : timers_) ::KillTimer(window, TimerNumber(id));
  timers_.clear();
  DropWaitingPosts(window);
  DestroyWindow(window);
  liveWindow_.reset();
  // The class holds an address in this module, which may go next.
  UnregisterClassW(kClass, OwnModule());
}

LRESULT CALLBACK WindowThread::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == kPostMessage && lParam != 0) {
    const std::unique_ptr<Block> block(reinterpret_cast<Block*>(lParam));
    Run(*block);
    return 0;
  }
  if (message == WM_TIMER) {
    auto* const self = reinterpret_cast<WindowThread*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self != nullptr) self->OnTimer(wParam);
    return 0;
  }
  return DefWindowProcW(window, message, wParam, lParam);
}

void WindowThread::OnTimer(WPARAM number) {
  const auto found = timers_.find(static_cast<TimerId>(number - 1));
  // A timer that was killed may have left a message behind.
  if (found == timers_.end()) return;
  const std::shared_ptr<const Callable> held = found->second.call;
  Run(*held);
}

bool WindowThread::Post(Callable call) {
  const HWND window = window_;
  if (window == nullptr) return false;
  auto block = std::make_unique<Block>(std::move(call));
  if (PostMessageW(window, kPostMessage, 0, reinterpret_cast<LPARAM>(block.get())) == FALSE) {
    return false;
  }
  block.release();  // the window's, with the message
  return true;
}

bool WindowThread::SetTimer(TimerId id, std::uint32_t ms, Callable call) {
  const HWND window = window_;
  if (window == nullptr || ::SetTimer(window, TimerNumber(id), ms, nullptr) == 0) return false;
  timers_[id].call = std::make_shared<const Callable>(std::move(call));
  return true;
}

void WindowThread::KillTimer(TimerId id) {
  if (timers_.erase(id) == 0) return;
  ::KillTimer(window_, TimerNumber(id));
}

bool WindowThread::PumpUntil(const std::function<bool()>& done, std::uint32_t ms) {
  const std::uint64_t deadline = GetTickCount64() + ms;
  for (;;) {
    if (done()) return true;
    MSG message;
    // One at a time, since `done` is asked after each.
    if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
      if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        return false;
      }
      TranslateMessage(&message);
      DispatchMessageW(&message);
      continue;
    }
    const std::uint64_t now = GetTickCount64();
    if (now >= deadline) return false;
    MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(deadline - now), QS_ALLINPUT,
                                MWMO_INPUTAVAILABLE);
  }
}

}  // namespace quillmarch
