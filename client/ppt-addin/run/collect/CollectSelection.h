// Fills the run's lists from what the user has selected in the run's window: shapes, a piece of
// text, or slides. Host thread only.
#pragma once

#include <cstddef>

#include "run/control/RunState.h"

namespace quillmarch::addin {

inline constexpr std::size_t kMaxSelectionUnits = 2000;
inline constexpr std::size_t kMaxSelectionChars = 200000;  // UTF-16 units of all texts together

// kOk with at least one unit, or kFail with a message for the user.
ResultCode CollectSelection(RunState& run, Wide& outMessage);

// Makes slideRanges, slideNumbers and firstSlide from the units: one entry for each run of units
// of one slide, so a slide that comes up again has a second entry.
void RegroupBySlide(RunState& run);

}  // namespace quillmarch::addin
