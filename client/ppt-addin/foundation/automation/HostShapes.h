// Going from one host object to the next among shapes, groups and tables. Host thread only; every
// failure costs the one thing asked for and is not reported unless told here.
#pragma once

#include <cstdint>

#include "foundation/automation/Automation.h"
#include "foundation/automation/HostMembers.h"

namespace quillmarch {

// The two collections of shapes, which share names but not interfaces.
struct ShapeList {
  ObjectRef object;
  bool groupItems = false;

  // False when the count cannot be read.
  bool Count(std::int32_t& count) const;
  // By name first, then by the typed Item. 1-based.
  bool At(std::int32_t index, ObjectRef& shape) const;
};

// "Type" as the host gives it; -2 when it cannot be read, and `read` is then false.
std::int32_t ShapeType(AutomationObject* shape, bool& read);

// "GroupItems" as an object that answers to GroupShapes.
bool ReadGroupItems(AutomationObject* shape, ShapeList& items);

// The group test: true with the members of a real group. Unreadable members are reported.
bool ShapeGroupItems(AutomationObject* shape, ShapeList& items);

bool HasTable(AutomationObject* shape);

struct TableGrid {
  ObjectRef table;
  std::int32_t rows = 0;
  std::int32_t columns = 0;
};
bool ReadTable(AutomationObject* shape, TableGrid& grid);

// The shape of a table's cell; row and column are 1-based.
bool CellShape(AutomationObject* table, std::int32_t row, std::int32_t column, ObjectRef& shape);

// The shape's text range, all of it.
bool FrameRange(AutomationObject* shape, ObjectRef& range);

}  // namespace quillmarch
