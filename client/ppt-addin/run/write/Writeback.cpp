#include "run/write/Writeback.h"

#include <algorithm>
#include <exception>
#include <numeric>

#include "foundation/automation/HostShapes.h"
#include "foundation/log/Log.h"
#include "run/document/BilingualSlides.h"
#include "run/document/ResolveShape.h"
#include "run/document/RunWindow.h"
#include "run/write/ApplyText.h"
#include "run/write/FitShape.h"
#include "run/write/KindWriters.h"

namespace quillmarch::addin {

namespace {

// One call of WriteSlide.
struct SlideWrite {
  RunState& run;
  ObjectRef slides;
  float slideWidth = 0.0F;  // points
  bool located = false;
  std::int32_t targetSlide = 0;
  bool locateFailLogged = false;
};

using Group = std::vector<std::size_t>;

const Wide& UnitIdOf(const RunState& run, std::size_t unit) {
  static const Wide unknown = u"?";
  return unit < run.units.size() ? run.units[unit].unitId : unknown;
}

void RecordGroup(RunState& run, const Group& group) {
  for (const std::size_t unit : group) RecordApplyFailure(run.applyError, UnitIdOf(run, unit));
}

void FailLocate(SlideWrite& write, const Group& group, const char16_t* stage, std::int32_t slide) {
  if (!write.locateFailLogged) {
    write.locateFailLogged = true;
    LogLine(Wide(u"PptCtrl apply locate fail stage=") + stage + u" slide=" + Decimal(slide) +
            u" where=" + UnitIdOf(write.run, group.front()));
  }
  RecordGroup(write.run, group);
}

bool IsNotesUnit(const UnitLocator& locator) {
  return locator.onNotes != 0 || locator.kind == kKindNotes;
}

bool LocateShape(SlideWrite& write, const Group& group, const UnitLocator& locator,
                 ObjectRef& shape) {
  if (!write.located) {
    FailLocate(write, group, u"copySlide", locator.slideIndex);
    return false;
  }
  const bool onNotes = IsNotesUnit(locator);
  const ResultCode found =
      onNotes ? ResolveNotesShape(write.slides.get(), write.targetSlide, locator.shapePath, shape)
              : ResolveShape(write.slides.get(), write.targetSlide, locator.shapePath, shape);
  if (Succeeded(found)) return true;
  FailLocate(write, group, onNotes ? u"notesShape" : u"shape", write.targetSlide);
  return false;
}

bool IsCellUnit(const UnitLocator& locator) {
  return locator.kind == kKindCell || (locator.kind == kKindCharacters && locator.row > 0);
}

bool EnterCell(const UnitLocator& locator, ObjectRef& shape) {
  ObjectRef table;
  ObjectRef cell;
  if (!Get(shape.get(), ppt::shape::kTable, table) ||
      !CellShape(table.get(), locator.row, locator.column, cell)) {
    return false;
  }
  shape = std::move(cell);
  return true;
}

bool MayBeFitted(const UnitLocator& locator) {
  return locator.kind == kKindShape ||
         (locator.kind == kKindCharacters && locator.row == 0 && locator.onNotes == 0);
}

// From the last piece of text to the first, so that no write moves the place of a later one.
void SortForWriting(const RunState& run, Group& group) {
  const auto place = [&run](std::size_t unit) {
    const UnitLocator& locator = run.locators[unit];
    return locator.kind == kKindCharacters ? locator.charStart : locator.paragraphIndex;
  };
  std::stable_sort(group.begin(), group.end(),
                   [&](std::size_t a, std::size_t b) { return place(a) > place(b); });
}

bool WriteUnit(RunState& run, AutomationObject* shape, std::size_t unit, const Wide& text) {
  const UnitLocator& locator = run.locators[unit];
  switch (locator.kind) {
    case 3:
    case kKindSmartArt:
    case 6:
    case 8:
    case 9:
    case 10:
      return WriteChartOrNode(run, shape, unit, text);
    case kKindCharacters:
      return ApplyCharacterRange(shape, locator, text, run.params.targetFont);
    default:
      return ApplyParagraph(shape, locator, text, run.params.targetFont);
  }
}

bool WriteUnits(RunState& run, AutomationObject* shape, const Group& group) {
  bool wrote = false;
  for (const std::size_t unit : group) {
    const Wide text = TextToWrite(run, unit);
    if (text.empty()) continue;
    if (WriteUnit(run, shape, unit, text)) {
      ++run.appliedCount;
      run.reached[unit] = true;
      wrote = true;
    } else {
      RecordApplyFailure(run.applyError, UnitIdOf(run, unit));
    }
  }
  return wrote;
}

bool WriteWholeGroup(RunState& run, AutomationObject* shape, const Group& group) {
  std::int32_t written = 0;
  if (WriteChartGroup(run, shape, group, written)) {
    run.appliedCount += written;
    for (const std::size_t unit : group) run.reached[unit] = true;
    return written > 0;
  }
  for (const std::size_t unit : group) {
    if (!TextToWrite(run, unit).empty()) RecordApplyFailure(run.applyError, UnitIdOf(run, unit));
  }
  return false;
}

void WriteGroup(SlideWrite& write, Group group) {
  RunState& run = write.run;
  const UnitLocator& locator = run.locators[group.front()];
  ObjectRef shape;
  if (!LocateShape(write, group, locator, shape)) return;
  if (IsCellUnit(locator) && !EnterCell(locator, shape)) {
    RecordGroup(run, group);
    return;
  }
  const bool fit = MayBeFitted(locator) && !run.params.useTargetFontSize;
  const ShapeRect rect = fit ? ReadShapeRect(shape.get()) : ShapeRect{};
  SortForWriting(run, group);
  const bool wholeGroup = locator.kind == kKindChartCategories || locator.kind == kKindChartSheet;
  const bool wrote =
      wholeGroup ? WriteWholeGroup(run, shape.get(), group) : WriteUnits(run, shape.get(), group);
  if (wrote && fit) FitShape(shape.get(), rect.valid ? &rect : nullptr, write.slideWidth);
}

void WriteEntry(RunState& run, std::size_t entry) {
  AutomationObject* presentation = RunPresentation(run);
  if (presentation == nullptr) {
    run.applyError = u"无法定位当前演示文稿";
    return;
  }
  SlideWrite write{run, {}, 0.0F, false, 0, false};
  if (!Get(presentation, ppt::presentation::kSlides, write.slides)) return;
  ObjectRef pageSetup;
  if (Get(presentation, ppt::presentation::kPageSetup, pageSetup)) {
    Get(pageSetup.get(), ppt::pageSetup::kSlideWidth, write.slideWidth);
  }
  const std::int32_t slideNumber = run.SlideNumberAt(static_cast<std::int32_t>(entry));
  write.located = LocateCopySlide(run, write.slides.get(), slideNumber, write.targetSlide);

  // The entry's own units only: so the cost is linear in slides, and a slide that has two entries
  // is written in two steps.
  const UnitRange range = run.slideRanges[entry];
  const std::size_t end = std::min({range.second, run.locators.size(), run.translations.size()});
  std::size_t unit = range.first;
  while (unit < end) {
    const UnitLocator& first = run.locators[unit];
    if (first.slideIndex != slideNumber) {
      ++unit;
      continue;
    }
    std::size_t behind = unit + 1;
    while (behind < end && SameApplyTarget(run.locators[behind], first)) ++behind;
    Group group(behind - unit);
    std::iota(group.begin(), group.end(), unit);
    WriteGroup(write, std::move(group));
    unit = behind;
  }
}

}  // namespace

void RecordApplyFailure(Wide& failures, const Wide& unitId) {
  if (!failures.empty()) failures += u"; ";
  failures += unitId;
  LogLine(u"PptCtrl writeback FAIL: " + unitId);
}

Wide TextToWrite(const RunState& run, std::size_t unit) {
  if (unit < run.repairedUnits.size() && run.repairedUnits[unit]) return {};
  if (unit >= run.translations.size() || unit >= run.sourceTexts.size()) return {};
  Wide text = FlattenTranslation(run.translations[unit]);
  if (text == run.sourceTexts[unit]) return {};
  return text;
}

void WriteSlide(RunState& run, std::size_t entry) noexcept {
  try {
    WriteEntry(run, entry);
  } catch (const std::exception&) {
    // Memory ran out. What was not written by now is told from `reached` at the run's end.
  }
}

}  // namespace quillmarch::addin
