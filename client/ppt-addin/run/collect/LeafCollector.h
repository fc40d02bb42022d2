// The collector of chart and SmartArt texts, to which every leaf without a table is offered first.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "run/document/RunTexts.h"

namespace quillmarch::addin {

// True when the shape was handled and no text frame is to be read.
bool CollectChartOrSmartArt(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                            const ShapePath& path, const UnitLocator& locatorTemplate);

}  // namespace quillmarch::addin
