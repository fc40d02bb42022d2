// One translation run from start to its last log line. All operations run on the host thread; the
// worker sees strings and flags only.
#pragma once

#include <functional>
#include <memory>
#include <thread>

#include "foundation/automation/AutomationObject.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/InputState.h"
#include "run/document/RunParams.h"
#include "run/document/RunRecord.h"
#include "run/document/RunSink.h"

namespace quillmarch::addin {

// Starts the worker's thread; throws what std::thread throws.
using ThreadStart = std::function<std::thread(std::function<void()>)>;

// What surrounds a run: handed in at construction, outlives it.
struct RunSurroundings {
  HostThread& thread;
  InputState& input;
  RunObserver observer;          // may be empty
  ThreadStart startThread = {};  // empty: std::thread
};

class PptCtrl {
 public:
  // Takes a reference to the host's application object and touches nothing else.
  PptCtrl(ObjectRef app, RunSurroundings surroundings);
  ~PptCtrl();
  PptCtrl(const PptCtrl&) = delete;
  PptCtrl& operator=(const PptCtrl&) = delete;

  // True: the worker runs and the caller must start ticking. False: the run is over, all events
  // have been sent and `outMessage` says why, also when there was nothing to translate.
  bool Start(const RunParams& params, const RunSink* sink, Wide& outMessage);
  // True when the run is fully ended and the object may be destroyed; false when the worker is
  // still busy after 2000 ms, and the object must be kept.
  bool Abort();
  // One timed step while the worker runs: writes at most one slide.
  void Tick();
  // Ends the run once the worker has ended; before that it does nothing. Idempotent. Entered from
  // inside one of the run's own host calls (a host may pump messages) it does nothing either, so
  // ask finished() before the object is destroyed; likewise Tick, and Abort then gives false.
  void Finish();

  bool WorkerRunning() const;
  bool abortRequested() const;
  bool finished() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace quillmarch::addin
