#include "run/collect/CollectSlides.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "run/collect/WalkShapes.h"
#include "run/document/BilingualSlides.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

namespace {

void WalkNotes(RunTexts& texts, AutomationObject* slide, std::int32_t index) {
  ObjectRef notes;
  ShapeList shapes;
  if (!Get(slide, ppt::slide::kNotesPage, notes) ||
      !Get(notes.get(), ppt::slideRange::kShapes, shapes.object)) {
    return;
  }
  UnitLocator notesTemplate;
  notesTemplate.kind = UnitKind::kNotes;
  WalkShapes(texts, shapes, index, ShapePath{}, notesTemplate);
}

void CollectSlide(RunTexts& texts, AutomationObject* slides, std::int32_t index) {
  ObjectRef slide;
  if (!GetAt(slides, ppt::slides::kItem, index, slide)) return;
  if (!IsBilingualCopy(slide.get())) WalkSlide(texts, slide.get(), index);
}

}  // namespace

bool CurrentSlideIndex(AutomationObject* window, std::int32_t& index) {
  ObjectRef view;
  ObjectRef slide;
  return Get(window, ppt::documentWindow::kView, view) &&
         Get(view.get(), ppt::view::kSlide, slide) &&
         Get(slide.get(), ppt::slide::kSlideIndex, index);
}

bool WalkSlide(RunTexts& texts, AutomationObject* slide, std::int32_t index) {
  ShapeList shapes;
  if (!Get(slide, ppt::slide::kShapes, shapes.object)) return false;
  const std::size_t before = texts.units.size();
  WalkShapes(texts, shapes, index, ShapePath{}, UnitLocator{});
  WalkNotes(texts, slide, index);
  texts.AddSlide(index, {before, texts.units.size()});
  return true;
}

Status CollectSlides(RunDocument& document, bool allSlides, const RunSink* sink, RunTexts& texts) {
  if (!AnswersTo(document.app.get(), ppt::kApplication)) {
    return {kFail, u"无法获取 Application 接口"};
  }
  AutomationObject* presentation = RunPresentation(document);
  if (presentation == nullptr) return {kFail, u"无法定位当前演示文稿（请重新打开侧栏）"};
  ObjectRef slides;
  ResultCode code = kFail;
  if (!Get(presentation, ppt::presentation::kSlides, slides, &code)) {
    return {Failed(code) ? code : kFail, u"无法访问 Slides"};
  }
  std::int32_t count = 0;
  const bool counted = Get(slides.get(), ppt::slides::kCount, count);
  if (!counted) LogLine(u"PptCtrl slides count unreadable");
  // Not an empty deck, of which the user would be told that there is nothing to translate.
  if (!counted && allSlides) return {kFail, u"无法访问 Slides"};
  std::int32_t first = 1;
  std::int32_t last = count;
  if (!allSlides) {
    if (!CurrentSlideIndex(RunWindow(document), first)) return {kFail, u"无法定位当前页"};
    last = first;
  }
  texts.firstSlide = first;
  texts.ClearSlides();
  for (std::int32_t index = first; index <= last; ++index) {
    if (sink != nullptr && sink->onScanProgress) {
      sink->onScanProgress(index - first + 1, last - first + 1, u"slides");
    }
    CollectSlide(texts, slides.get(), index);
  }
  return {};
}

}  // namespace quillmarch::addin
