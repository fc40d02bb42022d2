#include "foundation/DebuggerChannel.h"

void WriteToDebugger(const char16_t*) {}
