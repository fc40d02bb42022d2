// The search for the path of a shape that only the object itself is known of. Host thread only.
#pragma once

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostShapes.h"
#include "run/document/ShapePath.h"

namespace quillmarch::addin {

// Where a searched shape lies.
struct ShapeMatch {
  std::int32_t found = 0;
  std::int32_t slide = 0;  // 1-based
  StoredPath path;
  bool onNotes = false;
  std::int32_t row = 0;  // 1-based; 0 when the shape is in no table cell
  std::int32_t column = 0;
};

// By identity, else by Id when both have one, else by Name.
bool SameShape(AutomationObject* first, AutomationObject* second);

// Depth-first in z-order. `outPath` is extended from what it holds; on a miss it is as before. For
// a shape inside a table the path is the table's.
bool FindShape(const ShapeList& shapes, AutomationObject* target, StoredPath& outPath,
               std::int32_t& outRow, std::int32_t& outColumn);

bool FindInTable(AutomationObject* shape, AutomationObject* target, std::int32_t& outRow,
                 std::int32_t& outColumn);

}  // namespace quillmarch::addin
