// Reads one text frame and adds its units. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "run/document/RunTexts.h"

namespace quillmarch::addin {

// `locatorTemplate` gives kind, table cell and notes flag; `slide` is 1-based. A frame without
// text, or one that cannot be read, adds nothing.
void CollectFrame(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                  const ShapePath& path, const UnitLocator& locatorTemplate);

// Takes trailing CR and LF away; true when the last character was a CR.
bool TrimParagraphEnd(Wide& text);

}  // namespace quillmarch::addin
