// The writers of chart slots and SmartArt nodes. Host thread only, with the gate held.
#pragma once

#include <cstddef>
#include <span>

#include "run/control/RunState.h"

namespace quillmarch::addin {

// One unit of kind 3, 4, 6, 8, 9 or 10; false when it was not written.
bool WriteChartOrNode(RunState& run, AutomationObject* shape, std::size_t unit, const Wide& text);

// A whole group of kind 7 or 11; false when it failed. `written` is the number of units written.
bool WriteChartGroup(RunState& run, AutomationObject* shape, std::span<const std::size_t> units,
                     std::int32_t& written);

}  // namespace quillmarch::addin
