// The debugger's channel. On Windows OutputDebugStringW; elsewhere nothing. Tests and the command
// may listen.
#pragma once

#include <functional>

#include "foundation/text/Wide.h"

namespace quillmarch {

void DebugOutput(const char16_t* text);

// Gets every text before the debugger does; empty takes the listener away. Set it before any other
// thread logs.
void SetDebugListener(std::function<void(WideView)> listener);

}  // namespace quillmarch
