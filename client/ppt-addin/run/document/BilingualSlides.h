// Copies of slides that receive the translations of a bilingual run. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Status.h"
#include "run/document/RunCopies.h"

namespace quillmarch::addin {

// Whether the slide carries the tag of a copy. Such a slide is never a source.
bool IsBilingualCopy(AutomationObject* slide);

// A failure carries the message for the user.
Status CreateBilingualCopies(RunCopies& copies);

// The present number of the slide that receives the translations of slide `slideNumber`: the slide
// itself in a run that is not bilingual.
bool LocateCopySlide(const RunCopies& copies, AutomationObject* slides, std::int32_t slideNumber,
                     std::int32_t& outIndex);

// The number of copies of this run that remain. Takes the gate itself.
std::int32_t RemoveBilingualCopies(RunCopies& copies);

}  // namespace quillmarch::addin
