#include "run/collect/CollectFrame.h"

#include <algorithm>
#include <utility>

#include "foundation/automation/HostShapes.h"
#include "foundation/log/Log.h"
#include "run/collect/FrameCollapse.h"
#include "run/document/ShouldSkip.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kTrue = -1;
constexpr std::int32_t kAll = -1;

struct Paragraphs {
  std::vector<Wide> texts;
  std::vector<bool> endsWithCr;
};

bool FlagHolds(AutomationObject* object, const Member<std::int32_t>& member) {
  std::int32_t flag = 0;
  return Get(object, member, flag) && flag == kTrue;
}

bool ReadRange(AutomationObject* shape, ObjectRef& range, std::int32_t& count) {
  ObjectRef frame;
  ObjectRef all;
  if (!FlagHolds(shape, ppt::shape::kHasTextFrame) || !Get(shape, ppt::shape::kTextFrame, frame) ||
      !FlagHolds(frame.get(), ppt::textFrame::kHasText) ||
      !Get(frame.get(), ppt::textFrame::kTextRange, range) ||
      !GetAt(range.get(), ppt::textRange::kParagraphs, kAll, kAll, all)) {
    return false;
  }
  return Get(all.get(), ppt::textRange::kCount, count);
}

Paragraphs ReadParagraphs(AutomationObject* range, std::int32_t count) {
  Paragraphs read;
  for (std::int32_t i = 1; i <= count; ++i) {
    Wide text;
    ObjectRef paragraph;
    if (!GetAt(range, ppt::textRange::kParagraphs, i, 1, paragraph) ||
        !Get(paragraph.get(), ppt::textRange::kText, text)) {
      text.clear();
    }
    read.endsWithCr.push_back(TrimParagraphEnd(text));
    read.texts.push_back(std::move(text));
  }
  return read;
}

Wide ShapeName(AutomationObject* shape) {
  Variant value;
  if (Succeeded(AutoGet(shape, u"Name", value))) return VariantToText(value);
  Wide name;
  return Get(shape, ppt::shape::kName, name) ? name : Wide(u"?");
}

void LogFrame(AutomationObject* shape, std::int32_t slide, const ShapePath& path,
              std::int32_t count, Wide& name) {
  bool read = false;
  const std::int32_t type = ShapeType(shape, read);
  name = ShapeName(shape);
  const std::int32_t depth = std::clamp(path.depth, std::int32_t{0}, kMaxPathDepth);
  LogLine(u"PptCtrl shape slides[" + Decimal(slide) + u"] " + PathText(path) + u" depth=" +
          Decimal(depth) + u" type=" + Decimal(type) + u" name=" + name + u" paras=" +
          Decimal(count));
}

}  // namespace

bool TrimParagraphEnd(Wide& text) {
  const bool endsWithCr = !text.empty() && text.back() == u'\r';
  while (!text.empty() && (text.back() == u'\r' || text.back() == u'\n')) text.pop_back();
  return endsWithCr;
}

void CollectFrame(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                  const ShapePath& path, const UnitLocator& locatorTemplate) {
  ObjectRef range;
  std::int32_t count = 0;
  if (!ReadRange(shape, range, count) || count <= 0) return;
  auto name = std::make_shared<Wide>();
  LogFrame(shape, slide, path, count, *name);

  const Paragraphs paragraphs = ReadParagraphs(range.get(), count);
  auto frameText = std::make_shared<Wide>();
  for (const Wide& text : paragraphs.texts) *frameText += text;
  const FrameVerdict verdict = JudgeFrame(paragraphs.texts, locatorTemplate);

  UnitLocator locator = locatorTemplate;
  locator.slideIndex = slide;
  locator.shapePath = Stored(path);
  TextUnit unit;
  unit.frameText = frameText;
  unit.shapeName = name;
  unit.paragraphCount = count;
  const Wide pathText = PathText(path);

  if (verdict == FrameVerdict::kCollapsed) {
    LogLine(u"PptCtrl frame collapse slides[" + Decimal(slide) + u"] " + pathText + u" paras=" +
            Decimal(count));
    unit.unitId = pathText + u".frame";
    unit.frameCollapsed = true;
    locator.wholeFrame = true;
    texts.Add(std::move(unit), *frameText, std::move(locator));
    return;
  }

  // Also set where the frame did not collapse: the broken phrase pass finds these frames by it.
  unit.frameCollapsed = verdict == FrameVerdict::kMarked;
  for (std::int32_t i = 1; i <= count; ++i) {
    const auto at = static_cast<std::size_t>(i - 1);
    const Wide& text = paragraphs.texts[at];
    if (ShouldSkip(text)) {
      LogLine(u"PptCtrl skip: slides[" + Decimal(slide) + u"] \"" + text + u"\" (ShouldSkip)");
      ++texts.skipped;
      continue;
    }
    unit.unitId = pathText + u".p" + Decimal(i);
    locator.paragraphIndex = i;
    locator.endsWithCr = paragraphs.endsWithCr[at];
    texts.Add(unit, text, locator);
  }
}

}  // namespace quillmarch::addin
