#include "run/control/RunReport.h"

#include <algorithm>
#include <exception>

#include "run/write/ApplyText.h"

namespace quillmarch::addin {

namespace {

// Slides that no write was begun for, whether they were ready or the worker never completed them.
void NameSlidesNotReached(const RunState& run, RunRecord& record) {
  const auto entries = static_cast<std::int32_t>(run.texts.slideRanges.size());
  // A slide in its rest is written, though the run was broken off before it was counted.
  const std::int32_t first = run.tickPhase == kPhaseRest ? run.nextSlide + 1 : run.nextSlide;
  for (std::int32_t entry = first; entry < entries; ++entry) {
    record.slidesNotReached.push_back(run.texts.SlideNumberAt(entry));
  }
}

FailedUnit Failure(const RunState& run, std::size_t unit, FailCause cause) {
  const UnitLocator& locator = run.texts.locators[unit];
  const TextUnit& from = run.texts.units[unit];
  FailedUnit failed;
  failed.cause = cause;
  failed.slide = locator.slideIndex;
  failed.label = from.unitId;
  failed.row = locator.row;
  failed.column = locator.column;
  failed.sourceText = run.texts.sourceTexts[unit];
  if (from.shapeName != nullptr) failed.shapeName = *from.shapeName;
  const auto known = run.writes.failures.find(unit);
  if (known != run.writes.failures.end()) {
    failed.cause = known->second.cause;
    failed.code = known->second.code;
  }
  return failed;
}

void CountUnits(const RunState& run, RunRecord& record) {
  const RunTexts& texts = run.texts;
  const auto ready = static_cast<std::size_t>(run.job.slidesReady.load(std::memory_order_acquire));
  const std::size_t answered =
      ready == 0 || texts.slideRanges.empty()
          ? 0
          : texts.slideRanges[std::min(ready, texts.slideRanges.size()) - 1].second;
  const std::size_t n = std::min({run.job.translations.size(), texts.locators.size(),
                                  texts.units.size(), run.writes.reached.size()});
  for (std::size_t unit = 0; unit < n; ++unit) {
    if (run.writes.reached[unit]) {
      ++record.changed;
      continue;
    }
    const Wide text = FlattenTranslation(run.job.translations[unit]);
    if (!text.empty() && text != texts.sourceTexts[unit]) {
      record.failed.push_back(Failure(run, unit, FailCause::kNotReached));
    } else if (unit < answered) {
      ++record.unchanged;
      record.left.push_back(Failure(run, unit, FailCause::kUnchanged));
    } else {
      ++record.notAnswered;
      record.left.push_back(Failure(run, unit, FailCause::kNotAnswered));
    }
  }
}

}  // namespace

void ReportRun(RunState& run, const RunEnd& end) noexcept {
  if (!run.surroundings.observer) return;
  try {
    RunRecord record;
    record.outcome = end.outcome;
    record.summary = end.summary;
    record.errorCode = end.errorCode;
    record.failure = end.failure;
    record.units = static_cast<std::int32_t>(run.texts.units.size());
    record.written = run.writes.appliedCount;
    record.skipped = run.texts.skipped;
    if (run.started) {
      NameSlidesNotReached(run, record);
      CountUnits(run, record);
    }
    run.surroundings.observer(record);
  } catch (const std::exception&) {
    // The driver still learns the end from finished().
  }
}

}  // namespace quillmarch::addin
