// The platform's own debugger channel; nothing where there is none. Any thread.
#pragma once

namespace quillmarch {

void WriteToDebugger(const char16_t* text);

}  // namespace quillmarch
