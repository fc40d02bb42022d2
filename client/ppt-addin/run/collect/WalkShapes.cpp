#include "run/collect/WalkShapes.h"

#include "foundation/log/Log.h"
#include "run/collect/CollectFrame.h"
#include "run/collect/LeafCollector.h"

namespace quillmarch::addin {

void WalkShapes(RunTexts& texts, const ShapeList& shapes, std::int32_t slide,
                const ShapePath& parentPath, const UnitLocator& locatorTemplate) {
  if (!shapes.object) return;
  if (parentPath.depth > kMaxPathDepth || parentPath.depth < 0) {
    LogLine(u"PptCtrl walk shapes path unusable");
    return;
  }
  if (parentPath.depth == kMaxPathDepth) {
    LogLine(u"PptCtrl walk shapes depth limit");
    return;
  }
  std::int32_t count = 0;
  if (!shapes.Count(count)) return;
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef shape;
    if (!shapes.At(i, shape)) continue;
    ShapePath path = ChildPath(parentPath, i);
    ShapeList items;
    if (ShapeGroupItems(shape.get(), items)) {
      WalkShapes(texts, items, slide, path, locatorTemplate);
      continue;
    }
    CheckLeafPath(path, parentPath, i);
    CollectLeaf(texts, shape.get(), slide, path, locatorTemplate);
  }
}

void CollectLeaf(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                 const ShapePath& path, const UnitLocator& locatorTemplate) {
  if (HasTable(shape)) {
    CollectTable(texts, shape, slide, path, locatorTemplate);
  } else if (!CollectChartOrSmartArt(texts, shape, slide, path, locatorTemplate)) {
    CollectFrame(texts, shape, slide, path, locatorTemplate);
  }
}

void CollectTable(RunTexts& texts, AutomationObject* shape, std::int32_t slide,
                  const ShapePath& path, const UnitLocator& locatorTemplate) {
  TableGrid grid;
  if (!ReadTable(shape, grid)) return;
  UnitLocator cellTemplate = locatorTemplate;
  // The cell's kind takes the place of the notes' own, and the writeback must still find the page.
  if (locatorTemplate.kind == UnitKind::kNotes) cellTemplate.onNotes = 1;
  cellTemplate.kind = UnitKind::kCell;
  for (std::int32_t row = 1; row <= grid.rows; ++row) {
    for (std::int32_t column = 1; column <= grid.columns; ++column) {
      ObjectRef cell;
      if (!CellShape(grid.table.get(), row, column, cell)) continue;
      cellTemplate.row = row;
      cellTemplate.column = column;
      CollectFrame(texts, cell.get(), slide, path, cellTemplate);
    }
  }
}

}  // namespace quillmarch::addin
