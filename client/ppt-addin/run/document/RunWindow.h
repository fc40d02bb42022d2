// The window and the presentation of a run, resolved once and kept. Host thread only.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// Null when there is none.
AutomationObject* RunWindow(RunState& run);
AutomationObject* RunPresentation(RunState& run);

// Whether the host's active window is the run's. A user in another window is left alone there.
bool ActiveWindowIsRuns(const RunState& run);

// Moves the run's window to a slide, when that window is the active one.
void ShowSlide(RunState& run, std::int32_t slideNumber);

}  // namespace quillmarch::addin
