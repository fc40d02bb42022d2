// From a unit's locator back to the shape or the table cell that holds its text. Host thread only.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

enum class UnitPlace { kFound, kNoShape, kNoCell };

// `slide` is the 1-based slide to look on, which in a bilingual run is not the locator's own.
// `shape` is empty unless the unit was found.
UnitPlace ResolveUnit(AutomationObject* slides, std::int32_t slide, const UnitLocator& locator,
                      ObjectRef& shape);

}  // namespace quillmarch::addin
