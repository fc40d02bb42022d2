#include "run/control/RunWorker.h"

#include <algorithm>
#include <exception>

#include "foundation/system/LiveCounts.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

bool Cancelled(const WorkerJob& job) {
  return job.config.cancelled.load(std::memory_order_relaxed) != 0;
}

bool EndWith(WorkerJob& job, ResultCode result, Wide message, Wide code) {
  job.errorMessage = std::move(message);
  job.errorCode = std::move(code);
  job.result = result;
  return false;
}

bool ResolveTerms(WorkerJob& job) {
  const std::span<const Wide> texts = job.sourceTexts;
  if (!job.resolveTerminology || texts.empty()) return true;
  // The first texts stand for the run: one resolve serves all of its batches.
  const auto count = static_cast<std::ptrdiff_t>(std::min(texts.size(), kMaxTerminologyTexts));
  const std::vector<Wide> corpus(texts.begin(), texts.begin() + count);
  Wide instruction;
  std::vector<GlossaryEntry> glossary;
  Wide code;
  Wide message;
  if (!job.resolveTerminology(corpus, instruction, glossary, code, message)) {
    const ResultCode result = code == u"cancelled" ? kCancelled : kFail;
    return EndWith(job, result,
                   message.empty() ? Wide(u"terminology resolve failed") : std::move(message),
                   code.empty() ? Wide(u"terminology_resolve_failed") : std::move(code));
  }
  if (!instruction.empty() || !glossary.empty()) {
    job.config.instruction = std::move(instruction);
    job.config.glossary = std::move(glossary);
  }
  return true;
}

void ReportProgress(const WorkerJob& job, std::size_t first, std::size_t end) {
  if (job.sink == nullptr || !job.sink->onProgress) return;
  const auto total = static_cast<std::int32_t>(job.sourceTexts.size());
  for (std::size_t unit = first; unit < end; ++unit) {
    const Wide& source = job.sourceTexts[unit];
    const Wide& translation = job.translations[unit];
    const bool skipped = translation.empty() || translation == source;
    job.sink->onProgress(static_cast<std::int32_t>(unit + 1), total, skipped, source, translation);
  }
}

bool TranslateBatch(WorkerJob& job, std::size_t first, std::size_t end) {
  if (Cancelled(job)) {
    job.result = kCancelled;
    return false;
  }
  const std::span<const Wide> batch = job.sourceTexts.subspan(first, end - first);
  std::vector<Wide> answers;
  Wide message;
  Wide code;
  if (!TranslateTexts(job.config, batch, answers, message, code, nullptr)) {
    const bool cancelled = code == u"cancelled" || Cancelled(job);
    return EndWith(job, cancelled ? kCancelled : kFail,
                   message.empty() ? Wide(u"HTTP request failed") : std::move(message),
                   code.empty() ? Wide(u"translate_failed") : std::move(code));
  }
  if (answers.size() != batch.size()) {
    return EndWith(job, kFail, u"batch size mismatch", u"batch_size_mismatch");
  }
  std::move(answers.begin(), answers.end(),
            job.translations.begin() + static_cast<std::ptrdiff_t>(first));
  ReportProgress(job, first, end);
  return true;
}

void GoThroughSlides(WorkerJob& job) {
  job.translations.assign(job.sourceTexts.size(), Wide());
  if (!ResolveTerms(job)) return;
  for (const auto& [first, end] : job.slideRanges) {
    for (std::size_t position = first; position < end; position += kMaxBatch) {
      if (!TranslateBatch(job, position, std::min(end, position + kMaxBatch))) return;
    }
    // Publishes the slide's translations to the host thread.
    job.slidesReady.fetch_add(1, std::memory_order_release);
  }
}

void FillJob(RunState& run) {
  WorkerJob& job = run.job;
  job.sourceTexts = run.texts.sourceTexts;
  job.slideRanges = run.texts.slideRanges;
  job.sink = run.sink;
  job.hostThread = &run.surroundings.thread;
  job.resolveTerminology = run.params.resolveTerminology;
  job.slidesReady.store(0, std::memory_order_relaxed);
  job.ended.store(false, std::memory_order_relaxed);
  job.result = kOk;
  job.errorMessage.clear();
  job.errorCode.clear();
}

}  // namespace

void RunWorkerLoop(WorkerJob& job) noexcept {
  try {
    GoThroughSlides(job);
  } catch (const std::exception&) {
    // Memory ran out, or a callable of the driver threw: the run fails with its default code.
    job.result = kFail;
  }
}

bool StartWorker(RunState& run) {
  HostThread& hostThread = run.surroundings.thread;
  bool outside = false;
  try {
    FillJob(run);
    run.nextSlide = 0;
    if (run.params.configSlot != nullptr) *run.params.configSlot = &run.job.config;
    const auto work = [job = &run.job] {
      const LiveCount<LiveKind::kThread> running;
      RunWorkerLoop(*job);
      // The end first: whoever is woken by the second must see the first.
      HostThread& waiting = *job->hostThread;
      job->ended.store(true, std::memory_order_release);
      waiting.OutsideWorkEnds();
    };
    // Told before the thread exists, so that no clock leaps in between.
    hostThread.OutsideWorkBegins();
    outside = true;
    const ThreadStart& start = run.surroundings.startThread;
    run.thread = start ? start(work) : std::thread(work);
    return true;
  } catch (const std::exception&) {
    // No thread, or no memory for one.
    if (outside) hostThread.OutsideWorkEnds();
    if (run.params.configSlot != nullptr) *run.params.configSlot = nullptr;
    return false;
  }
}

}  // namespace quillmarch::addin
