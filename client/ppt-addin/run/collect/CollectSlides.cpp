#include "run/collect/CollectSlides.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"
#include "run/collect/WalkShapes.h"
#include "run/document/BilingualSlides.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

namespace {

ResultCode FailWith(const char16_t* text, Wide& outMessage, ResultCode code = kFail) {
  outMessage = text;
  return code;
}

void WalkNotes(RunState& run, AutomationObject* slide, std::int32_t index) {
  ObjectRef notes;
  ShapeList shapes;
  if (!Get(slide, ppt::slide::kNotesPage, notes) ||
      !Get(notes.get(), ppt::slideRange::kShapes, shapes.object)) {
    return;
  }
  UnitLocator notesTemplate;
  notesTemplate.kind = kKindNotes;
  WalkShapes(run, shapes, index, ShapePath{}, notesTemplate);
}

void CollectSlide(RunState& run, AutomationObject* slides, std::int32_t index) {
  ObjectRef slide;
  if (!GetAt(slides, ppt::slides::kItem, index, slide)) return;
  if (!IsBilingualCopy(slide.get())) WalkSlide(run, slide.get(), index);
}

}  // namespace

bool CurrentSlideIndex(AutomationObject* window, std::int32_t& index) {
  ObjectRef view;
  ObjectRef slide;
  return Get(window, ppt::documentWindow::kView, view) &&
         Get(view.get(), ppt::view::kSlide, slide) &&
         Get(slide.get(), ppt::slide::kSlideIndex, index);
}

bool WalkSlide(RunState& run, AutomationObject* slide, std::int32_t index) {
  ShapeList shapes;
  if (!Get(slide, ppt::slide::kShapes, shapes.object)) return false;
  const std::size_t before = run.units.size();
  WalkShapes(run, shapes, index, ShapePath{}, UnitLocator{});
  WalkNotes(run, slide, index);
  run.slideRanges.emplace_back(before, run.units.size());
  run.slideNumbers.push_back(index);
  return true;
}

ResultCode CollectSlides(RunState& run, bool allSlides, Wide& outMessage) {
  if (!AnswersTo(run.app.get(), ppt::kApplication)) {
    return FailWith(u"无法获取 Application 接口", outMessage);
  }
  AutomationObject* presentation = RunPresentation(run);
  if (presentation == nullptr) {
    return FailWith(u"无法定位当前演示文稿（请重新打开侧栏）", outMessage);
  }
  ObjectRef slides;
  ResultCode code = kFail;
  if (!Get(presentation, ppt::presentation::kSlides, slides, &code)) {
    return FailWith(u"无法访问 Slides", outMessage, Failed(code) ? code : kFail);
  }
  std::int32_t count = 0;
  if (!Get(slides.get(), ppt::slides::kCount, count)) count = 0;
  std::int32_t first = 1;
  std::int32_t last = count;
  if (!allSlides) {
    if (!CurrentSlideIndex(RunWindow(run), first)) {
      return FailWith(u"无法定位当前页", outMessage);
    }
    last = first;
  }
  run.firstSlide = first;
  run.slideRanges.clear();
  run.slideNumbers.clear();
  for (std::int32_t index = first; index <= last; ++index) {
    if (run.sink != nullptr && run.sink->onScanProgress) {
      run.sink->onScanProgress(index - first + 1, last - first + 1, u"slides");
    }
    CollectSlide(run, slides.get(), index);
  }
  return kOk;
}

}  // namespace quillmarch::addin
