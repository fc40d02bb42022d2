// The trace log: one entry for every line, usable from any thread at any moment, never failing its
// caller. No levels.
#pragma once

#include <atomic>
#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

// Writes the prefix, the text and one CR LF, each by an open, append and close of its own; the
// text goes to the debugger as well. `context` is ignored. Null logs "(null)".
void LogLine(const void* context, const char16_t* text);
inline void LogLine(const Wide& text) {
  LogLine(nullptr, text.c_str());
}

// The folder of the log files, chosen once for each process; empty when none is writable.
const Wide& LogDirectory();

// For the trace files that others write into the log folder: rotates `fileName` there when it is
// over the size limit, then applies the age and size limits to the folder, at most once in
// 300000 ms for each `lastTick` (the caller's own, static, 0 at start). Never fails.
void MaintainLogDirectory(std::atomic<std::uint64_t>& lastTick, WideView fileName);

}  // namespace quillmarch
