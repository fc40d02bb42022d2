// The process-wide side of the pane's browser.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The folder that all panes of all processes of the user share, made where it is missing; empty
// when the system names no folder for the user's data.
Wide WebViewDataFolder();

// Whether this is the process's first call: one dialog alone tells of a browser that cannot be had.
bool TakeFailureDialog();
// As at the process's start; for tests.
void ForgetFailureDialog();

}  // namespace quillmarch::addin
