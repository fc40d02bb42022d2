// The command as it would be without the text fit, to hold the overflow table's figures against.
// These two stand in for the add-in's own at the link.
#include "run/write/FitShape.h"

namespace quillmarch::host {

using namespace addin;

ShapeRect ReadShapeRect(AutomationObject*) {
  return {};
}

void FitShape(AutomationObject*, const ShapeRect*, float) {}

}  // namespace quillmarch::host
