#include "run/collect/LeafCollector.h"

namespace quillmarch::addin {

bool CollectChartOrSmartArt(RunTexts&, AutomationObject*, std::int32_t, const ShapePath&,
                            const UnitLocator&) {
  // Charts and SmartArt have no text frame of their own, so leaving them loses no other text.
  return false;
}

}  // namespace quillmarch::addin
