// Collects the texts that the user has selected in the run's window: shapes, a piece of
// text, or slides. Host thread only.
#pragma once

#include <cstddef>

#include "foundation/text/Status.h"
#include "run/document/RunSink.h"
#include "run/document/RunTexts.h"
#include "run/document/RunWindow.h"

namespace quillmarch::addin {

inline constexpr std::size_t kMaxSelectionUnits = 2000;
inline constexpr std::size_t kMaxSelectionChars = 200000;  // UTF-16 units of all texts together

// At least one unit, or a failure with one of the codes of CollectCodes.h or the host's own and a
// message for the user. `sink` may be null.
Status CollectSelection(RunDocument& document, const RunSink* sink, RunTexts& texts);

}  // namespace quillmarch::addin
