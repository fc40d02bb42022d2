#include "run/document/RunWindow.h"

#include <array>

#include "foundation/automation/Automation.h"
#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

AutomationObject* RunWindow(RunDocument& document) {
  if (!document.window) {
    document.window =
        FindRunWindow(document.app.get(), document.windowContext, document.presentation.get());
  }
  return document.window.get();
}

AutomationObject* RunPresentation(RunDocument& document) {
  if (!document.presentation) {
    AutomationObject* window = RunWindow(document);
    if (window == nullptr) return nullptr;
    if (!Get(window, ppt::documentWindow::kPresentation, document.presentation)) {
      return nullptr;
    }
  }
  return document.presentation.get();
}

bool ActiveWindowIsRuns(const RunDocument& document) {
  ObjectRef active;
  if (!Get(document.app.get(), ppt::application::kActiveWindow, active)) return false;
  std::int32_t hwnd = 0;
  if (document.windowContext.hwnd != 0 && Get(active.get(), ppt::documentWindow::kHwnd, hwnd) &&
      hwnd == document.windowContext.hwnd) {
    return true;
  }
  return document.windowContext.id != 0 && active->Identity() == document.windowContext.id;
}

void ShowSlide(RunDocument& document, std::int32_t slideNumber) {
  AutomationObject* window = RunWindow(document);
  ObjectRef view;
  if (window == nullptr || !ActiveWindowIsRuns(document) ||
      !Get(window, ppt::documentWindow::kView, view)) {
    return;
  }
  const std::array<Variant, 1> index = {Variant::I4(slideNumber)};
  Variant nothing;
  static_cast<void>(CallMember(view.get(), ppt::view::kGotoSlide, index, nothing));
}

}  // namespace quillmarch::addin
