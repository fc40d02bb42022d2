#include "run/write/Writeback.h"

#include <algorithm>
#include <exception>
#include <numeric>

#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "run/document/BilingualSlides.h"
#include "run/document/FindShape.h"
#include "run/document/ResolveShape.h"
#include "run/document/ResolveUnit.h"
#include "run/write/ApplyText.h"
#include "run/write/FitShape.h"
#include "run/write/KindWriters.h"

namespace quillmarch::addin {

namespace {

// One call of WriteSlide.
struct SlideWrite {
  const WriteTask& task;
  ObjectRef slides;
  float slideWidth = 0.0F;  // points
  bool located = false;
  std::int32_t targetSlide = 0;
  bool locateFailLogged = false;
};

using Group = std::vector<std::size_t>;

const Wide& UnitIdOf(const WriteTask& task, std::size_t unit) {
  static const Wide unknown = u"?";
  return unit < task.texts.units.size() ? task.texts.units[unit].unitId : unknown;
}

void RecordUnit(const WriteTask& task, std::size_t unit, WriteFailure failure) {
  RecordApplyFailure(task.writes.applyError, UnitIdOf(task, unit));
  task.writes.failures[unit] = failure;
}

void RecordNotFound(const WriteTask& task, const Group& group) {
  for (const std::size_t unit : group) RecordUnit(task, unit, {FailCause::kNotFound, kOk});
}

void FailLocate(SlideWrite& write, const Group& group, const char16_t* stage, std::int32_t slide) {
  if (!write.locateFailLogged) {
    write.locateFailLogged = true;
    LogLine(Wide(u"PptCtrl apply locate fail stage=") + stage + u" slide=" + Decimal(slide) +
            u" where=" + UnitIdOf(write.task, group.front()));
  }
  RecordNotFound(write.task, group);
}

bool LocateShape(SlideWrite& write, const Group& group, const UnitLocator& locator,
                 ObjectRef& shape) {
  if (!write.located) {
    FailLocate(write, group, u"copySlide", locator.slideIndex);
    return false;
  }
  switch (ResolveUnit(write.slides.get(), write.targetSlide, locator, shape)) {
    case UnitPlace::kFound:
      return true;
    case UnitPlace::kNoShape:
      FailLocate(write, group, LiesOnNotes(locator) ? u"notesShape" : u"shape", write.targetSlide);
      return false;
    case UnitPlace::kNoCell:
      break;
  }
  RecordNotFound(write.task, group);
  return false;
}

// From the last piece of text to the first, so that no write moves the place of a later one.
void SortForWriting(const RunTexts& texts, Group& group) {
  const auto place = [&texts](std::size_t unit) {
    const UnitLocator& locator = texts.locators[unit];
    return locator.kind == UnitKind::kCharacters ? locator.charStart : locator.paragraphIndex;
  };
  std::stable_sort(group.begin(), group.end(),
                   [&](std::size_t a, std::size_t b) { return place(a) > place(b); });
}

ResultCode WriteUnit(const WriteTask& task, AutomationObject* shape, std::size_t unit,
                     TextChange& change) {
  const UnitLocator& locator = task.texts.locators[unit];
  switch (RulesOf(locator.kind).writer) {
    case UnitWriter::kChartOrNode:
      return WriteChartOrNode(task, shape, unit, change.to) ? kOk : kFail;
    case UnitWriter::kCharacters:
      return ApplyCharacterRange(shape, locator, change, task.params.targetFont);
    default:
      return ApplyParagraph(shape, locator, change, task.params.targetFont);
  }
}

// Every grid position of a merged cell is a unit of its own, and the service may have translated
// one text in two ways: the first that was written stays.
bool WrittenByTwin(const WriteTask& task, std::size_t unit, const Wide& shown) {
  const RunTexts& texts = task.texts;
  const UnitLocator& own = texts.locators[unit];
  if (!IsInCell(own)) return false;
  for (std::size_t twin = 0; twin < unit; ++twin) {
    const UnitLocator& other = texts.locators[twin];
    if (task.writes.reached[twin] && IsInCell(other) && other.slideIndex == own.slideIndex &&
        other.shapePath == own.shapePath && texts.sourceTexts[twin] == texts.sourceTexts[unit] &&
        SameText(shown, FlattenTranslation(task.translations[twin]))) {
      return true;
    }
  }
  return false;
}

// A shape of a slide and one of its notes page may have the same Id, by which the collection finds
// what is selected. The slide's shape comes first there; its text tells that the other was meant.
bool FindOnNotes(const SlideWrite& write, AutomationObject* onSlide, ObjectRef& onNotes) {
  ObjectRef slide;
  ObjectRef notes;
  ShapeList shapes;
  StoredPath path;
  std::int32_t row = 0;
  std::int32_t column = 0;
  return GetAt(write.slides.get(), ppt::slides::kItem, write.targetSlide, slide) &&
         Get(slide.get(), ppt::slide::kNotesPage, notes) &&
         Get(notes.get(), ppt::slideRange::kShapes, shapes.object) &&
         FindShape(shapes, onSlide, path, row, column) && row == 0 &&
         Succeeded(ResolveNotesShape(write.slides.get(), write.targetSlide, path, onNotes));
}

struct GroupWritten {
  bool any = false;
  bool elsewhere = false;  // not in the shape that was given
};

GroupWritten WriteUnits(const SlideWrite& write, ObjectRef shape, const Group& group) {
  const WriteTask& task = write.task;
  GroupWritten written;
  for (const std::size_t unit : group) {
    const Wide text = TextToWrite(task, unit);
    if (text.empty()) continue;
    const UnitLocator& locator = task.texts.locators[unit];
    // A copy that an earlier run made shows that run's translation.
    TextChange change{.from = task.copies.bilingual ? nullptr : &task.texts.sourceTexts[unit],
                      .to = text};
    ResultCode code = WriteUnit(task, shape.get(), unit, change);
    ObjectRef onNotes;
    if (code == kOtherTextThere && task.params.scope == Scope::kSelection && !written.any &&
        !IsInCell(locator) && !LiesOnNotes(locator) && FindOnNotes(write, shape.get(), onNotes)) {
      code = WriteUnit(task, onNotes.get(), unit, change);
      if (code == kOk) {
        shape = std::move(onNotes);
        written.elsewhere = true;
      }
    }
    if (code == kOtherTextThere && WrittenByTwin(task, unit, change.shown)) code = kAlreadyThere;
    if (Succeeded(code)) {
      ++task.writes.appliedCount;
      task.writes.reached[unit] = true;
      written.any = written.any || code != kAlreadyThere;
    } else {
      const FailCause cause =
          code == kOtherTextThere ? FailCause::kPlaceChanged : FailCause::kRefused;
      RecordUnit(task, unit, {cause, code});
    }
  }
  return written;
}

bool WriteWholeGroup(const WriteTask& task, AutomationObject* shape, const Group& group) {
  std::int32_t written = 0;
  if (WriteChartGroup(task, shape, group, written)) {
    task.writes.appliedCount += written;
    for (const std::size_t unit : group) task.writes.reached[unit] = true;
    return written > 0;
  }
  for (const std::size_t unit : group) {
    if (!TextToWrite(task, unit).empty()) RecordUnit(task, unit, {FailCause::kRefused, kFail});
  }
  return false;
}

void WriteGroup(SlideWrite& write, Group group) {
  const WriteTask& task = write.task;
  const UnitLocator& locator = task.texts.locators[group.front()];
  ObjectRef shape;
  if (!LocateShape(write, group, locator, shape)) return;
  const bool fit = MayBeFitted(locator) && !task.params.useTargetFontSize;
  const ShapeRect rect = fit ? ReadShapeRect(shape.get()) : ShapeRect{};
  SortForWriting(task.texts, group);
  const bool wholeGroup = RulesOf(locator.kind).writer == UnitWriter::kChartGroup;
  const GroupWritten written = wholeGroup
                                   ? GroupWritten{WriteWholeGroup(task, shape.get(), group), false}
                                   : WriteUnits(write, shape, group);
  if (written.any && !written.elsewhere && fit) {
    FitShape(shape.get(), rect.valid ? &rect : nullptr, write.slideWidth);
  }
}

void WriteEntry(const WriteTask& task, std::size_t entry) {
  AutomationObject* presentation = RunPresentation(task.document);
  if (presentation == nullptr) {
    task.writes.applyError = u"无法定位当前演示文稿";
    return;
  }
  SlideWrite write{task, {}, 0.0F, false, 0, false};
  if (!Get(presentation, ppt::presentation::kSlides, write.slides)) return;
  ObjectRef pageSetup;
  if (Get(presentation, ppt::presentation::kPageSetup, pageSetup)) {
    Get(pageSetup.get(), ppt::pageSetup::kSlideWidth, write.slideWidth);
  }
  const RunTexts& texts = task.texts;
  const std::int32_t slideNumber = texts.SlideNumberAt(static_cast<std::int32_t>(entry));
  write.located = LocateCopySlide(task.copies, write.slides.get(), slideNumber, write.targetSlide);

  // The entry's own units only: so the cost is linear in slides, and a slide that has two entries
  // is written in two steps.
  const UnitRange range = texts.slideRanges[entry];
  const std::size_t end = std::min({range.second, texts.locators.size(), task.translations.size()});
  std::size_t unit = range.first;
  while (unit < end) {
    const UnitLocator& first = texts.locators[unit];
    if (first.slideIndex != slideNumber) {
      ++unit;
      continue;
    }
    std::size_t next = unit + 1;
    while (next < end && SameApplyTarget(texts.locators[next], first)) ++next;
    Group group(next - unit);
    std::iota(group.begin(), group.end(), unit);
    WriteGroup(write, std::move(group));
    unit = next;
  }
}

}  // namespace

void RecordApplyFailure(Wide& failures, const Wide& unitId) {
  if (!failures.empty()) failures += u"; ";
  failures += unitId;
  LogLine(u"PptCtrl writeback FAIL: " + unitId);
}

Wide TextToWrite(const WriteTask& task, std::size_t unit) {
  const std::vector<bool>& repaired = task.writes.repairedUnits;
  if (unit < repaired.size() && repaired[unit]) return {};
  if (unit >= task.translations.size() || unit >= task.texts.sourceTexts.size()) return {};
  Wide text = FlattenTranslation(task.translations[unit]);
  if (text == task.texts.sourceTexts[unit]) return {};
  return text;
}

void WriteSlide(const WriteTask& task, std::size_t entry) noexcept {
  try {
    WriteEntry(task, entry);
  } catch (const std::exception&) {
    // Memory ran out. What was not written by now is told from `reached` at the run's end.
  }
}

}  // namespace quillmarch::addin
