// A pane's run from the page's start message to its ending.
#include <exception>
#include <utility>

#include "foundation/log/Log.h"
#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"
#include "pane/RunEvents.h"
#include "pane/RunId.h"
#include "pane/Terminology.h"
#include "run/document/StaGate.h"

namespace quillmarch::addin {

namespace {

constexpr char16_t kDefaultTargetFont[] = u"Times New Roman";

// While one lives, a controller's call is on the stack.
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

void CPptPane::StartRun(const Wide& message) {
  if (shuttingDown != 0) return;
  if (runActive != 0) {
    LogLine(u"PptPane start ignored: run in progress");
    return;
  }
  if (DeferStart(message)) return;
  const Scope scope = ScopeOf(message);
  LogLine(u"PptPane StartRun begin scope=" + Decimal(static_cast<std::int32_t>(scope)));
  if (runActive.exchange(1) != 0) {
    LogLine(u"PptPane start ignored: run in progress");
    return;
  }
  const std::shared_ptr<CPptPane> self = shared_from_this();
  runReference_ = self;
  if (surroundings_.holdObject) runHoldsObject_ = surroundings_.holdObject(*this);
  try {
    BeginRun(message, scope);
  } catch (const std::exception&) {
    // Memory ran out. A worker that runs already is left to the tick, or to the shutdown.
    if (controller == nullptr || !controller->WorkerRunning()) EndRun();
  }
}

// A newer message replaces the one that waits.
bool CPptPane::DeferStart(const Wide& message) {
  if (!StaGateHasOwner()) return false;
  deferredStart = message;
  if (!deferredStartArmed) deferredStartArmed = SetPaneTimer(kDeferredStartTimer, kDeferredStartMs);
  LogLine(u"PptPane StartRun deferred: sta mutation in flight");
  return true;
}

void CPptPane::DropDeferredStart() {
  KillPaneTimer(kDeferredStartTimer);
  deferredStartArmed = false;
  deferredStart.clear();
}

void CPptPane::OnDeferredStart() {
  const Wide message = std::move(deferredStart);
  DropDeferredStart();
  if (!message.empty()) StartRun(message);
}

RunParams CPptPane::MakeRunParams(const Wide& message, Scope scope, std::uint64_t runId) {
  RunParams params;
  params.runId = runId;
  params.windowContext = windowContext;
  params.configSlot = &runControl;
  params.owner = this;
  params.scope = scope;
  params.full = scope == Scope::kWholeDeck;
  params.usageKind = scope == Scope::kSelection ? u"translate_selection" : u"translate_full";
  params.clientTraceId = u"ppt_" + DecimalUnsigned(runId);
  TakeUnlessEmpty(params.clientTraceId, JsonGetString(message, u"clientTraceId"));
  TakeUnlessEmpty(params.targetLang, JsonGetString(message, u"targetLang"));
  TakeUnlessEmpty(params.sourceLang, JsonGetString(message, u"sourceLang"));

  Wide token = JsonGetString(message, u"accessToken");
  if (token.empty()) token = JsonGetString(message, u"token");
  if (!token.empty()) SetAccessToken(token);
  params.accessToken = accessToken;
  glossaryIds = JsonGetStringArray(message, u"glossaryIds");
  globalInstructionId = JsonGetString(message, u"globalInstructionId");
  ReadTransport(message);

  if (JsonHasKey(message, u"targetFont")) {
    params.targetFont = JsonGetString(message, u"targetFont");
  } else {
    params.targetFont = targetStyle.font.empty() ? Wide(kDefaultTargetFont) : targetStyle.font;
  }
  params.targetStyle = targetStyle;
  params.useTargetFontSize = targetStyle.size > 0;
  params.bilingual = JsonGetBool(message, u"pptBilingualSlides");
  if (nativeTranslateViaJs) {
    params.translateViaPage = [this](const TranslateBatchRequest& request) {
      return transport_.TranslateViaPage(request);
    };
  }
  params.resolveTerminology = MakeTerminologyHook();
  return params;
}

// "transport" comes last and can only switch the page's road off.
void CPptPane::ReadTransport(const Wide& message) {
  if (JsonHasKey(message, u"nativeTranslateViaJs")) {
    nativeTranslateViaJs = JsonGetBool(message, u"nativeTranslateViaJs");
  }
  if (JsonHasKey(message, u"transport") && JsonGetString(message, u"transport") == u"native") {
    nativeTranslateViaJs = false;
  }
}

// Called by the worker, so it reads nothing that this thread may change meanwhile.
ResolveTerminologyHook CPptPane::MakeTerminologyHook() {
  if (!nativeTranslateViaJs) {
    return [](const std::vector<Wide>& texts, Wide& instruction,
              std::vector<GlossaryEntry>& glossary, Wide&, Wide&) {
      ResolveTerminologyNative(texts, instruction, glossary);
      return true;
    };
  }
  return [this, ids = glossaryIds, instructionId = globalInstructionId](
             const std::vector<Wide>& texts, Wide& instruction,
             std::vector<GlossaryEntry>& glossary, Wide& code, Wide& errorText) {
    return transport_.ResolveTerminologyViaPage(ids, instructionId, texts, instruction, glossary,
                                                code, errorText) ||
           IsSoftBridgeError(code);
  };
}

void CPptPane::BeginRun(const Wide& message, Scope scope) {
  const std::uint64_t runId = NewRunId(surroundings_.thread.TickCount());
  const RunParams params = MakeRunParams(message, scope, runId);
  FillRunSink(*this, runId, runSink);
  currentRunId = runId;
  controller.reset();
  controller = std::make_unique<PptCtrl>(
      hostApp, RunSurroundings{surroundings_.thread, surroundings_.input, surroundings_.observer});
  Wide endText;
  bool started = false;
  {
    const InController call(inController_);
    started = controller->Start(params, &runSink, endText);
  }
  if (!started) {
    LogLine(u"PptPane run end runId=" + DecimalUnsigned(runId) + u": " + endText);
    EndRun();
  } else if (SetPaneTimer(kRunTickTimer, kRunTickMs)) {
    LogLine(u"PptPane StartRun end (async)");
    return;
  } else {
    LogLine(u"PptPane run tick timer failed; abort run");
    const InController call(inController_);
    // A worker that stays busy keeps its controller, and nothing ticks it any more.
    if (controller->Abort()) EndRun();
  }
  LogLine(u"PptPane StartRun end");
}

void CPptPane::OnRunTick() {
  if (controller == nullptr || inController_) return;
  const InController call(inController_);
  if (!controller->finished() && controller->WorkerRunning()) {
    if (!controller->abortRequested()) controller->Tick();
    // A host call of the tick may have let the window's end in, and then no tick follows.
    if (HasWindow() || controller->WorkerRunning()) return;
  }
  controller->Finish();
  EndRun();
}

void CPptPane::EndRun() {
  KillPaneTimer(kRunTickTimer);
  controller.reset();
  currentRunId = 0;
  runActive = 0;
  LogLine(u"PptPane run finished");
  runReference_.reset();  // the callers hold the pane themselves
  runHoldsObject_.reset();
  // Where the window went inside a step of the run, its end handed the run's references on.
  if (!HasWindow()) ReleaseEndedPanes();
}

void CPptPane::StopFlags() {
  if (runControl == nullptr) return;
  runControl->cancelled = 1;
  runControl->paused = 0;
}

}  // namespace quillmarch::addin
