#include "run/write/Writeback.h"

#include <algorithm>
#include <exception>
#include <numeric>

#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "run/document/BilingualSlides.h"
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
                     const Wide& text) {
  const UnitLocator& locator = task.texts.locators[unit];
  switch (RulesOf(locator.kind).writer) {
    case UnitWriter::kChartOrNode:
      return WriteChartOrNode(task, shape, unit, text) ? kOk : kFail;
    case UnitWriter::kCharacters:
      return ApplyCharacterRange(shape, locator, text, task.params.targetFont);
    default:
      return ApplyParagraph(shape, locator, text, task.params.targetFont);
  }
}

bool WriteUnits(const WriteTask& task, AutomationObject* shape, const Group& group) {
  bool wrote = false;
  for (const std::size_t unit : group) {
    const Wide text = TextToWrite(task, unit);
    if (text.empty()) continue;
    const ResultCode written = WriteUnit(task, shape, unit, text);
    if (Succeeded(written)) {
      ++task.writes.appliedCount;
      task.writes.reached[unit] = true;
      wrote = true;
    } else {
      RecordUnit(task, unit, {FailCause::kRefused, written});
    }
  }
  return wrote;
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
  const bool wrote =
      wholeGroup ? WriteWholeGroup(task, shape.get(), group) : WriteUnits(task, shape.get(), group);
  if (wrote && fit) FitShape(shape.get(), rect.valid ? &rect : nullptr, write.slideWidth);
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
