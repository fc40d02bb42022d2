// Drives one run after the other as the panel's page would: by messages to a pane, and by what the
// pane then calls in the page. Host thread only.
#pragma once

#include <functional>
#include <memory>

#include "foundation/automation/AutomationObject.h"
#include "foundation/seams/HostThread.h"
#include "host/driver/HostedPane.h"
#include "host/driver/PanelPage.h"
#include "host/driver/PhaseMeter.h"
#include "host/driver/RunRequest.h"
#include "run/document/RunRecord.h"

namespace quillmarch::host {

struct DrivenRun {
  addin::RunRecord record;
  Wide errorCode;       // of a failed run
  Wide errorMessage;    // of a failed run, as the run says it
  PhaseCost collect;    // up to the run's first event
  PhaseCost translate;  // up to the last text's event, with the slides written meanwhile
  PhaseCost write;      // what was left to write, and the run's last checks
};

struct RunListener {
  std::function<void(const PageCall&)> onEvent;
  // Once for each run, behind its last event; the driver is free for the next run by then. The
  // report is good during the call only.
  std::function<void(const DrivenRun&)> onEnded;
};

class RunDriver {
 public:
  // Makes a pane in the host's active window. `thread` outlives the driver, and the worker of a run
  // that hung when the driver went.
  RunDriver(ObjectRef application, HostThread& thread);
  // Ends the pane, which aborts a run that lasts; its ending is not told.
  ~RunDriver();
  RunDriver(const RunDriver&) = delete;
  RunDriver& operator=(const RunDriver&) = delete;

  // Says the start message; false when a run has not ended yet, and nothing is said. Events and
  // ending arrive by the host thread's posts.
  bool Start(const RunRequest& request, RunListener listener);

  // Each says its message. None reaches a run before its worker is there, and that is told by an
  // onReady with texts.
  void Cancel();
  void Pause();
  void Resume();

  bool running() const { return running_; }

 private:
  struct Run;

  void OnCall(const PageCall& call);
  void OnRecord(const addin::RunRecord& record);
  void End();

  bool running_ = false;
  std::unique_ptr<Run> run_;
  HostedPane pane_;
};

}  // namespace quillmarch::host
