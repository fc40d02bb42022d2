// The writers of chart slots and SmartArt nodes. Host thread only, with the gate held.
#pragma once

#include <cstddef>
#include <span>

#include "run/write/RunWrites.h"

namespace quillmarch::addin {

// One unit that is written by itself; false when it was not written.
bool WriteChartOrNode(const WriteTask& task, AutomationObject* shape, std::size_t unit,
                      const Wide& text);

// All units of one shape at once; false when it failed. `written` is the number of units written.
bool WriteChartGroup(const WriteTask& task, AutomationObject* shape,
                     std::span<const std::size_t> units, std::int32_t& written);

}  // namespace quillmarch::addin
