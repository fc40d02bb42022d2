// Copies of slides that receive the translations of a bilingual run. Host thread only.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// Whether the slide carries the tag of a copy. Such a slide is never a source.
bool IsBilingualCopy(AutomationObject* slide);

// Negative on failure, with the message for the user.
ResultCode CreateBilingualCopies(RunState& run, Wide& errorText);

// The present number of the slide that receives the translations of slide `slideNumber`: the slide
// itself in a run that is not bilingual.
bool LocateCopySlide(const RunState& run, AutomationObject* slides, std::int32_t slideNumber,
                     std::int32_t& outIndex);

// The number of copies of this run that remain. Takes the gate itself.
std::int32_t RemoveBilingualCopies(RunState& run);

}  // namespace quillmarch::addin
