// From a click on the ribbon to the document window that it was made in. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"

namespace quillmarch::addin {

struct ResolvedWindow {
  WindowContext context;
  const char16_t* via = u"";  // which road found it, for the log
  ObjectRef window;
};

// `control` may be null. False when no window can be told.
bool ResolveWindow(AutomationObject* application, AutomationObject* control, ResolvedWindow& out);

// The two words of a window: 0 for what it does not tell.
WindowContext ContextOfWindow(AutomationObject* window);

// Whether the object is the window that the words name.
bool IsWindow(AutomationObject* window, const WindowContext& context);

}  // namespace quillmarch::addin
