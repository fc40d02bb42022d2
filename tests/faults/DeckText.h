// All the text of a host's active presentation, read through the object model.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"

namespace quillmarch::host {

// Every frame's text on slides and notes pages, groups and tables included, without paragraph ends
// and one frame a line.
Wide DeckText(const ObjectRef& application);

}  // namespace quillmarch::host
