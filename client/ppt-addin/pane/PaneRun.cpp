#include "pane/PaneRun.h"

#include <exception>
#include <utility>

#include "foundation/log/Log.h"
#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"
#include "pane/RunEvents.h"
#include "pane/RunId.h"
#include "pane/Terminology.h"
#include "pane/TransportMessages.h"
#include "run/document/StaGate.h"

namespace quillmarch::addin {

namespace {

constexpr char16_t kDefaultTargetFont[] = u"Times New Roman";

// While one lives, a controller_'s call is on the stack.
class InController {
 public:
  explicit InController(bool& flag) : flag_(flag) { flag_ = true; }
  ~InController() { flag_ = false; }
  InController(const InController&) = delete;
  InController& operator=(const InController&) = delete;

 private:
  bool& flag_;
};

// The action decides first.
Scope ScopeOf(const Wide& message) {
  if (JsonGetString(message, u"action") == u"startSelection") return Scope::kSelection;
  const Wide panelMode = JsonGetString(message, u"panelMode");
  if (panelMode == u"selection") return Scope::kSelection;
  return panelMode == u"slide" ? Scope::kCurrentSlide : Scope::kWholeDeck;
}

void TakeUnlessEmpty(Wide& field, Wide value) {
  if (!value.empty()) field = std::move(value);
}

}  // namespace

PaneRun::PaneRun(CPptPane& pane)
    : pane_(pane),
      transport_({pane.surroundings().thread,
                  [this] { return !pane_.shuttingDown() && pane_.browser().pageThere(); },
                  [this](Wide json) {
                    PostToPane(pane_.window(),
                               [weak = pane_.weak_from_this(), json = std::move(json)] {
                                 if (const auto held = weak.lock())
                                   held->browser().PostToPage(json);
                               });
                  },
                  pane.surroundings().bridgeWaitMs}) {}

void PaneRun::StartRun(const Wide& message) {
  if (pane_.shuttingDown()) return;
  if (runActive_ != 0) {
    LogLine(u"PptPane start ignored: run in progress");
    return;
  }
  if (DeferStart(message)) return;
  const Scope scope = ScopeOf(message);
  LogLine(u"PptPane StartRun begin scope=" + Decimal(static_cast<std::int32_t>(scope)));
  if (runActive_.exchange(1) != 0) {
    LogLine(u"PptPane start ignored: run in progress");
    return;
  }
  const std::shared_ptr<CPptPane> self = pane_.shared_from_this();
  references_.pane = self;
  const PaneSurroundings& surroundings = pane_.surroundings();
  if (surroundings.holdObject) references_.object = surroundings.holdObject(pane_);
  try {
    BeginRun(message, scope);
  } catch (const std::exception&) {
    // Memory ran out. A worker that runs already is left to the tick, or to the shutdown.
    if (controller_ == nullptr || !controller_->WorkerRunning()) EndRun();
  }
}

// A newer message replaces the one that waits.
bool PaneRun::DeferStart(const Wide& message) {
  if (!StaGateHasOwner()) return false;
  deferredStart_ = message;
  if (!deferredStartArmed_) {
    deferredStartArmed_ =
        pane_.SetPaneTimer(CPptPane::kDeferredStartTimer, CPptPane::kDeferredStartMs);
  }
  LogLine(u"PptPane StartRun deferred: sta mutation in flight");
  return true;
}

void PaneRun::DropDeferredStart() {
  pane_.KillPaneTimer(CPptPane::kDeferredStartTimer);
  deferredStartArmed_ = false;
  deferredStart_.clear();
}

void PaneRun::OnDeferredStart() {
  const Wide message = std::move(deferredStart_);
  DropDeferredStart();
  if (!message.empty()) StartRun(message);
}

RunParams PaneRun::MakeRunParams(const Wide& message, Scope scope, std::uint64_t runId) {
  RunParams params;
  params.runId = runId;
  params.windowContext = pane_.windowContext();
  params.configSlot = &runControl_;
  params.owner = &pane_;
  params.scope = scope;
  params.full = scope == Scope::kWholeDeck;
  params.usageKind = scope == Scope::kSelection ? u"translate_selection" : u"translate_full";
  params.clientTraceId = u"ppt_" + DecimalUnsigned(runId);
  TakeUnlessEmpty(params.clientTraceId, JsonGetString(message, u"clientTraceId"));
  TakeUnlessEmpty(params.targetLang, JsonGetString(message, u"targetLang"));
  TakeUnlessEmpty(params.sourceLang, JsonGetString(message, u"sourceLang"));

  PaneSession& session = pane_.session();
  session.ReadStart(message);
  params.accessToken = session.accessToken();

  const TargetStyle& style = session.targetStyle();
  if (JsonHasKey(message, u"targetFont")) {
    params.targetFont = JsonGetString(message, u"targetFont");
  } else {
    params.targetFont = style.font.empty() ? Wide(kDefaultTargetFont) : style.font;
  }
  params.targetStyle = style;
  params.useTargetFontSize = style.size > 0;
  params.bilingual = JsonGetBool(message, u"pptBilingualSlides");
  if (session.nativeTranslateViaJs()) {
    params.translateViaPage = [this](const TranslateBatchRequest& request) {
      return transport_.TranslateViaPage(request);
    };
  }
  params.resolveTerminology = MakeTerminologyHook();
  return params;
}

// Called by the worker, so it reads nothing that this thread may change meanwhile.
ResolveTerminologyHook PaneRun::MakeTerminologyHook() {
  const PaneSession& session = pane_.session();
  if (!session.nativeTranslateViaJs()) {
    return [](const std::vector<Wide>& texts, Wide& instruction,
              std::vector<GlossaryEntry>& glossary, Wide&, Wide&) {
      ResolveTerminologyNative(texts, instruction, glossary);
      return true;
    };
  }
  return [this, ids = session.glossaryIds(), instructionId = session.globalInstructionId()](
             const std::vector<Wide>& texts, Wide& instruction,
             std::vector<GlossaryEntry>& glossary, Wide& code, Wide& errorText) {
    return transport_.ResolveTerminologyViaPage(ids, instructionId, texts, instruction, glossary,
                                                code, errorText) ||
           IsSoftBridgeError(code);
  };
}

void PaneRun::BeginRun(const Wide& message, Scope scope) {
  const PaneSurroundings& surroundings = pane_.surroundings();
  const std::uint64_t runId = NewRunId(surroundings.thread.TickCount());
  const RunParams params = MakeRunParams(message, scope, runId);
  FillRunSink(pane_, runId, runSink_);
  currentRunId_ = runId;
  controller_.reset();
  controller_ = std::make_unique<PptCtrl>(
      pane_.hostApp(),
      RunSurroundings{surroundings.thread, surroundings.input, surroundings.observer});
  Wide endText;
  bool started = false;
  {
    const InController call(inController_);
    started = controller_->Start(params, &runSink_, endText);
  }
  if (!started) {
    LogLine(u"PptPane run end runId=" + DecimalUnsigned(runId) + u": " + endText);
    EndRun();
  } else if (pane_.SetPaneTimer(CPptPane::kRunTickTimer, CPptPane::kRunTickMs)) {
    LogLine(u"PptPane StartRun end (async)");
    return;
  } else {
    LogLine(u"PptPane run tick timer failed; abort run");
    const InController call(inController_);
    // A worker that stays busy keeps its controller_, and nothing ticks it any more.
    if (controller_->Abort()) EndRun();
  }
  LogLine(u"PptPane StartRun end");
}

void PaneRun::OnRunTick() {
  if (controller_ == nullptr || inController_) return;
  const InController call(inController_);
  if (!controller_->finished() && controller_->WorkerRunning()) {
    if (!controller_->abortRequested()) controller_->Tick();
    // A host call of the tick may have let the window's end in, and then no tick follows.
    if (pane_.HasWindow() || controller_->WorkerRunning()) return;
  }
  controller_->Finish();
  EndRun();
}

void PaneRun::EndRun() {
  pane_.KillPaneTimer(CPptPane::kRunTickTimer);
  controller_.reset();
  currentRunId_ = 0;
  runActive_ = 0;
  LogLine(u"PptPane run finished");
  references_ = {};  // the callers hold the pane themselves
  // Where the window went inside a step of the run, its end handed the run's references on.
  if (!pane_.HasWindow()) ReleaseEndedPanes();
}

void PaneRun::CancelRun() {
  DropDeferredStart();
  StopFlags();
  transport_.FailAllPendingTranslate(u"cancelled");
  if (currentRunId_ != 0) pane_.browser().PostToPage(AbortForRunMessage(currentRunId_));
}

void PaneRun::Pause() {
  // Once the worker has ended a pause would hold this thread, in the repairs of the run's finish,
  // and only this thread could lift it.
  const bool finishing = controller_ != nullptr && controller_->finished();
  if (runControl_ != nullptr && !finishing) runControl_->paused = 1;
}

void PaneRun::Resume() {
  if (runControl_ != nullptr) runControl_->paused = 0;
}

void PaneRun::ShutDown() {
  DropDeferredStart();
  StopFlags();
  FailRequests();
  if (controller_ == nullptr) return;
  if (controller_->Abort()) {
    EndRun();
  } else {
    LogLine(u"PptPane shutdown: run worker busy, object kept alive");
  }
}

void PaneRun::FailRequests() {
  transport_.FailAllPendingTranslate(u"addin_shutdown");
}

void PaneRun::DestroyController() {
  controller_.reset();
}

RunReferences PaneRun::TakeReferences() {
  return std::exchange(references_, {});
}

void PaneRun::StopFlags() {
  if (runControl_ == nullptr) return;
  runControl_->cancelled = 1;
  runControl_->paused = 0;
}

}  // namespace quillmarch::addin
