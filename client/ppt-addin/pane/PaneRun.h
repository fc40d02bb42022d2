// A pane's run from the page's start message to its ending. Host thread only, except where noted.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "foundation/text/Wide.h"
#include "pane/KeptPanes.h"
#include "pane/PanelTransport.h"
#include "run/PptCtrl.h"

namespace quillmarch::addin {

class CPptPane;

class PaneRun {
 public:
  explicit PaneRun(CPptPane& pane);
  PaneRun(const PaneRun&) = delete;
  PaneRun& operator=(const PaneRun&) = delete;

  // Starts a run as the message says, or keeps the message while a mutation of the host is under
  // way. Drops it during a run.
  void StartRun(const Wide& message);
  void CancelRun();
  void Pause();
  void Resume();

  // The pane's timers.
  void OnDeferredStart();
  void OnRunTick();

  // The run's share of the pane's early shutdown: drops a deferred start, fails the requests and
  // aborts the run, with a wait of up to 2000 ms for its worker.
  void ShutDown();
  // Ends the waits for translations because the add-in is shutting down.
  void FailRequests();
  // Waits for a worker that still runs.
  void DestroyController();
  // Hands on what the run holds, so that somebody else keeps the pane alive for the worker.
  RunReferences TakeReferences();

  PanelTransport& transport() { return transport_; }
  bool runActive() const { return runActive_ != 0; }                 // any thread
  std::uint64_t currentRunId() const { return currentRunId_; }       // 0 between runs
  const TranslateConfig* runControl() const { return runControl_; }  // null between runs
  bool HasController() const { return controller_ != nullptr; }
  bool WorkerRunning() const { return controller_ != nullptr && controller_->WorkerRunning(); }
  const Wide& deferredStart() const { return deferredStart_; }
  bool deferredStartArmed() const { return deferredStartArmed_; }

 private:
  bool DeferStart(const Wide& message);
  void DropDeferredStart();
  RunParams MakeRunParams(const Wide& message, Scope scope, std::uint64_t runId);
  ResolveTerminologyHook MakeTerminologyHook();
  void BeginRun(const Wide& message, Scope scope);
  void EndRun();
  void StopFlags();

  CPptPane& pane_;
  PanelTransport transport_;
  Wide deferredStart_;
  bool deferredStartArmed_ = false;
  std::atomic<std::uint8_t> runActive_{0};
  std::uint64_t currentRunId_ = 0;
  RunSink runSink_;
  TranslateConfig* runControl_ = nullptr;  // set by the controller while its run lasts
  std::unique_ptr<PptCtrl> controller_;
  // A call of the controller is on the stack; a host call inside it may have let a timer in, which
  // must not end the run beneath it.
  bool inController_ = false;
  RunReferences references_;
};

}  // namespace quillmarch::addin
