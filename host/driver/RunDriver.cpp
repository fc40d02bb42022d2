#include "host/driver/RunDriver.h"

#include <utility>
#include <vector>

#include "foundation/Automation.h"
#include "foundation/HostId.h"
#include "foundation/Log.h"
#include "host/driver/RunId.h"
#include "run/PptCtrl.h"

namespace {

constexpr HostThread::TimerId kRunTickTimer = 3;
constexpr std::uint32_t kRunTickMs = 120;

}  // namespace

// All that a worker may still reach when the driver has gone.
struct RunDriver::Run {
  std::uint64_t id = 0;
  RunListener listener;
  RunReport report;
  bool recorded = false;  // the controller gave its record
  bool inTick = false;    // a tick is on the stack
  PhaseMeter meter;
  TranslateConfig* control = nullptr;
  RunSink sink;
  std::unique_ptr<PptCtrl> controller;

  void Observe(const RunEvent& event);
};

// The report follows the events where the controller hands over no record of its own, as a run
// that was turned away at its start.
void RunDriver::Run::Observe(const RunEvent& event) {
  RunRecord& record = report.record;
  if (event.kind == RunEventKind::kOnError) {
    report.errorCode = event.code;
    report.errorMessage = event.message;
    if (!recorded) record.outcome = RunOutcome::kFailed;
  } else if (event.kind == RunEventKind::kOnCancelled && !recorded) {
    record.outcome = RunOutcome::kCancelled;
  }
  if (listener.onEvent) listener.onEvent(event);
}

RunDriver::RunDriver(ObjectRef application, HostThread& thread)
    : application_(std::move(application)), thread_(thread) {
  std::erase_if(StuckRuns(),
                [](const std::shared_ptr<Run>& run) { return !run->controller->WorkerRunning(); });
  DetectHost(application_.get());
}

std::vector<std::shared_ptr<RunDriver::Run>>& RunDriver::StuckRuns() {
  // Never destroyed: at the process's end their workers may still be busy.
  static auto& runs = *std::make_unique<std::vector<std::shared_ptr<Run>>>().release();
  return runs;
}

RunDriver::~RunDriver() {
  thread_.KillTimer(kRunTickTimer);
  if (run_ == nullptr || run_->controller == nullptr || run_->controller->Abort()) return;
  LogLine(u"PptPane shutdown: run worker busy, object kept alive");
  StuckRuns().push_back(std::move(run_));
}

WindowContext RunDriver::ActiveWindow() const {
  WindowContext context;
  ObjectRef window;
  if (!AutoGetObject(application_.get(), u"ActiveWindow", window)) return context;
  Variant hwnd;
  if (Succeeded(AutoGet(window.get(), u"HWND", hwnd))) VariantToWhole(hwnd, context.hwnd);
  context.id = window->Identity();
  return context;
}

RunParams RunDriver::MakeParams(const RunRequest& request) {
  RunParams params;
  params.runId = run_->id;
  params.windowContext = ActiveWindow();
  params.configSlot = &run_->control;
  params.owner = this;
  params.scope = request.scope;
  params.full = request.scope == Scope::kWholeDeck;
  params.usageKind =
      request.scope == Scope::kSelection ? u"translate_selection" : u"translate_full";
  params.clientTraceId = u"ppt_" + DecimalUnsigned(run_->id);
  if (!request.targetLang.empty()) params.targetLang = request.targetLang;
  if (!request.sourceLang.empty()) params.sourceLang = request.sourceLang;
  params.accessToken = request.accessToken;
  params.targetFont = request.targetFont;
  return params;
}

bool RunDriver::Start(const RunRequest& request, RunListener listener) {
  if (running_) {
    LogLine(u"PptPane start ignored: run in progress");
    return false;
  }
  LogLine(u"PptPane StartRun begin scope=" + Decimal(static_cast<std::int32_t>(request.scope)));
  running_ = true;
  run_ = std::make_shared<Run>();
  run_->id = NextRunId(thread_.TickCount());
  run_->listener = std::move(listener);
  const RunParams params = MakeParams(request);
  run_->sink = MakeEventSink(thread_, run_->id, [run = std::weak_ptr(run_)](const RunEvent& event) {
    if (const auto held = run.lock()) held->Observe(event);
  });
  run_->controller = std::make_unique<PptCtrl>(
      application_, RunSurroundings{thread_, hands_, [run = run_.get()](const RunRecord& record) {
                                      run->report.record = record;
                                      run->recorded = true;
                                    }});

  run_->meter = PhaseMeter();
  Wide message;
  const bool started = run_->controller->Start(params, &run_->sink, message);
  run_->report.collect = run_->meter.Next();
  if (!started) {
    LogLine(u"PptPane run end runId=" + DecimalUnsigned(run_->id) + u": " + message);
    run_->report.record.summary = message;
    End();
  } else if (thread_.SetTimer(kRunTickTimer, kRunTickMs, [this] { OnTick(); })) {
    LogLine(u"PptPane StartRun end (async)");
    return true;
  } else {
    LogLine(u"PptPane run tick timer failed; abort run");
    // A worker that stays busy keeps its controller, and nothing ticks it any more.
    if (run_->controller->Abort()) End();
  }
  LogLine(u"PptPane StartRun end");
  return true;
}

void RunDriver::OnTick() {
  if (run_ == nullptr || run_->controller == nullptr) return;
  // A host call of a tick may let the next one through, which must not end the run beneath it.
  if (run_->inTick) return;
  run_->inTick = true;
  PptCtrl& controller = *run_->controller;
  if (!controller.finished() && controller.WorkerRunning()) {
    if (!controller.abortRequested()) controller.Tick();
    run_->inTick = false;
    return;
  }
  run_->report.translate = run_->meter.Next();
  controller.Finish();
  run_->report.write = run_->meter.Next();
  End();
}

void RunDriver::End() {
  thread_.KillTimer(kRunTickTimer);
  run_->controller.reset();
  LogLine(u"PptPane run finished");
  // Behind the run's last events, which are on their way already.
  thread_.Post([this, weak = std::weak_ptr(run_)] {
    const std::shared_ptr<Run> run = weak.lock();
    if (run == nullptr) return;
    run_.reset();
    running_ = false;
    if (run->listener.onEnded) run->listener.onEnded(run->report);
  });
}

void RunDriver::Cancel() {
  if (run_ == nullptr || run_->control == nullptr) return;
  run_->control->cancelled = 1;
  run_->control->paused = 0;
}

void RunDriver::Pause() {
  if (run_ != nullptr && run_->control != nullptr) run_->control->paused = 1;
}

void RunDriver::Resume() {
  if (run_ != nullptr && run_->control != nullptr) run_->control->paused = 0;
}
