#include "run/control/RunFinish.h"

#include <exception>

#include "foundation/log/Log.h"
#include "run/control/RunPacing.h"
#include "run/control/RunReport.h"
#include "run/document/BilingualSlides.h"
#include "run/write/BrokenPhrases.h"

namespace quillmarch::addin {

namespace {

// A step that throws costs itself: the run must end and say so.
template <typename Step>
void Guarded(Step step) noexcept {
  try {
    step();
  } catch (const std::exception&) {
  }
}

bool ApplyWithTries(RunState& run) {
  for (int tries = 0; tries < kFinishTries; ++tries) {
    if (ApplySlide(run, run.nextSlide, false, run.params.bilingual)) return true;
    run.surroundings.thread.Sleep(kFinishSleepMs);
  }
  return false;
}

void WriteOwedSlides(RunState& run) {
  const std::int32_t ready = run.job.slidesReady.load(std::memory_order_acquire);
  // A slide in its rest is written and only waits to be looked at.
  if (run.tickPhase == kPhaseRest && run.nextSlide < ready) ++run.nextSlide;
  while (run.nextSlide < ready) {
    if (!ApplyWithTries(run)) {
      LogLine(u"PptCtrl finish apply skipped: sta gate busy");
      break;
    }
    ++run.nextSlide;
  }
  run.tickPhase = kPhaseShow;
}

Wide Summary(const RunState& run) {
  Wide text = u"已翻译 " + Decimal(run.writes.appliedCount) + u" 段文本（共 " +
              Decimal(static_cast<std::int64_t>(run.texts.units.size())) + u" 段）。";
  if (run.texts.smartArtSkipped > 0) {
    text += u"\r\n另有 " + Decimal(run.texts.smartArtSkipped) +
            u" 个 SmartArt 图形未翻译（当前宿主不支持，建议用离线 pptx 工具）。";
  }
  if (!run.texts.skipNotes.empty()) {
    text += u"\r\n跳过：" + run.texts.skipNotes.front();
    if (run.texts.skipNotes.size() > 1) {
      text += u"（等 " + Decimal(static_cast<std::int64_t>(run.texts.skipNotes.size())) + u" 项）";
    }
  }
  if (!run.writes.applyError.empty()) text += u"\r\n部分回写失败：" + run.writes.applyError;
  return text;
}

RunOutcome EndCancelled(RunState& run, Wide& summary) {
  RemoveBilingualCopies(run.copies);
  if (run.sink != nullptr && run.sink->onCancelled) run.sink->onCancelled();
  summary = u"已取消";
  return RunOutcome::kCancelled;
}

RunOutcome EndFailed(RunState& run, Wide& summary) {
  RemoveBilingualCopies(run.copies);
  summary = u"翻译失败：" + run.job.errorMessage;
  if (run.job.errorCode.empty()) run.job.errorCode = u"translate_failed";
  if (run.sink != nullptr && run.sink->onError) {
    run.sink->onError(run.job.errorCode, run.job.errorMessage);
  }
  return RunOutcome::kFailed;
}

RunOutcome EndCompleted(RunState& run, Wide& summary) {
  LogLine(u"PptCtrl BrokenPhrasePass begin");
  // A pause would hold this thread, and only this thread could lift it.
  run.job.config.paused.store(0, std::memory_order_relaxed);
  Guarded([&] { BrokenPhrasePass(run.Writing(), run.job.config, run.surroundings.thread, &run); });
  LogLine(u"PptCtrl apply done totalApplied=" + Decimal(run.writes.appliedCount));

  bool copyKept = run.params.bilingual;
  if (run.params.bilingual && run.writes.appliedCount == 0) {
    const auto made = static_cast<std::int32_t>(run.copies.copyPairs.size());
    const std::int32_t remain = RemoveBilingualCopies(run.copies);
    copyKept = remain > 0 && remain == made;
    if (remain > 0) LogLine(u"PptCtrl bilingual copies remain=" + Decimal(remain));
  }
  if (run.sink != nullptr && run.sink->onComplete) {
    run.sink->onComplete(static_cast<std::int64_t>(run.Now() - run.startTick),
                         static_cast<std::int32_t>(run.texts.units.size()), copyKept);
  }
  summary = Summary(run);
  return RunOutcome::kCompleted;
}

RunOutcome EndByResult(RunState& run, Wide& summary) {
  if (run.job.result == kCancelled) return EndCancelled(run, summary);
  if (Failed(run.job.result)) return EndFailed(run, summary);
  return EndCompleted(run, summary);
}

}  // namespace

void FinishRun(RunState& run) noexcept {
  if (run.finished || run.WorkerRunning()) return;
  run.finished = true;
  RunOutcome outcome = RunOutcome::kAborted;
  Wide summary;
  Guarded([&] {
    // Decimal after a hexadecimal label: the readers of these logs know it so.
    LogLine(u"PptCtrl worker end hr=0x" +
            DecimalUnsigned(static_cast<std::uint32_t>(run.job.result)) + u" abort=" +
            (run.abortRequested ? u"1" : u"0") + u" applied=" + Decimal(run.writes.appliedCount));
  });
  if (run.abortRequested) {
    Guarded([&] { summary = u"宿主关闭，run 中止"; });
  } else {
    Guarded([&] { WriteOwedSlides(run); });
    outcome = run.job.result == kCancelled ? RunOutcome::kCancelled
              : Failed(run.job.result)     ? RunOutcome::kFailed
                                           : RunOutcome::kCompleted;
    Guarded([&] { outcome = EndByResult(run, summary); });
  }
  if (run.thread.joinable()) run.thread.join();
  if (run.params.configSlot != nullptr) *run.params.configSlot = nullptr;
  Guarded([&] {
    LogLine(u"PptCtrl run end runId=" + DecimalUnsigned(run.params.runId) + u": " + summary);
  });
  const bool failed = outcome == RunOutcome::kFailed;
  ReportRun(run,
            {outcome, summary, failed ? run.job.errorCode : Wide(), failed ? run.job.result : kOk});
}

bool StopWorker(RunState& run) {
  run.abortRequested = true;
  run.job.config.cancelled.store(1, std::memory_order_relaxed);
  // A paused worker must wake to see the first flag.
  run.job.config.paused.store(0, std::memory_order_relaxed);
  const std::uint64_t begin = run.Now();
  while (run.WorkerRunning()) {
    if (run.Now() - begin >= kAbortWaitMs) {
      LogLine(u"PptCtrl abort: worker still busy, keep object alive");
      return false;
    }
    run.surroundings.thread.Sleep(kAbortLookMs);
  }
  return true;
}

}  // namespace quillmarch::addin
