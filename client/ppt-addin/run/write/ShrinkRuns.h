// Scales the font sizes of a text's runs, each by itself, so that the proportions inside a
// paragraph stay. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"

namespace quillmarch::addin {

// A run at `minSize` points or below is never touched, and none becomes smaller. Sets `shrunk` when
// a size was put. False when the host gives no runs; a run that cannot be read is passed over.
bool ShrinkRuns(AutomationObject* textRange, float scale, float minSize, bool& shrunk);

}  // namespace quillmarch::addin
