#include "run/document/TextUnit.h"

namespace quillmarch::addin {

bool IsInCell(const UnitLocator& locator) {
  const InCell inCell = RulesOf(locator.kind).inCell;
  return inCell == InCell::kAlways || (inCell == InCell::kByRow && locator.row > 0);
}

bool LiesOnNotes(const UnitLocator& locator) {
  return locator.onNotes != 0 || RulesOf(locator.kind).onNotes;
}

bool MayBeFitted(const UnitLocator& locator) {
  return RulesOf(locator.kind).fitted && !IsInCell(locator) && !LiesOnNotes(locator);
}

bool SameApplyTarget(const UnitLocator& a, const UnitLocator& b) {
  if (a.kind != b.kind || a.slideIndex != b.slideIndex || a.onNotes != b.onNotes) return false;
  if (a.shapePath != b.shapePath) return false;
  if (RulesOf(a.kind).inCell == InCell::kNever) return true;
  return a.row == b.row && a.column == b.column;
}

}  // namespace quillmarch::addin
