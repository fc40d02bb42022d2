#include "run/document/FindShape.h"

#include "foundation/log/Log.h"

namespace quillmarch::addin {

namespace {

bool FindAtDepth(const ShapeList& shapes, AutomationObject* target, std::int32_t depth,
                 StoredPath& path, std::int32_t& row, std::int32_t& column) {
  if (depth > kMaxPathDepth) {
    LogLine(u"PptCtrl find shape depth limit");
    return false;
  }
  std::int32_t count = 0;
  if (!shapes.Count(count)) return false;
  for (std::int32_t i = 1; i <= count; ++i) {
    ObjectRef item;
    if (!shapes.At(i, item)) continue;
    path.push_back(i);
    if (SameShape(item.get(), target)) {
      row = 0;
      column = 0;
      return true;
    }
    if (HasTable(item.get()) && FindInTable(item.get(), target, row, column)) return true;
    ShapeList items;
    if (ShapeGroupItems(item.get(), items) &&
        FindAtDepth(items, target, depth + 1, path, row, column)) {
      return true;
    }
    path.pop_back();
  }
  return false;
}

}  // namespace

bool SameShape(AutomationObject* first, AutomationObject* second) {
  if (first == nullptr || second == nullptr) return false;
  const std::uintptr_t identity = first->Identity();
  if (identity != 0 && identity == second->Identity()) return true;

  std::int32_t firstId = 0;
  std::int32_t secondId = 0;
  if (Get(first, ppt::shape::kId, firstId) && Get(second, ppt::shape::kId, secondId) &&
      firstId != 0 && secondId != 0) {
    return firstId == secondId;
  }
  Wide firstName;
  Wide secondName;
  return Get(first, ppt::shape::kName, firstName) && Get(second, ppt::shape::kName, secondName) &&
         !firstName.empty() && firstName == secondName;
}

bool FindShape(const ShapeList& shapes, AutomationObject* target, StoredPath& outPath,
               std::int32_t& outRow, std::int32_t& outColumn) {
  return FindAtDepth(shapes, target, 0, outPath, outRow, outColumn);
}

bool FindInTable(AutomationObject* shape, AutomationObject* target, std::int32_t& outRow,
                 std::int32_t& outColumn) {
  TableGrid grid;
  if (!ReadTable(shape, grid)) return false;
  for (std::int32_t row = 1; row <= grid.rows; ++row) {
    for (std::int32_t column = 1; column <= grid.columns; ++column) {
      ObjectRef cell;
      if (!CellShape(grid.table.get(), row, column, cell)) continue;
      if (!SameShape(cell.get(), target)) continue;
      outRow = row;
      outColumn = column;
      return true;
    }
  }
  return false;
}

}  // namespace quillmarch::addin
