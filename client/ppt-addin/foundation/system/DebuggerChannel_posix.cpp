#include "foundation/system/DebuggerChannel.h"

namespace quillmarch {

void WriteToDebugger(const char16_t*) {}

}  // namespace quillmarch
