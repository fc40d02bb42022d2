#include "run/PptCtrl.h"

#include <exception>
#include <utility>

#include "run/control/BusyRegistry.h"
#include "run/control/RunFinish.h"
#include "run/control/RunPacing.h"
#include "run/control/RunStart.h"
#include "run/control/RunState.h"

namespace quillmarch::addin {

struct PptCtrl::State : RunState {
  using RunState::RunState;
};

namespace {

// Marks that one of the run's host-thread entries is under way. An entry that finds it set came in
// through a host call of the first one and must not touch the run.
class Entry {
 public:
  explicit Entry(RunState& run) : run_(run), first_(!run.entered) { run.entered = true; }
  ~Entry() {
    if (first_) run_.entered = false;
  }
  Entry(const Entry&) = delete;
  Entry& operator=(const Entry&) = delete;
  bool first() const { return first_; }

 private:
  RunState& run_;
  bool first_;
};

}  // namespace

PptCtrl::PptCtrl(ObjectRef app, RunSurroundings surroundings)
    : state_(std::make_unique<State>(std::move(app), std::move(surroundings))) {}

PptCtrl::~PptCtrl() {
  if (state_->thread.joinable()) {
    // The worker holds pointers into the run, so it is waited for, however long it takes.
    state_->job.config.cancelled.store(1, std::memory_order_relaxed);
    state_->job.config.paused.store(0, std::memory_order_relaxed);
    state_->thread.join();
    if (state_->params.configSlot != nullptr) *state_->params.configSlot = nullptr;
  }
  if (state_->registeredBusy) LeaveBusy(state_->busyIdentity, state_->params.owner);
}

bool PptCtrl::Start(const RunParams& params, const RunSink* sink, Wide& outMessage) {
  const Entry entry(*state_);
  if (!entry.first() || state_->started || state_->finished) return false;
  try {
    return StartRun(*state_, params, sink, outMessage);
  } catch (const std::exception&) {
    // A worker that runs already goes on: only a last log line was lost.
    if (state_->thread.joinable()) return state_->started = true;
    return RejectBrokenStart(*state_, outMessage);
  }
}

bool PptCtrl::Abort() {
  if (state_->finished) return !state_->entered;
  if (!state_->started && !state_->entered) return true;
  bool ended = false;
  try {
    // In the midst of a start this only leaves the flags, and the worker ends as it begins.
    ended = StopWorker(*state_);
  } catch (const std::exception&) {
    ended = !state_->WorkerRunning();
  }
  if (!ended) return false;
  Finish();
  return state_->finished && !state_->entered;
}

void PptCtrl::Tick() {
  const Entry entry(*state_);
  if (!entry.first() || !state_->started || state_->finished) return;
  try {
    TickRun(*state_);
  } catch (const std::exception&) {
    // The next tick, or the finish, takes the slide up again.
  }
}

void PptCtrl::Finish() {
  const Entry entry(*state_);
  if (entry.first() && state_->started) FinishRun(*state_);
}

bool PptCtrl::WorkerRunning() const {
  return state_->WorkerRunning();
}
bool PptCtrl::abortRequested() const {
  return state_->abortRequested;
}
bool PptCtrl::finished() const {
  return state_->finished;
}

}  // namespace quillmarch::addin
