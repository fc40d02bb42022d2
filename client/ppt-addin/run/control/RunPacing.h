// The timed step of a run, and the one road by which a slide is written. Host thread only.
#pragma once

#include <cstdint>

#include "run/control/RunState.h"

namespace quillmarch::addin {

inline constexpr std::uint64_t kShowBeforeWriteMs = 900;
inline constexpr std::uint64_t kShowAfterWriteMs = 1500;

// Writes entry `entry` of slideRanges under the gate. True when the slide was handled, whatever
// failed inside; false when it must be tried again later.
bool ApplySlide(RunState& run, std::int32_t entry, bool checkInput, bool jumpToCopy);

// Writes at most one slide.
void TickRun(RunState& run);

}  // namespace quillmarch::addin
