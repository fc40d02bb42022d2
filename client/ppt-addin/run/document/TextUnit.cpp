#include "run/document/TextUnit.h"

namespace quillmarch::addin {

bool SameApplyTarget(const UnitLocator& a, const UnitLocator& b) {
  if (a.kind != b.kind || a.slideIndex != b.slideIndex || a.onNotes != b.onNotes) return false;
  if (a.shapePath != b.shapePath) return false;
  if (a.kind != kKindCell && a.kind != kKindCharacters) return true;
  return a.row == b.row && a.column == b.column;
}

}  // namespace quillmarch::addin
