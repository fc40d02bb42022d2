#include "shell/ResolveWindow.h"

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch::addin {

namespace {

bool IsActive(AutomationObject* window) {
  bool active = false;
  return Get(window, ppt::documentWindow::kActive, active) && active;
}

bool Shows(AutomationObject* window, AutomationObject* presentation) {
  ObjectRef shown;
  return Get(window, ppt::documentWindow::kPresentation, shown) && shown->Identity() != 0 &&
         shown->Identity() == presentation->Identity();
}

// The active one of the windows that show the presentation, else the first of them.
ObjectRef WindowOfPresentation(AutomationObject* application, AutomationObject* presentation) {
  ObjectRef windows;
  std::int32_t count = 0;
  if (!Get(application, ppt::application::kWindows, windows) ||
      !Get(windows.get(), ppt::documentWindows::kCount, count)) {
    return {};
  }
  ObjectRef first;
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef window;
    if (!GetAt(windows.get(), ppt::documentWindows::kItem, i, window) ||
        !Shows(window.get(), presentation)) {
      continue;
    }
    if (IsActive(window.get())) return window;
    if (!first) first = window;
  }
  return first;
}

bool Found(ObjectRef window, const char16_t* via, ResolvedWindow& out) {
  if (!window) return false;
  out.context = ContextOfWindow(window.get());
  out.via = via;
  out.window = std::move(window);
  return true;
}

}  // namespace

WindowContext ContextOfWindow(AutomationObject* window) {
  WindowContext context;
  Get(window, ppt::documentWindow::kHwnd, context.hwnd);
  context.id = window->Identity();
  return context;
}

bool IsWindow(AutomationObject* window, const WindowContext& context) {
  if (!AnswersTo(window, ppt::kDocumentWindow)) return false;
  const WindowContext own = ContextOfWindow(window);
  return (own.hwnd != 0 && own.hwnd == context.hwnd) || (own.id != 0 && own.id == context.id);
}

bool ResolveWindow(AutomationObject* application, AutomationObject* control, ResolvedWindow& out) {
  ObjectRef clicked;
  if (control != nullptr && AutoGetObject(control, u"Context", clicked)) {
    ObjectRef typed;
    if (Succeeded(clicked->QueryTyped(ppt::kDocumentWindow, typed)) && typed) {
      return Found(std::move(clicked), u"ribbon_window", out);
    }
    if (Succeeded(clicked->QueryTyped(ppt::kPresentation, typed)) && typed &&
        Found(WindowOfPresentation(application, clicked.get()), u"ribbon_presentation", out)) {
      return true;
    }
  }
  ObjectRef active;
  return Get(application, ppt::application::kActiveWindow, active) &&
         Found(std::move(active), u"active_window", out);
}

}  // namespace quillmarch::addin
