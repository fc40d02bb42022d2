// Drives one run after the other as the pane of a document window would: identifies the host,
// builds the run's parameters, ticks the controller every 120 ms and ends it. It stands where no
// pane is. Host thread only.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "foundation/AutomationObject.h"
#include "foundation/HostThread.h"
#include "host/driver/EventSink.h"
#include "host/driver/IdleHands.h"
#include "host/driver/PhaseMeter.h"
#include "run/RunParams.h"
#include "run/RunRecord.h"

struct RunRequest {
  Scope scope = Scope::kWholeDeck;
  Wide targetLang;  // empty: the run's own default
  Wide sourceLang;  // empty: the run's own default
  Wide targetFont;  // empty: fonts stay as they are
  Wide accessToken;
};

struct RunReport {
  RunRecord record;
  Wide errorCode;       // of a failed run
  Wide errorMessage;    // of a failed run, as the run says it
  PhaseCost collect;    // the whole of the run's start
  PhaseCost translate;  // while the worker ran, with the slides written meanwhile
  PhaseCost write;      // what was left to write, and the run's last checks
};

struct RunListener {
  RunEventListener onEvent;
  // Once for each run, behind its last event; the driver is free for the next run by then. The
  // report is good during the call only.
  std::function<void(const RunReport&)> onEnded;
};

class RunDriver {
 public:
  // Identifies the host by its application object, and lets go of earlier runs whose workers hung
  // and have ended since. `thread` outlives the driver, and such a worker.
  RunDriver(ObjectRef application, HostThread& thread);
  // Aborts a run that lasts, waiting up to 2000 ms for its worker; its ending is not told.
  ~RunDriver();
  RunDriver(const RunDriver&) = delete;
  RunDriver& operator=(const RunDriver&) = delete;

  // Starts a run in the host's active window; false when one is running, and nothing else happens.
  // True also when the run is over at once: events and ending arrive by the host thread's posts.
  bool Start(const RunRequest& request, RunListener listener);

  // Each does nothing when no worker runs.
  void Cancel();
  void Pause();
  void Resume();

  bool running() const { return running_; }

 private:
  struct Run;

  // Runs whose worker was still busy when their driver went: it holds pointers into them.
  static std::vector<std::shared_ptr<Run>>& StuckRuns();
  WindowContext ActiveWindow() const;
  RunParams MakeParams(const RunRequest& request);
  void OnTick();
  void End();

  ObjectRef application_;
  HostThread& thread_;
  IdleHands hands_;
  bool running_ = false;
  // Shared with nobody for longer than a call: the posts on their way hold it weakly, and so find
  // out that the driver has gone.
  std::shared_ptr<Run> run_;
};
