// The walk over one shape collection, groups entered, tables cell by cell. Host thread only.
#pragma once

#include "foundation/automation/HostShapes.h"
#include "run/document/RunTexts.h"

namespace quillmarch::addin {

// Walks the collection in z-order. A shape that cannot be read costs only itself. Shapes deeper
// than kMaxPathDepth are not collected.
void WalkShapes(RunTexts& texts, const ShapeList& shapes, std::int32_t slide,
                const ShapePath& parentPath, const UnitLocator& locatorTemplate);

// One leaf: its table, its chart or SmartArt, else its text frame.
void CollectLeaf(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                 const ShapePath& path, const UnitLocator& locatorTemplate);

// Every grid position of the shape's table; a merged cell comes up once for each of its own.
void CollectTable(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                  const ShapePath& path, const UnitLocator& locatorTemplate);

}  // namespace quillmarch::addin
