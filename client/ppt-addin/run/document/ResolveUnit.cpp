#include "run/document/ResolveUnit.h"

#include "foundation/automation/HostShapes.h"
#include "run/document/ResolveShape.h"

namespace quillmarch::addin {

namespace {

bool EnterCell(const UnitLocator& locator, ObjectRef& shape) {
  ObjectRef table;
  ObjectRef cell;
  if (!Get(shape.get(), ppt::shape::kTable, table) ||
      !CellShape(table.get(), locator.row, locator.column, cell)) {
    return false;
  }
  shape = std::move(cell);
  return true;
}

}  // namespace

UnitPlace ResolveUnit(AutomationObject* slides, std::int32_t slide, const UnitLocator& locator,
                      ObjectRef& shape) {
  const ResultCode found = LiesOnNotes(locator)
                               ? ResolveNotesShape(slides, slide, locator.shapePath, shape)
                               : ResolveShape(slides, slide, locator.shapePath, shape);
  if (Failed(found)) return UnitPlace::kNoShape;
  if (!IsInCell(locator) || EnterCell(locator, shape)) return UnitPlace::kFound;
  shape.Reset();
  return UnitPlace::kNoCell;
}

}  // namespace quillmarch::addin
