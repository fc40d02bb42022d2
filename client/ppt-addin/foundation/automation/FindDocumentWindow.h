// From the two words that name a window to the window. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"

namespace quillmarch {

// First the window whose HWND is the context's, then the one with its identity; a word that is
// zero is not looked for. Null when none matches.
ObjectRef FindDocumentWindow(AutomationObject* application, const WindowContext& context);

// The same for a run: a context without words means the only window, if there is one only; and
// with a presentation given, a window that shows another one does not count.
ObjectRef FindRunWindow(AutomationObject* application, const WindowContext& context,
                        AutomationObject* presentation);

}  // namespace quillmarch
