// Fills the run's lists from the whole deck or from the current slide. Host thread only.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// kOk or a failure with a message for the user. Nothing to translate is no failure.
ResultCode CollectSlides(RunState& run, bool allSlides, Wide& outMessage);

// The 1-based index of the slide that the window shows; false, and `index` untouched, when it
// cannot be read.
bool CurrentSlideIndex(AutomationObject* window, std::int32_t& index);

// One slide with its notes page, and its entry in the run's slide lists. False, and no entry, when
// the slide's shapes cannot be read.
bool WalkSlide(RunState& run, AutomationObject* slide, std::int32_t index);

}  // namespace quillmarch::addin
