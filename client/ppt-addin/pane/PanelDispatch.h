// The one place where the page's messages are understood.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

class CPptPane;

// Acts on a message of the page by its "action". No action gets an error as its answer; one without
// an action does nothing. Host thread.
void OnWebMessage(CPptPane& pane, const Wide& text);

// Tells the page how much text is selected, unless a run or a mutation of the host is under way.
// Host thread.
void PushSelectionPreview(CPptPane& pane);

}  // namespace quillmarch::addin
