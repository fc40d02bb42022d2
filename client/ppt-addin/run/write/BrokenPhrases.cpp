#include "run/write/BrokenPhrases.h"

#include <algorithm>
#include <array>
#include <set>

#include "foundation/automation/HostShapes.h"
#include "run/document/BilingualSlides.h"
#include "run/document/ResolveUnit.h"
#include "run/document/ShouldSkip.h"
#include "run/document/StaGate.h"
#include "run/write/ApplyText.h"
#include "run/write/FontStyle.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

Wide TargetKey(const UnitLocator& locator) {
  Wide key = Decimal(locator.slideIndex) + u"|" + PathText(locator.shapePath) + u"|" +
             Decimal(static_cast<std::int32_t>(locator.kind)) + u"|" + Decimal(locator.row) + u"," +
             Decimal(locator.column);
  if (locator.onNotes != 0) key += u"|n";
  return key;
}

struct Pass {
  const WriteTask& task;
  TranslateConfig& config;
  HostThread& thread;
  const void* owner;
};

bool IsCandidate(const WriteTask& task, std::size_t unit) {
  return task.texts.units[unit].frameCollapsed && !task.writes.repairedUnits[unit] &&
         task.translations[unit] == task.texts.sourceTexts[unit] &&
         RulesOf(task.texts.locators[unit].kind).writer == UnitWriter::kParagraph;
}

bool AnyPartTranslated(const WriteTask& task, std::size_t unit, std::size_t n) {
  const RunTexts& texts = task.texts;
  for (std::size_t other = 0; other < n; ++other) {
    if (SameApplyTarget(texts.locators[unit], texts.locators[other]) &&
        !task.translations[other].empty() && task.translations[other] != texts.sourceTexts[other]) {
      return true;
    }
  }
  return false;
}

// The answer for the whole frame, or empty when it is of no use.
Wide AskForFrame(const Pass& pass, const Wide& frameText) {
  Wide answer;
  Wide message;
  Wide code;
  if (!TranslateSingle(pass.config, frameText, answer, message, code)) return {};
  const Wide text = FlattenTranslation(answer);
  if (text == frameText) return {};
  const bool holdsHan = std::any_of(text.begin(), text.end(), IsHanUnit);
  if (holdsHan && IsNonCjkTarget(pass.task.params.targetLang)) return {};
  return text;
}

bool FindFrame(const WriteTask& task, const UnitLocator& locator, ObjectRef& range) {
  AutomationObject* presentation = RunPresentation(task.document);
  ObjectRef slides;
  ObjectRef shape;
  std::int32_t slide = 0;
  return presentation != nullptr && Get(presentation, ppt::presentation::kSlides, slides) &&
         LocateCopySlide(task.copies, slides.get(), locator.slideIndex, slide) &&
         ResolveUnit(slides.get(), slide, locator, shape) == UnitPlace::kFound &&
         FrameRange(shape.get(), range);
}

// A frame that the user has changed since is theirs.
bool ShowsFrameText(AutomationObject* range, const Wide& frameText) {
  Wide shown;
  return Get(range, ppt::textRange::kText, shown) && SameText(WithoutBreaks(shown), frameText);
}

bool ReplaceFrame(const Pass& pass, AutomationObject* range, const Wide& text) {
  const GateHold gate(pass.owner, pass.thread, Heed::kMutationQuiet);
  if (!gate.held()) return false;
  FontSnapshot look;
  TakeFontSnapshot(range, look);
  if (Failed(SetRangeText(range, text))) return false;
  RestoreFontSnapshot(range, look);
  ApplyTargetFontName(range, pass.task.params.targetFont);
  return true;
}

bool RepairFrame(const Pass& pass, std::size_t unit) {
  const RunTexts& texts = pass.task.texts;
  const Wide& frameText = *texts.units[unit].frameText;
  // Before the question: a quick answer would find the gate still quiet after the last write, and
  // be paid for and dropped.
  WaitOutMutationQuiet(pass.thread);
  const Wide text = AskForFrame(pass, frameText);
  ObjectRef range;
  return !text.empty() && FindFrame(pass.task, texts.locators[unit], range) &&
         ShowsFrameText(range.get(), frameText) && ReplaceFrame(pass, range.get(), text);
}

}  // namespace

void BrokenPhrasePass(const WriteTask& task, TranslateConfig& config, HostThread& thread,
                      const void* owner) {
  const Pass pass{task, config, thread, owner};
  const std::vector<UnitLocator>& locators = task.texts.locators;
  RunWrites& writes = task.writes;
  writes.repairedUnits.assign(locators.size(), false);
  const std::size_t n =
      std::min({locators.size(), task.translations.size(), task.texts.units.size()});
  std::set<Wide> seenTargets;
  for (std::size_t unit = 0; unit < n; ++unit) {
    if (!IsCandidate(task, unit)) continue;
    if (!seenTargets.insert(TargetKey(locators[unit])).second) continue;
    if (AnyPartTranslated(task, unit, n) || !RepairFrame(pass, unit)) continue;
    ++writes.appliedCount;
    for (std::size_t other = 0; other < n; ++other) {
      if (!SameApplyTarget(locators[unit], locators[other])) continue;
      writes.repairedUnits[other] = true;
      writes.reached[other] = true;
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
