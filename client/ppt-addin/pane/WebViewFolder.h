// Where the browser keeps its data.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The folder shared by all panes of all the user's processes, created where it is missing; empty
// when the system names no folder for the user's data.
Wide WebViewDataFolder();

}  // namespace quillmarch::addin
