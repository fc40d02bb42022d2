#include "run/control/RunWorker.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include "foundation/system/LiveCounts.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

bool Cancelled(const WorkerContext& context) {
  return context.config->cancelled.load(std::memory_order_relaxed) != 0;
}

bool EndWith(WorkerContext& context, ResultCode result, Wide message, Wide code) {
  *context.errorMessage = std::move(message);
  *context.errorCode = std::move(code);
  *context.workerResult = result;
  return false;
}

bool ResolveTerms(WorkerContext& context) {
  const std::vector<Wide>& texts = *context.sourceTexts;
  if (!context.resolveTerminology || texts.empty()) return true;
  // The first texts stand for the run: one resolve serves all of its batches.
  const auto count = static_cast<std::ptrdiff_t>(std::min(texts.size(), kMaxTerminologyTexts));
  const std::vector<Wide> corpus(texts.begin(), texts.begin() + count);
  Wide instruction;
  std::vector<GlossaryEntry> glossary;
  Wide code;
  Wide message;
  if (!context.resolveTerminology(corpus, instruction, glossary, code, message)) {
    const ResultCode result = code == u"cancelled" ? kCancelled : kFail;
    return EndWith(context, result,
                   message.empty() ? Wide(u"terminology resolve failed") : std::move(message),
                   code.empty() ? Wide(u"terminology_resolve_failed") : std::move(code));
  }
  if (!instruction.empty() || !glossary.empty()) {
    context.config->instruction = std::move(instruction);
    context.config->glossary = std::move(glossary);
  }
  return true;
}

void ReportProgress(const WorkerContext& context, std::size_t first, std::size_t end) {
  if (context.sink == nullptr || !context.sink->onProgress) return;
  const auto total = static_cast<std::int32_t>(context.sourceTexts->size());
  for (std::size_t unit = first; unit < end; ++unit) {
    const Wide& source = (*context.sourceTexts)[unit];
    const Wide& translation = (*context.translations)[unit];
    const bool skipped = translation.empty() || translation == source;
    context.sink->onProgress(static_cast<std::int32_t>(unit + 1), total, skipped, source,
                             translation);
  }
}

bool TranslateBatch(WorkerContext& context, std::size_t first, std::size_t end) {
  if (Cancelled(context)) {
    *context.workerResult = kCancelled;
    return false;
  }
  const auto begin = context.sourceTexts->begin();
  const std::vector<Wide> batch(begin + static_cast<std::ptrdiff_t>(first),
                                begin + static_cast<std::ptrdiff_t>(end));
  std::vector<Wide> answers;
  Wide message;
  Wide code;
  if (!TranslateTexts(*context.config, batch, answers, message, code, nullptr)) {
    const bool cancelled = code == u"cancelled" || Cancelled(context);
    return EndWith(context, cancelled ? kCancelled : kFail,
                   message.empty() ? Wide(u"HTTP request failed") : std::move(message),
                   code.empty() ? Wide(u"translate_failed") : std::move(code));
  }
  if (answers.size() != batch.size()) {
    return EndWith(context, kFail, u"batch size mismatch", u"batch_size_mismatch");
  }
  std::move(answers.begin(), answers.end(),
            context.translations->begin() + static_cast<std::ptrdiff_t>(first));
  ReportProgress(context, first, end);
  return true;
}

void GoThroughSlides(WorkerContext& context) {
  context.translations->assign(context.sourceTexts->size(), Wide());
  if (!ResolveTerms(context)) return;
  for (const auto& [first, end] : *context.slideRanges) {
    for (std::size_t position = first; position < end; position += kMaxBatch) {
      if (!TranslateBatch(context, position, std::min(end, position + kMaxBatch))) return;
    }
    // Publishes the slide's translations to the host thread.
    context.slidesReady->fetch_add(1, std::memory_order_release);
  }
}

void FillContext(RunState& run) {
  WorkerContext& context = run.workerContext;
  context.config = &run.config;
  context.params = &run.params;
  context.sourceTexts = &run.sourceTexts;
  context.translations = &run.translations;
  context.errorMessage = &run.errorMessage;
  context.errorCode = &run.errorCode;
  context.workerResult = &run.workerResult;
  context.sink = run.sink;
  context.slideRanges = &run.slideRanges;
  context.slidesReady = &run.slidesReady;
  context.ended = &run.workerEnded;
  context.hostThread = &run.surroundings.thread;
  context.resolveTerminology = run.params.resolveTerminology;
}

}  // namespace

void RunWorkerLoop(WorkerContext& context) noexcept {
  try {
    GoThroughSlides(context);
  } catch (const std::exception&) {
    // Memory ran out, or a callable of the driver threw: the run fails with its default code.
    *context.workerResult = kFail;
  }
}

bool StartWorker(RunState& run) {
  FillContext(run);
  run.slidesReady.store(0, std::memory_order_relaxed);
  run.nextSlide = 0;
  run.workerResult = kWorkerOk;
  run.errorMessage.clear();
  run.errorCode.clear();
  run.workerEnded.store(false, std::memory_order_relaxed);
  if (run.params.configSlot != nullptr) *run.params.configSlot = &run.config;

  // Told before the thread exists, so that no clock leaps in between.
  run.surroundings.thread.OutsideWorkBegins();
  try {
    run.thread = std::thread([context = &run.workerContext] {
      const LiveCount<LiveKind::kThread> running;
      RunWorkerLoop(*context);
      // The end first: whoever is woken by the second must see the first.
      HostThread& hostThread = *context->hostThread;
      context->ended->store(true, std::memory_order_release);
      hostThread.OutsideWorkEnds();
    });
  } catch (const std::system_error&) {
    run.surroundings.thread.OutsideWorkEnds();
    if (run.params.configSlot != nullptr) *run.params.configSlot = nullptr;
    return false;
  }
  return true;
}

}  // namespace quillmarch::addin
