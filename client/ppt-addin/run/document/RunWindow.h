// The window and the presentation of a run, resolved once and kept. Host thread only.
#pragma once

#include <cstdint>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"

namespace quillmarch::addin {

struct RunDocument {
  ObjectRef app;
  WindowContext windowContext;
  ObjectRef window;        // resolved once
  ObjectRef presentation;  // resolved once
};

// Null when there is none.
AutomationObject* RunWindow(RunDocument& document);
AutomationObject* RunPresentation(RunDocument& document);

// Whether the host's active window is the run's. A user in another window is left alone there.
bool ActiveWindowIsRuns(const RunDocument& document);

// Moves the run's window to a slide, when that window is the active one.
void ShowSlide(RunDocument& document, std::int32_t slideNumber);

}  // namespace quillmarch::addin
