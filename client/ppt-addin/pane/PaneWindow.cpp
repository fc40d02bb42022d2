#include "pane/PaneWindow.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <utility>

namespace quillmarch::addin {

namespace {

// All windows of a process may share one host thread, which tells timers apart only by number.
constexpr std::uint32_t kTimersOfOneWindow = 16;
std::atomic<std::uint32_t> windowCounter{0};

}  // namespace

PaneWindow::PaneWindow(Key, HostThread& thread)
    : thread_(thread), timerBase_(windowCounter++ * kTimersOfOneWindow) {}

std::shared_ptr<PaneWindow> PaneWindow::Make(HostThread& thread) {
  return std::make_shared<PaneWindow>(Key{}, thread);
}

bool PaneWindow::Post(Callable call) {
  std::uint64_t number = 0;
  {
    const std::lock_guard lock(mutex_);
    if (!lives_) return false;
    number = ++postings_;
    waiting_.emplace_back(number, std::move(call));
  }
  if (thread_.Post([window = weak_from_this()] {
        if (const std::shared_ptr<PaneWindow> held = window.lock()) held->RunNext();
      })) {
    return true;
  }
  Callable lost;  // destroyed outside the lock
  const std::lock_guard lock(mutex_);
  const auto found = std::find_if(waiting_.begin(), waiting_.end(),
                                  [number](const Waiting& one) { return one.first == number; });
  if (found == waiting_.end()) return false;
  lost = std::move(found->second);
  waiting_.erase(found);
  return false;
}

void PaneWindow::RunNext() {
  Callable call;
  {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) return;
    call = std::move(waiting_.front().second);
    waiting_.pop_front();
  }
  if (!call) std::abort();
  try {
    call();
  } catch (const std::exception&) {
    // Memory ran out: the call is lost like one whose window has gone.
  }
}

HostThread::TimerId PaneWindow::HostTimer(std::uint32_t id) const {
  return timerBase_ + id;
}

bool PaneWindow::SetTimer(std::uint32_t id, std::uint32_t ms, Callable call) {
  return lives() && thread_.SetTimer(HostTimer(id), ms, std::move(call));
}

void PaneWindow::KillTimer(std::uint32_t id) {
  thread_.KillTimer(HostTimer(id));
}

void PaneWindow::Destroy() {
  decltype(waiting_) unrun;  // what a callable holds may post when it goes, so outside the lock
  const std::lock_guard lock(mutex_);
  lives_ = false;
  unrun.swap(waiting_);
}

bool PaneWindow::lives() const {
  const std::lock_guard lock(mutex_);
  return lives_;
}

void PostToPane(const std::shared_ptr<PaneWindow>& window, PaneWindow::Callable call) {
  if (window != nullptr) window->Post(std::move(call));
}

}  // namespace quillmarch::addin
