// Collects the texts of the whole deck or of the current slide. Host thread only.
#pragma once

#include <cstdint>

#include "foundation/text/Status.h"
#include "run/document/RunSink.h"
#include "run/document/RunTexts.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

// A failure carries the message for the user. Nothing to translate is no failure. `sink` may be
// null.
Status CollectSlides(RunDocument& document, bool allSlides, const RunSink* sink, RunTexts& texts);

// The 1-based index of the slide that the window shows; false, and `index` untouched, when it
// cannot be read.
bool CurrentSlideIndex(AutomationObject* window, std::int32_t& index);

// One slide with its notes page, and its entry in the slide lists. False, and no entry, when the
// slide's shapes cannot be read.
bool WalkSlide(RunTexts& texts, AutomationObject* slide, std::int32_t index);

}  // namespace quillmarch::addin
