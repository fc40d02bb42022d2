#include "run/collect/LocateSelected.h"

#include <utility>

#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

namespace {

bool FindOnPage(AutomationObject* page, const Member<ObjectRef>& pageShapes,
                AutomationObject* shape, ShapeMatch& match) {
  ShapeList shapes;
  return Get(page, pageShapes, shapes.object) &&
         FindShape(shapes, shape, match.path, match.row, match.column);
}

bool FindOnSlide(AutomationObject* slides, std::int32_t index, AutomationObject* shape,
                 ShapeMatch& match) {
  ObjectRef slide;
  if (!GetAt(slides, ppt::slides::kItem, index, slide)) return false;
  ShapeMatch found;
  if (!FindOnPage(slide.get(), ppt::slide::kShapes, shape, found)) {
    ObjectRef notes;
    if (!Get(slide.get(), ppt::slide::kNotesPage, notes) ||
        !FindOnPage(notes.get(), ppt::slideRange::kShapes, shape, found)) {
      return false;
    }
    found.onNotes = true;
  }
  found.found = 1;
  found.slide = index;
  Get(slide.get(), ppt::slide::kSlideIndex, found.slide);
  match = std::move(found);
  return true;
}

}  // namespace

bool LocateSelected(AutomationObject* slides, AutomationObject* shape, std::int32_t activeSlide,
                    ShapeMatch& match) {
  if (shape == nullptr) return false;
  if (activeSlide > 0 && FindOnSlide(slides, activeSlide, shape, match)) return true;
  std::int32_t count = 0;
  if (!Get(slides, ppt::slides::kCount, count)) return false;
  for (std::int32_t index = 1; index <= count; ++index) {
    if (index != activeSlide && FindOnSlide(slides, index, shape, match)) return true;
  }
  return false;
}

}  // namespace quillmarch::addin
