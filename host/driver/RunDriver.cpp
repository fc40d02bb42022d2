#include "host/driver/RunDriver.h"

#include <utility>

#include "foundation/text/JsonText.h"

namespace quillmarch::host {

struct RunDriver::Run {
  RunListener listener;
  DrivenRun report;
  bool recorded = false;   // the run handed over its record
  bool collected = false;  // its first event, or its end, has come
  PhaseMeter meter;

  // The cost since the last mark goes to the phase that the run was in.
  void Collected() {
    if (!collected) report.collect = meter.Next();
    collected = true;
  }
  void Translated() {
    const PhaseCost cost = meter.Next();
    report.translate.ms += cost.ms;
    report.translate.invokes += cost.invokes;
    report.translate.lookups += cost.lookups;
  }
};

RunDriver::RunDriver(ObjectRef application, HostThread& thread)
    : pane_(std::move(application), thread,
            std::make_shared<PanelPage>([this](const PageCall& call) { OnCall(call); }),
            [this](const addin::RunRecord& record) { OnRecord(record); }) {}

// The pane goes first, while the run can still be told of its end.
RunDriver::~RunDriver() = default;

bool RunDriver::Start(const RunRequest& request, RunListener listener) {
  if (running_) return false;
  running_ = true;
  run_ = std::make_unique<Run>();
  run_->listener = std::move(listener);
  pane_.Say(StartMessage(request));
  return true;
}

void RunDriver::OnRecord(const addin::RunRecord& record) {
  if (run_ == nullptr) return;
  run_->report.record = record;
  run_->recorded = true;
  run_->Collected();
  run_->report.write = run_->meter.Next();
}

void RunDriver::OnCall(const PageCall& call) {
  if (run_ == nullptr) return;
  run_->Collected();
  if (call.name == u"onProgress") run_->Translated();
  addin::RunRecord& record = run_->report.record;
  bool last = call.name == u"onComplete";
  if (call.name == u"onError") {
    last = true;
    run_->report.errorCode = JsonGetString(call.payload, u"code");
    run_->report.errorMessage = JsonGetString(call.payload, u"message");
    if (!run_->recorded) record.outcome = addin::RunOutcome::kFailed;
  } else if (call.name == u"onCancelled") {
    last = true;
    if (!run_->recorded) record.outcome = addin::RunOutcome::kCancelled;
  }
  if (run_->listener.onEvent) run_->listener.onEvent(call);
  if (last) End();
}

// The page's last call of a run comes behind its record, and finds the pane free.
void RunDriver::End() {
  const std::unique_ptr<Run> run = std::move(run_);
  running_ = false;
  if (run->listener.onEnded) run->listener.onEnded(run->report);
}

void RunDriver::Cancel() {
  pane_.Say(u"{\"action\":\"cancel\"}");
}

void RunDriver::Pause() {
  pane_.Say(u"{\"action\":\"pause\"}");
}

void RunDriver::Resume() {
  pane_.Say(u"{\"action\":\"resume\"}");
}

}  // namespace quillmarch::host
