#include "run/control/RunReport.h"

#include <algorithm>
#include <exception>

#include "run/write/ApplyText.h"

namespace quillmarch::addin {

namespace {

// Slides that no write was begun for, whether they were ready or the worker never completed them.
void NameSlidesNotReached(const RunState& run, RunRecord& record) {
  const auto entries = static_cast<std::int32_t>(run.slideRanges.size());
  // A slide in its rest is written, though the run was broken off before it was counted.
  const std::int32_t first = run.tickPhase == kPhaseRest ? run.nextSlide + 1 : run.nextSlide;
  for (std::int32_t entry = first; entry < entries; ++entry) {
    record.slidesNotReached.push_back(run.SlideNumberAt(entry));
  }
}

void CountUnits(const RunState& run, RunRecord& record) {
  const auto ready = static_cast<std::size_t>(run.slidesReady.load(std::memory_order_acquire));
  const std::size_t answered =
      ready == 0 || run.slideRanges.empty()
          ? 0
          : run.slideRanges[std::min(ready, run.slideRanges.size()) - 1].second;
  const std::size_t n = std::min(
      {run.translations.size(), run.locators.size(), run.units.size(), run.reached.size()});
  for (std::size_t unit = 0; unit < n; ++unit) {
    if (run.reached[unit]) continue;
    const Wide text = FlattenTranslation(run.translations[unit]);
    if (!text.empty() && text != run.sourceTexts[unit]) {
      const UnitLocator& locator = run.locators[unit];
      record.failed.push_back({locator.slideIndex, run.units[unit].unitId, locator.row,
                               locator.column, run.sourceTexts[unit]});
    } else if (unit < answered) {
      ++record.unchanged;
    }
  }
}

}  // namespace

void ReportRun(RunState& run, RunOutcome outcome, const Wide& summary) noexcept {
  if (!run.surroundings.observer) return;
  try {
    RunRecord record;
    record.outcome = outcome;
    record.summary = summary;
    record.units = static_cast<std::int32_t>(run.units.size());
    record.written = run.appliedCount;
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
