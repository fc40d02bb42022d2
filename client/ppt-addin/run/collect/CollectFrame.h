// Reads one text frame and adds its units to the run. Host thread only.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// `locatorTemplate` gives kind, table cell and notes flag; `slide` is 1-based. A frame without
// text, or one that cannot be read, adds nothing.
void CollectFrame(RunState& run, AutomationObject* shape, std::int32_t slide, const ShapePath& path,
                  const UnitLocator& locatorTemplate);

// Takes trailing CR and LF away; true when the last character was a CR.
bool TrimParagraphEnd(Wide& text);

// Adds a unit of the locator's slide to the run's lists, which stay of equal length whatever
// throws.
void AddUnit(RunState& run, TextUnit unit, UnitLocator locator);

}  // namespace quillmarch::addin
