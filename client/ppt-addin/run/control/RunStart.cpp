#include "run/control/RunStart.h"

#include <exception>

#include "foundation/log/Log.h"
#include "run/collect/CollectSelection.h"
#include "run/collect/CollectSlides.h"
#include "run/control/BusyRegistry.h"
#include "run/control/RunReport.h"
#include "run/control/RunWorker.h"
#include "run/document/BilingualSlides.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

namespace {

struct Rejection {
  const char16_t* code;
  Wide message;
  Wide summary;
  ResultCode failure = kFail;
};

void SendReady(RunState& run, std::size_t units) {
  run.readySent = true;
  const auto count = static_cast<std::int32_t>(units);
  if (run.sink != nullptr && run.sink->onReady) run.sink->onReady(count, count);
}

// All events of a run that ends in its start; `finished` first, so that none is ever sent twice.
bool Reject(RunState& run, const Rejection& why, Wide& outMessage) {
  run.finished = true;
  if (!run.readySent) SendReady(run, 0);
  if (run.sink != nullptr && run.sink->onError) run.sink->onError(why.code, why.message);
  outMessage = why.summary;
  ReportRun(run, {RunOutcome::kFailed, outMessage, why.code, why.failure});
  return false;
}

bool EndWithNothingToDo(RunState& run, Wide& outMessage) {
  run.finished = true;
  SendReady(run, 0);
  if (run.sink != nullptr && run.sink->onComplete) run.sink->onComplete(0, 0, false);
  outMessage = u"没有需要翻译的文本（数字、标点等已自动跳过）。";
  ReportRun(run, {RunOutcome::kCompleted, outMessage, {}, kOk});
  return false;
}

bool EnterPresentation(RunState& run) {
  if (run.params.owner == nullptr) return true;
  const std::uintptr_t identity = run.document.presentation->Identity();
  if (identity != 0) {
    if (!EnterBusy(identity, run.params.owner)) return false;
    run.busyIdentity = identity;
  }
  run.registeredBusy = true;
  return true;
}

Status Collect(RunState& run) {
  if (run.params.scope == Scope::kSelection) {
    return CollectSelection(run.document, run.sink, run.texts);
  }
  const bool wholeDeck = run.params.scope == Scope::kWholeDeck;
  return CollectSlides(run.document, wholeDeck, run.sink, run.texts);
}

void FillConfig(RunState& run) {
  const RunParams& params = run.params;
  TranslateConfig& config = run.job.config;
  config.clientProduct = u"ppt";
  config.usageKind = params.usageKind;
  config.targetLang = params.targetLang;
  config.sourceLang = params.sourceLang;
  config.accessToken = params.accessToken;
  config.runId = params.runId;
  config.clientTraceId = params.clientTraceId;
  config.targetStyle = params.targetStyle;
  if (params.translateViaPage) config.translateViaPage = params.translateViaPage;
}

void PrepareLists(RunState& run) {
  run.job.translations.assign(run.texts.units.size(), Wide());
  run.writes = RunWrites();
  run.writes.reached.assign(run.texts.units.size(), false);
  run.startTick = run.Now();
}

}  // namespace

bool StartRun(RunState& run, const RunParams& params, const RunSink* sink, Wide& outMessage) {
  run.params = params;
  run.sink = sink;
  run.copies.bilingual = params.bilingual;
  run.document.windowContext = params.windowContext;
  LogLine(u"PptCtrl Start begin scope=" + Decimal(static_cast<std::int32_t>(params.scope)) +
          u" full=" + Decimal(params.full ? 1 : 0) + u" bilingual=" +
          Decimal(params.bilingual ? 1 : 0) + u" targetLang=" + params.targetLang);
  if (sink != nullptr && sink->onRunStarted) sink->onRunStarted();

  if (RunWindow(run.document) == nullptr || RunPresentation(run.document) == nullptr) {
    LogLine(u"PptCtrl run rejected: pane window unavailable");
    return Reject(run,
                  {u"pane_window_unavailable", u"无法定位当前演示文稿窗口，请重新打开侧栏后重试。",
                   u"无法定位当前演示文稿窗口"},
                  outMessage);
  }
  if (!EnterPresentation(run)) {
    LogLine(u"PptCtrl run rejected: presentation busy");
    return Reject(run,
                  {u"presentation_busy", u"该演示文稿已在另一个窗口翻译中，请等它完成或取消。",
                   u"演示文稿已在其它窗口翻译中"},
                  outMessage);
  }
  const Status collected = Collect(run);
  if (!collected.ok()) {
    return Reject(
        run,
        {u"collect_failed", collected.words, u"收集文本失败：" + collected.words, collected.code},
        outMessage);
  }
  LogLine(u"PptCtrl collect done total=" +
          Decimal(static_cast<std::int64_t>(run.texts.units.size())));
  if (run.texts.units.empty()) return EndWithNothingToDo(run, outMessage);
  const Status copied = params.bilingual ? CreateBilingualCopies(run.copies) : Status();
  if (!copied.ok()) {
    RemoveBilingualCopies(run.copies);
    return Reject(run,
                  {u"bilingual_copy_failed", copied.words, u"创建双语译文页失败：" + copied.words,
                   copied.code},
                  outMessage);
  }
  SendReady(run, run.texts.units.size());
  PrepareLists(run);
  FillConfig(run);
  if (!StartWorker(run)) {
    RemoveBilingualCopies(run.copies);
    return Reject(run, {u"translate_failed", u"无法启动翻译线程", u"无法启动翻译线程"}, outMessage);
  }
  run.started = true;
  LogLine(u"PptCtrl worker started runId=" + DecimalUnsigned(params.runId));
  return true;
}

bool RejectBrokenStart(RunState& run, Wide& outMessage) noexcept {
  try {
    // Memory ran out, or a callable of the driver threw, before there was a worker.
    return Reject(run, {u"collect_failed", Wide(), u"收集文本失败："}, outMessage);
  } catch (const std::exception&) {
    run.finished = true;
    ReportRun(run, {RunOutcome::kFailed, {}, {}, kFail});
    return false;
  }
}

}  // namespace quillmarch::addin
