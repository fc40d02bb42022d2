#include "run/document/RunWindow.h"

#include <array>

#include "foundation/automation/Automation.h"
#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

AutomationObject* RunWindow(RunState& run) {
  if (!run.window) {
    run.window = FindRunWindow(run.app.get(), run.windowContext, run.presentation.get());
  }
  return run.window.get();
}

AutomationObject* RunPresentation(RunState& run) {
  if (!run.presentation) {
    AutomationObject* window = RunWindow(run);
    if (window == nullptr) return nullptr;
    if (!Get(window, ppt::documentWindow::kPresentation, run.presentation)) {
      return nullptr;
    }
  }
  return run.presentation.get();
}

bool ActiveWindowIsRuns(const RunState& run) {
  ObjectRef active;
  if (!Get(run.app.get(), ppt::application::kActiveWindow, active)) return false;
  std::int32_t hwnd = 0;
  if (run.windowContext.hwnd != 0 && Get(active.get(), ppt::documentWindow::kHwnd, hwnd) &&
      hwnd == run.windowContext.hwnd) {
    return true;
  }
  return run.windowContext.id != 0 && active->Identity() == run.windowContext.id;
}

void ShowSlide(RunState& run, std::int32_t slideNumber) {
  AutomationObject* window = RunWindow(run);
  ObjectRef view;
  if (window == nullptr || !ActiveWindowIsRuns(run) ||
      !Get(window, ppt::documentWindow::kView, view)) {
    return;
  }
  const std::array<Variant, 1> index = {Variant::I4(slideNumber)};
  Variant nothing;
  static_cast<void>(CallMember(view.get(), ppt::view::kGotoSlide, index, nothing));
}

}  // namespace quillmarch::addin
