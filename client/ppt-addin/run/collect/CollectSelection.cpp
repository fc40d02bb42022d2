#include "run/collect/CollectSelection.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "run/collect/CollectFrame.h"
#include "run/collect/CollectSlides.h"
#include "run/collect/LocateSelected.h"
#include "run/collect/WalkShapes.h"
#include "run/document/RunWindow.h"
#include "run/document/ShouldSkip.h"

namespace quillmarch::addin {

namespace {

// The host's types of selection.
constexpr std::int32_t kSlides = 1;
constexpr std::int32_t kShapes = 2;
constexpr std::int32_t kText = 3;
constexpr std::int32_t kTrue = -1;

constexpr char16_t kSelectFirst[] = u"请先选中要翻译的形状或文字";
constexpr char16_t kNothingToTranslate[] = u"选区里没有可翻译的文字";
constexpr char16_t kUnreadable[] = u"无法读取选区";
constexpr char16_t kTooLarge[] = u"选区过大，请缩小选择范围";

struct Collection {
  RunState& run;
  ObjectRef slides;
  ObjectRef selection;
  std::int32_t activeSlide = 0;  // 0 when it cannot be read
};

ResultCode FailWith(const char16_t* text, Wide& outMessage) {
  outMessage = text;
  return kFail;
}

void TellScan(const RunState& run, std::int32_t current, std::int32_t total,
              const char16_t* phase) {
  if (run.sink != nullptr && run.sink->onScanProgress) {
    run.sink->onScanProgress(current, total, phase);
  }
}

Wide PlaceText(std::int32_t row, std::int32_t column) {
  return u" cell=" + Decimal(row) + u"," + Decimal(column);
}

// ---- Shapes ----------------------------------------------------------------------------------

// A shape selected inside a group is taken alone and not its whole group.
bool SelectedShapes(AutomationObject* selection, ObjectRef& range) {
  std::int32_t hasChildren = 0;
  if (Get(selection, ppt::selection::kHasChildShapeRange, hasChildren) && hasChildren == kTrue &&
      Get(selection, ppt::selection::kChildShapeRange, range)) {
    return true;
  }
  return Get(selection, ppt::selection::kShapeRange, range);
}

Wide KeyOf(const ShapeMatch& match) {
  return Decimal(match.slide) + (match.onNotes ? u"|n" : u"|s") + PathText(match.path) + u"|" +
         Decimal(match.row) + u"," + Decimal(match.column);
}

ShapePath WalkPath(const StoredPath& stored) {
  ShapePath path;
  for (const std::int32_t index : stored) AppendIndex(path, index);
  return path;
}

void CollectMatch(RunState& run, AutomationObject* shape, const ShapeMatch& match) {
  UnitLocator locatorTemplate;
  if (match.onNotes) {
    locatorTemplate.kind = kKindNotes;
    locatorTemplate.onNotes = 1;
  }
  const ShapePath path = WalkPath(match.path);
  ShapeList items;
  if (match.row >= 1) {
    locatorTemplate.kind = kKindCell;
    locatorTemplate.row = match.row;
    locatorTemplate.column = match.column;
    CollectFrame(run, shape, match.slide, path, locatorTemplate);
  } else if (ShapeGroupItems(shape, items)) {
    WalkShapes(run, items, match.slide, path, locatorTemplate);
  } else {
    CollectLeaf(run, shape, match.slide, path, locatorTemplate);
  }
  LogLine(u"PptCtrl shape selection slide=" + Decimal(match.slide) + u" " + PathText(path) +
          (match.onNotes ? u" notes" : u"") + PlaceText(match.row, match.column));
}

ResultCode CollectShapes(const Collection& from, Wide& outMessage) {
  RunState& run = from.run;
  ObjectRef range;
  std::int32_t count = 0;
  if (!SelectedShapes(from.selection.get(), range) ||
      !Get(range.get(), ppt::shapeRange::kCount, count) || count < 1) {
    return FailWith(kSelectFirst, outMessage);
  }
  TellScan(run, 0, count, u"shapes");
  std::set<Wide> seen;
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef shape;
    ShapeMatch match;
    if (!GetAt(range.get(), ppt::shapeRange::kItem, i, shape) ||
        !LocateSelected(from.slides.get(), shape.get(), from.activeSlide, match)) {
      run.skipNotes.push_back(u"无法定位选中的形状");
      LogLine(u"PptCtrl selection shape not located");
      continue;
    }
    if (seen.insert(KeyOf(match)).second) CollectMatch(run, shape.get(), match);
  }
  RegroupBySlide(run);
  if (!run.units.empty()) return kOk;
  return FailWith(seen.empty() ? kUnreadable : kNothingToTranslate, outMessage);
}

// ---- Text ------------------------------------------------------------------------------------

// The shape that a text range lies in.
bool ShapeOfRange(AutomationObject* range, ObjectRef& shape) {
  ObjectRef frame;
  return Get(range, ppt::textRange::kParent, frame) && AnswersTo(frame.get(), ppt::kTextFrame) &&
         Get(frame.get(), ppt::textFrame::kParent, shape) && AnswersTo(shape.get(), ppt::kShape);
}

ResultCode CollectText(const Collection& from, Wide& outMessage) {
  ObjectRef range;
  ObjectRef shape;
  std::int32_t start = 0;
  std::int32_t length = 0;
  if (!Get(from.selection.get(), ppt::selection::kTextRange, range) ||
      !Get(range.get(), ppt::textRange::kStart, start) ||
      !Get(range.get(), ppt::textRange::kLength, length) || length < 1 ||
      !ShapeOfRange(range.get(), shape)) {
    return FailWith(kSelectFirst, outMessage);
  }
  ShapeMatch match;
  if (!LocateSelected(from.slides.get(), shape.get(), from.activeSlide, match)) {
    return FailWith(kUnreadable, outMessage);
  }
  TextUnit unit;
  if (!Get(range.get(), ppt::textRange::kText, unit.sourceText)) {
    return FailWith(kNothingToTranslate, outMessage);
  }
  UnitLocator locator;
  locator.endsWithCr = TrimParagraphEnd(unit.sourceText);
  if (ShouldSkip(unit.sourceText)) return FailWith(kNothingToTranslate, outMessage);

  unit.unitId = PathText(match.path) + u".chars(" + Decimal(start) + u"," + Decimal(length) + u")";
  unit.frameText = std::make_shared<const Wide>();
  locator.kind = kKindCharacters;
  locator.slideIndex = match.slide;
  locator.shapePath = match.path;
  locator.onNotes = match.onNotes ? 1 : 0;
  locator.row = match.row;
  locator.column = match.column;
  locator.charStart = std::max(start, std::int32_t{1});
  locator.charLength = length;
  AddUnit(from.run, std::move(unit), std::move(locator));
  RegroupBySlide(from.run);
  LogLine(u"PptCtrl text selection slide=" + Decimal(match.slide) + u" start=" + Decimal(start) +
          u" len=" + Decimal(length) + u" notes=" + Decimal(match.onNotes ? 1 : 0) +
          PlaceText(match.row, match.column));
  return kOk;
}

// ---- Slides ----------------------------------------------------------------------------------

// In the order of selection, which the writing then keeps. A bilingual copy is taken like any other
// slide: who selects one means it.
ResultCode CollectWholeSlides(const Collection& from, Wide& outMessage) {
  RunState& run = from.run;
  ObjectRef range;
  std::int32_t count = 0;
  if (!Get(from.selection.get(), ppt::selection::kSlideRange, range) ||
      !Get(range.get(), ppt::slideRange::kCount, count) || count < 1) {
    return FailWith(kSelectFirst, outMessage);
  }
  TellScan(run, 0, count, u"slides");
  for (std::int32_t position = 1; position <= count; ++position) {
    ObjectRef slide;
    std::int32_t index = 0;
    if (GetAt(range.get(), ppt::slideRange::kItem, position, slide) &&
        Get(slide.get(), ppt::slide::kSlideIndex, index) && WalkSlide(run, slide.get(), index)) {
      TellScan(run, position, count, u"slides");
    }
  }
  run.firstSlide = run.slideNumbers.empty() ? 1 : run.slideNumbers.front();
  return kOk;
}

// ---- All -------------------------------------------------------------------------------------

bool TooLarge(const RunState& run) {
  std::size_t chars = 0;
  for (const Wide& text : run.sourceTexts) chars += text.size();
  return run.units.size() > kMaxSelectionUnits || chars > kMaxSelectionChars;
}

void ClearLists(RunState& run) {
  run.units.clear();
  run.sourceTexts.clear();
  run.locators.clear();
  run.slideRanges.clear();
  run.slideNumbers.clear();
}

ResultCode CollectByType(const Collection& from, std::int32_t type, Wide& outMessage) {
  switch (type) {
    case kSlides:
      return CollectWholeSlides(from, outMessage);
    case kShapes:
      return CollectShapes(from, outMessage);
    case kText:
      return CollectText(from, outMessage);
    default:
      return FailWith(kSelectFirst, outMessage);
  }
}

}  // namespace

ResultCode CollectSelection(RunState& run, Wide& outMessage) {
  if (!AnswersTo(run.app.get(), ppt::kApplication)) {
    return FailWith(u"无法获取 Application 接口", outMessage);
  }
  AutomationObject* presentation = RunPresentation(run);
  if (presentation == nullptr) {
    return FailWith(u"无法定位当前演示文稿（请重新打开侧栏）", outMessage);
  }
  Collection from{run, {}, {}};
  if (!Get(presentation, ppt::presentation::kSlides, from.slides)) {
    return FailWith(u"无法访问 Slides", outMessage);
  }
  AutomationObject* window = RunWindow(run);
  std::int32_t type = 0;
  if (window == nullptr || !Get(window, ppt::documentWindow::kSelection, from.selection) ||
      !Get(from.selection.get(), ppt::selection::kType, type)) {
    return FailWith(kSelectFirst, outMessage);
  }
  LogLine(u"PptCtrl selection type=" + Decimal(type));
  run.slideRanges.clear();
  run.slideNumbers.clear();
  CurrentSlideIndex(window, from.activeSlide);
  const ResultCode collected = CollectByType(from, type, outMessage);
  if (Failed(collected)) return collected;
  if (run.units.empty()) return FailWith(kNothingToTranslate, outMessage);
  if (TooLarge(run)) {
    ClearLists(run);
    return FailWith(kTooLarge, outMessage);
  }
  return kOk;
}

void RegroupBySlide(RunState& run) {
  run.slideRanges.clear();
  run.slideNumbers.clear();
  for (std::size_t unit = 0; unit < run.units.size(); ++unit) {
    const std::int32_t slide = run.units[unit].slideIndex;
    if (run.slideNumbers.empty() || run.slideNumbers.back() != slide) {
      run.slideRanges.emplace_back(unit, unit);
      run.slideNumbers.push_back(slide);
    }
    run.slideRanges.back().second = unit + 1;
  }
  run.firstSlide = run.slideNumbers.empty() ? 1 : run.slideNumbers.front();
}

}  // namespace quillmarch::addin
