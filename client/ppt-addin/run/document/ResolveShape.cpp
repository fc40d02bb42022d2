#include "run/document/ResolveShape.h"

#include <cstddef>

#include "foundation/automation/HostShapes.h"

namespace quillmarch::addin {

namespace {

ResultCode DescendPath(AutomationObject* shapes, const StoredPath& path, ObjectRef& shape) {
  ObjectRef found;
  if (!GetAt(shapes, ppt::shapes::kItem, path.front(), found)) return kFail;
  for (std::size_t level = 1; level < path.size(); ++level) {
    ShapeList items;
    if (!ReadGroupItems(found.get(), items)) {
      ReportUnreadable(u"GroupItems");
      return kFail;
    }
    ObjectRef inner;
    if (!items.At(path[level], inner)) return kFail;
    found = std::move(inner);
  }
  shape = std::move(found);
  return kOk;
}

bool UsablePath(const StoredPath& path) {
  return !path.empty() && path.size() <= static_cast<std::size_t>(kMaxPathDepth);
}

}  // namespace

ResultCode ResolveShape(AutomationObject* slides, std::int32_t slideIndex, const StoredPath& path,
                        ObjectRef& shape) {
  shape.Reset();
  if (!UsablePath(path)) return kFail;
  ObjectRef slide;
  ObjectRef shapes;
  if (!GetAt(slides, ppt::slides::kItem, slideIndex, slide) ||
      !Get(slide.get(), ppt::slide::kShapes, shapes)) {
    return kFail;
  }
  return DescendPath(shapes.get(), path, shape);
}

ResultCode ResolveNotesShape(AutomationObject* slides, std::int32_t slideIndex,
                             const StoredPath& path, ObjectRef& shape) {
  shape.Reset();
  if (!UsablePath(path)) return kFail;
  ObjectRef slide;
  ObjectRef notes;
  ObjectRef shapes;
  if (!GetAt(slides, ppt::slides::kItem, slideIndex, slide) ||
      !Get(slide.get(), ppt::slide::kNotesPage, notes) ||
      !Get(notes.get(), ppt::slideRange::kShapes, shapes)) {
    return kFail;
  }
  return DescendPath(shapes.get(), path, shape);
}

}  // namespace quillmarch::addin
