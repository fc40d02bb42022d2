#include "run/write/KindWriters.h"

namespace quillmarch::addin {

// No collector makes units of these kinds yet; one that came all the same is named as not written.
bool WriteChartOrNode(const WriteTask&, AutomationObject*, std::size_t, const Wide&) {
  return false;
}

bool WriteChartGroup(const WriteTask&, AutomationObject*, std::span<const std::size_t>,
                     std::int32_t& written) {
  written = 0;
  return false;
}

}  // namespace quillmarch::addin
