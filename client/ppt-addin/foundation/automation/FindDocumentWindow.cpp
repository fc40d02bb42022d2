#include "foundation/automation/FindDocumentWindow.h"

#include <functional>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch {

namespace {

using WindowTest = std::function<bool(AutomationObject*)>;

ObjectRef FirstWindow(AutomationObject* windows, std::int32_t count, const WindowTest& matches) {
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef window;
    if (GetAt(windows, ppt::documentWindows::kItem, i, window) && matches(window.get())) {
      return window;
    }
  }
  return {};
}

bool Shows(AutomationObject* window, AutomationObject* presentation) {
  if (presentation == nullptr) return true;
  ObjectRef shown;
  return Get(window, ppt::documentWindow::kPresentation, shown) && shown->Identity() != 0 &&
         shown->Identity() == presentation->Identity();
}

}  // namespace

ObjectRef FindDocumentWindow(AutomationObject* application, const WindowContext& context) {
  if (context.hwnd == 0 && context.id == 0) return {};
  return FindRunWindow(application, context, nullptr);
}

ObjectRef FindRunWindow(AutomationObject* application, const WindowContext& context,
                        AutomationObject* presentation) {
  ObjectRef windows;
  std::int32_t count = 0;
  if (!Get(application, ppt::application::kWindows, windows) ||
      !Get(windows.get(), ppt::documentWindows::kCount, count)) {
    return {};
  }
  if (context.hwnd != 0) {
    ObjectRef window = FirstWindow(windows.get(), count, [&](AutomationObject* candidate) {
      std::int32_t hwnd = 0;
      return Get(candidate, ppt::documentWindow::kHwnd, hwnd) && hwnd == context.hwnd &&
             Shows(candidate, presentation);
    });
    if (window) return window;
  }
  if (context.id != 0) {
    return FirstWindow(windows.get(), count, [&](AutomationObject* candidate) {
      return candidate->Identity() == context.id && Shows(candidate, presentation);
    });
  }
  if (context.hwnd != 0 || count != 1) return {};
  return FirstWindow(windows.get(), count,
                     [&](AutomationObject* candidate) { return Shows(candidate, presentation); });
}

}  // namespace quillmarch
