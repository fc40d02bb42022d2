#include "run/write/BrokenPhrases.h"

#include <algorithm>
#include <array>
#include <set>

#include "foundation/automation/HostShapes.h"
#include "run/document/BilingualSlides.h"
#include "run/document/ResolveShape.h"
#include "run/document/RunWindow.h"
#include "run/document/ShouldSkip.h"
#include "run/document/StaGate.h"
#include "run/write/ApplyText.h"
#include "run/write/FontStyle.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kFirstChartKind = 3;

Wide TargetKey(const UnitLocator& locator) {
  Wide key = Decimal(locator.slideIndex) + u"|" + PathText(locator.shapePath) + u"|" +
             Decimal(locator.kind) + u"|" + Decimal(locator.row) + u"," + Decimal(locator.column);
  if (locator.onNotes != 0) key += u"|n";
  return key;
}

bool IsCandidate(const RunState& run, std::size_t unit) {
  return run.units[unit].frameCollapsed && !run.repairedUnits[unit] &&
         run.translations[unit] == run.sourceTexts[unit] &&
         run.locators[unit].kind < kFirstChartKind;
}

bool AnyPartTranslated(const RunState& run, std::size_t unit, std::size_t n) {
  for (std::size_t other = 0; other < n; ++other) {
    if (SameApplyTarget(run.locators[unit], run.locators[other]) &&
        !run.translations[other].empty() && run.translations[other] != run.sourceTexts[other]) {
      return true;
    }
  }
  return false;
}

// The answer for the whole frame, or empty when it is of no use.
Wide AskForFrame(RunState& run, const Wide& frameText) {
  Wide answer;
  Wide message;
  Wide code;
  if (!TranslateSingle(run.config, frameText, answer, message, code)) return {};
  const Wide text = FlattenTranslation(answer);
  if (text == frameText) return {};
  const bool holdsHan = std::any_of(text.begin(), text.end(), IsHanUnit);
  if (holdsHan && IsNonCjkTarget(run.params.targetLang)) return {};
  return text;
}

bool FindFrame(RunState& run, const UnitLocator& locator, ObjectRef& range) {
  AutomationObject* presentation = RunPresentation(run);
  ObjectRef slides;
  std::int32_t slide = 0;
  if (presentation == nullptr || !Get(presentation, ppt::presentation::kSlides, slides) ||
      !LocateCopySlide(run, slides.get(), locator.slideIndex, slide)) {
    return false;
  }
  ObjectRef shape;
  const bool onNotes = locator.onNotes != 0 || locator.kind == kKindNotes;
  const ResultCode found = onNotes
                               ? ResolveNotesShape(slides.get(), slide, locator.shapePath, shape)
                               : ResolveShape(slides.get(), slide, locator.shapePath, shape);
  if (Failed(found)) return false;
  if (locator.kind == kKindCell) {
    ObjectRef table;
    ObjectRef cell;
    if (!Get(shape.get(), ppt::shape::kTable, table) ||
        !CellShape(table.get(), locator.row, locator.column, cell)) {
      return false;
    }
    shape = std::move(cell);
  }
  return FrameRange(shape.get(), range);
}

bool ReplaceFrame(RunState& run, AutomationObject* range, const Wide& text) {
  const GateHold gate(&run, run.surroundings.thread);
  if (!gate.held()) return false;
  FontSnapshot look;
  TakeFontSnapshot(range, look);
  if (!SetRangeText(range, text)) return false;
  RestoreFontSnapshot(range, look);
  ApplyTargetFontName(range, run.params.targetFont);
  return true;
}

bool RepairFrame(RunState& run, std::size_t unit) {
  const Wide text = AskForFrame(run, *run.units[unit].frameText);
  ObjectRef range;
  return !text.empty() && FindFrame(run, run.locators[unit], range) &&
         ReplaceFrame(run, range.get(), text);
}

}  // namespace

void BrokenPhrasePass(RunState& run, std::int32_t& appliedCount) {
  run.repairedUnits.assign(run.locators.size(), false);
  const std::size_t n = std::min({run.locators.size(), run.translations.size(), run.units.size()});
  std::set<Wide> seenTargets;
  for (std::size_t unit = 0; unit < n; ++unit) {
    if (!IsCandidate(run, unit)) continue;
    if (!seenTargets.insert(TargetKey(run.locators[unit])).second) continue;
    if (AnyPartTranslated(run, unit, n) || !RepairFrame(run, unit)) continue;
    ++appliedCount;
    for (std::size_t other = 0; other < n; ++other) {
      if (!SameApplyTarget(run.locators[unit], run.locators[other])) continue;
      run.repairedUnits[other] = true;
      run.reached[other] = true;
    }
  }
}

bool IsNonCjkTarget(WideView language) {
  const Wide lower = LowerAscii(language);
  if (lower.empty() || lower == u"auto") return false;
  constexpr std::array<WideView, 6> kCjkWords = {u"zh",      u"ja",    u"ko",
                                                 u"chinese", u"japan", u"korean"};
  return std::none_of(kCjkWords.begin(), kCjkWords.end(),
                      [&](WideView word) { return lower.find(word) != Wide::npos; });
}

}  // namespace quillmarch::addin
