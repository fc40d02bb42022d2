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
#include "run/document/CollectCodes.h"
#include "run/document/ShouldSkip.h"

namespace quillmarch::addin {

namespace {

// The host's types of selection.
constexpr std::int32_t kSlides = 1;
constexpr std::int32_t kShapes = 2;
constexpr std::int32_t kText = 3;
constexpr std::int32_t kTrue = -1;

struct Collection {
  RunTexts& texts;
  const RunSink* sink;
  ObjectRef slides;
  ObjectRef selection;
  std::int32_t activeSlide = 0;  // 0 when it cannot be read
};

Status SelectFirst() {
  return {kNothingSelected, u"请先选中要翻译的形状或文字"};
}
Status NothingToTranslate() {
  return {kSelectionWithoutText, u"选区里没有可翻译的文字"};
}
Status Unreadable() {
  return {kSelectionUnreadable, u"无法读取选区"};
}
Status SelectionTooLarge() {
  return {kSelectionTooLarge, u"选区过大，请缩小选择范围"};
}

void TellScan(const Collection& from, std::int32_t current, std::int32_t total,
              const char16_t* phase) {
  if (from.sink != nullptr && from.sink->onScanProgress) {
    from.sink->onScanProgress(current, total, phase);
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

void CollectMatch(RunTexts& texts, AutomationObject* shape, const ShapeMatch& match) {
  UnitLocator locatorTemplate;
  if (match.onNotes) {
    locatorTemplate.kind = UnitKind::kNotes;
    locatorTemplate.onNotes = 1;
  }
  const ShapePath path = WalkPath(match.path);
  ShapeList items;
  if (match.row >= 1) {
    locatorTemplate.kind = UnitKind::kCell;
    locatorTemplate.row = match.row;
    locatorTemplate.column = match.column;
    CollectFrame(texts, shape, match.slide, path, locatorTemplate);
  } else if (ShapeGroupItems(shape, items)) {
    WalkShapes(texts, items, match.slide, path, locatorTemplate);
  } else {
    CollectLeaf(texts, shape, match.slide, path, locatorTemplate);
  }
  LogLine(u"PptCtrl shape selection slide=" + Decimal(match.slide) + u" " + PathText(path) +
          (match.onNotes ? u" notes" : u"") + PlaceText(match.row, match.column));
}

Status CollectShapes(const Collection& from) {
  RunTexts& texts = from.texts;
  ObjectRef range;
  std::int32_t count = 0;
  if (!SelectedShapes(from.selection.get(), range) ||
      !Get(range.get(), ppt::shapeRange::kCount, count) || count < 1) {
    return SelectFirst();
  }
  TellScan(from, 0, count, u"shapes");
  std::set<Wide> seen;
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef shape;
    ShapeMatch match;
    if (!GetAt(range.get(), ppt::shapeRange::kItem, i, shape) ||
        !LocateSelected(from.slides.get(), shape.get(), from.activeSlide, match)) {
      texts.skipNotes.push_back(u"无法定位选中的形状");
      LogLine(u"PptCtrl selection shape not located");
      continue;
    }
    if (seen.insert(KeyOf(match)).second) CollectMatch(texts, shape.get(), match);
  }
  texts.RegroupBySlide();
  if (!texts.units.empty()) return {};
  return seen.empty() ? Unreadable() : NothingToTranslate();
}

// ---- Text ------------------------------------------------------------------------------------

// The shape that a text range lies in.
bool ShapeOfRange(AutomationObject* range, ObjectRef& shape) {
  ObjectRef frame;
  return Get(range, ppt::textRange::kParent, frame) && AnswersTo(frame.get(), ppt::kTextFrame) &&
         Get(frame.get(), ppt::textFrame::kParent, shape) && AnswersTo(shape.get(), ppt::kShape);
}

Status CollectText(const Collection& from) {
  ObjectRef range;
  ObjectRef shape;
  std::int32_t start = 0;
  std::int32_t length = 0;
  if (!Get(from.selection.get(), ppt::selection::kTextRange, range) ||
      !Get(range.get(), ppt::textRange::kStart, start) ||
      !Get(range.get(), ppt::textRange::kLength, length) || length < 1 ||
      !ShapeOfRange(range.get(), shape)) {
    return SelectFirst();
  }
  ShapeMatch match;
  if (!LocateSelected(from.slides.get(), shape.get(), from.activeSlide, match)) {
    return Unreadable();
  }
  Wide source;
  if (!Get(range.get(), ppt::textRange::kText, source)) {
    return NothingToTranslate();
  }
  UnitLocator locator;
  locator.endsWithCr = TrimParagraphEnd(source);
  if (ShouldSkip(source)) return NothingToTranslate();

  TextUnit unit;
  unit.unitId = PathText(match.path) + u".chars(" + Decimal(start) + u"," + Decimal(length) + u")";
  unit.frameText = std::make_shared<const Wide>();
  locator.kind = UnitKind::kCharacters;
  locator.slideIndex = match.slide;
  locator.shapePath = match.path;
  locator.onNotes = match.onNotes ? 1 : 0;
  locator.row = match.row;
  locator.column = match.column;
  locator.charStart = std::max(start, std::int32_t{1});
  locator.charLength = length;
  from.texts.Add(std::move(unit), std::move(source), std::move(locator));
  from.texts.RegroupBySlide();
  LogLine(u"PptCtrl text selection slide=" + Decimal(match.slide) + u" start=" + Decimal(start) +
          u" len=" + Decimal(length) + u" notes=" + Decimal(match.onNotes ? 1 : 0) +
          PlaceText(match.row, match.column));
  return {};
}

// ---- Slides ----------------------------------------------------------------------------------

// In the order of selection, which the writing then keeps. A bilingual copy is taken like any other
// slide: who selects one means it.
Status CollectWholeSlides(const Collection& from) {
  RunTexts& texts = from.texts;
  ObjectRef range;
  std::int32_t count = 0;
  if (!Get(from.selection.get(), ppt::selection::kSlideRange, range) ||
      !Get(range.get(), ppt::slideRange::kCount, count) || count < 1) {
    return SelectFirst();
  }
  TellScan(from, 0, count, u"slides");
  for (std::int32_t position = 1; position <= count; ++position) {
    ObjectRef slide;
    std::int32_t index = 0;
    if (GetAt(range.get(), ppt::slideRange::kItem, position, slide) &&
        Get(slide.get(), ppt::slide::kSlideIndex, index) && WalkSlide(texts, slide.get(), index)) {
      TellScan(from, position, count, u"slides");
    }
  }
  texts.firstSlide = texts.slideNumbers.empty() ? 1 : texts.slideNumbers.front();
  return {};
}

// ---- All -------------------------------------------------------------------------------------

bool TooLarge(const RunTexts& texts) {
  std::size_t chars = 0;
  for (const Wide& text : texts.sourceTexts) chars += text.size();
  return texts.units.size() > kMaxSelectionUnits || chars > kMaxSelectionChars;
}

Status CollectByType(const Collection& from, std::int32_t type) {
  switch (type) {
    case kSlides:
      return CollectWholeSlides(from);
    case kShapes:
      return CollectShapes(from);
    case kText:
      return CollectText(from);
    default:
      return SelectFirst();
  }
}

}  // namespace

Status CollectSelection(RunDocument& document, const RunSink* sink, RunTexts& texts) {
  if (!AnswersTo(document.app.get(), ppt::kApplication)) {
    return {kFail, u"无法获取 Application 接口"};
  }
  AutomationObject* presentation = RunPresentation(document);
  if (presentation == nullptr) return {kFail, u"无法定位当前演示文稿（请重新打开侧栏）"};
  Collection from{texts, sink, {}, {}};
  if (!Get(presentation, ppt::presentation::kSlides, from.slides)) {
    return {kFail, u"无法访问 Slides"};
  }
  AutomationObject* window = RunWindow(document);
  std::int32_t type = 0;
  if (window == nullptr || !Get(window, ppt::documentWindow::kSelection, from.selection) ||
      !Get(from.selection.get(), ppt::selection::kType, type)) {
    return SelectFirst();
  }
  LogLine(u"PptCtrl selection type=" + Decimal(type));
  texts.ClearSlides();
  CurrentSlideIndex(window, from.activeSlide);
  Status collected = CollectByType(from, type);
  if (!collected.ok()) return collected;
  if (texts.units.empty()) return NothingToTranslate();
  if (TooLarge(texts)) {
    texts.Clear();
    return SelectionTooLarge();
  }
  return {};
}

}  // namespace quillmarch::addin
