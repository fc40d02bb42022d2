#include "run/collect/SelectionPreview.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

namespace {

constexpr std::int32_t kSelectedSlides = 1;
constexpr std::int32_t kSelectedShapes = 2;
constexpr std::int32_t kSelectedText = 3;
constexpr std::int32_t kTrue = -1;

bool IsActiveWindow(AutomationObject* app, const WindowContext& context) {
  ObjectRef active;
  if (!Get(app, ppt::application::kActiveWindow, active)) return false;
  std::int32_t hwnd = 0;
  if (context.hwnd != 0 && Get(active.get(), ppt::documentWindow::kHwnd, hwnd) &&
      hwnd == context.hwnd) {
    return true;
  }
  return context.id != 0 && active->Identity() == context.id;
}

// 0 when there is no such range or nothing in it.
std::int32_t CountOf(AutomationObject* selection, const Member<ObjectRef>& range,
                     const Member<std::int32_t>& size) {
  ObjectRef selected;
  std::int32_t count = 0;
  if (!Get(selection, range, selected) || !Get(selected.get(), size, count)) {
    return 0;
  }
  return count < 0 ? 0 : count;
}

// Shapes selected inside a group count alone and not as their whole group. A host that cannot say
// whether there are any has none.
std::int32_t CountShapes(AutomationObject* selection) {
  std::int32_t hasChildren = 0;
  Get(selection, ppt::selection::kHasChildShapeRange, hasChildren);
  return CountOf(
      selection,
      hasChildren == kTrue ? ppt::selection::kChildShapeRange : ppt::selection::kShapeRange,
      ppt::shapeRange::kCount);
}

}  // namespace

SelectionPreview ReadSelectionPreview(AutomationObject* app, const WindowContext& windowContext) {
  SelectionPreview preview;
  if (!AnswersTo(app, ppt::kApplication) || !IsActiveWindow(app, windowContext)) return preview;
  const ObjectRef window = FindDocumentWindow(app, windowContext);
  ObjectRef selection;
  std::int32_t type = 0;
  if (!window || !Get(window.get(), ppt::documentWindow::kSelection, selection) ||
      !Get(selection.get(), ppt::selection::kType, type)) {
    return preview;
  }
  if (type == kSelectedText) {
    preview.chars = CountOf(selection.get(), ppt::selection::kTextRange, ppt::textRange::kLength);
    preview.fragments = preview.chars > 0 ? 1 : 0;
    preview.label = u"已选 " + Decimal(preview.chars) + u" 字";
  } else if (type == kSelectedSlides) {
    preview.fragments =
        CountOf(selection.get(), ppt::selection::kSlideRange, ppt::slideRange::kCount);
    preview.label = u"已选 " + Decimal(preview.fragments) + u" 页";
  } else if (type == kSelectedShapes) {
    preview.fragments = CountShapes(selection.get());
    preview.label = u"已选 " + Decimal(preview.fragments) + u" 个形状";
  }
  if (preview.fragments < 1) return {};
  preview.empty = false;
  return preview;
}

}  // namespace quillmarch::addin
