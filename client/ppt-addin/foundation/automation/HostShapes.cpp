#include "foundation/automation/HostShapes.h"

namespace quillmarch {

namespace {

constexpr std::int32_t kTrue = -1;
constexpr std::int32_t kTypeUnread = -2;
constexpr std::int32_t kTypeGroup = 6;

// A shape of unknown type is a group only when it holds more than itself could.
constexpr std::int32_t kMinGroupItems = 1;
constexpr std::int32_t kMinItemsOfUnknown = 2;

}  // namespace

bool ShapeList::Count(std::int32_t& count) const {
  return Get(object.get(), groupItems ? ppt::groupShapes::kCount : ppt::shapes::kCount, count);
}

bool ShapeList::At(std::int32_t index, ObjectRef& shape) const {
  if (Succeeded(ShapeItem(object.get(), index, shape)) && shape) return true;
  return GetAt(object.get(), groupItems ? ppt::groupShapes::kItem : ppt::shapes::kItem, index,
               shape);
}

std::int32_t ShapeType(AutomationObject* shape, bool& read) {
  Variant value;
  std::int32_t type = kTypeUnread;
  read = Succeeded(AutoGet(shape, u"Type", value)) && VariantToWhole(value, type);
  return read ? type : kTypeUnread;
}

bool ReadGroupItems(AutomationObject* shape, ShapeList& items) {
  items.groupItems = true;
  if (!AutoGetObject(shape, u"GroupItems", items.object)) return false;
  if (AnswersTo(items.object.get(), ppt::kGroupShapes)) return true;
  items.object.Reset();
  return false;
}

bool ShapeGroupItems(AutomationObject* shape, ShapeList& items) {
  bool read = false;
  const std::int32_t type = ShapeType(shape, read);
  if (!read) ReportUnreadable(u"Type");
  if (type != kTypeGroup && type != kTypeUnread) return false;
  if (!ReadGroupItems(shape, items)) {
    if (type == kTypeGroup) ReportUnreadable(u"GroupItems");
    return false;
  }
  std::int32_t count = 0;
  if (!items.Count(count)) return false;
  return count >= (type == kTypeGroup ? kMinGroupItems : kMinItemsOfUnknown);
}

bool HasTable(AutomationObject* shape) {
  std::int32_t flag = 0;
  return Get(shape, ppt::shape::kHasTable, flag) && flag == kTrue;
}

bool ReadTable(AutomationObject* shape, TableGrid& grid) {
  ObjectRef rows;
  ObjectRef columns;
  return Get(shape, ppt::shape::kTable, grid.table) &&
         Get(grid.table.get(), ppt::table::kRows, rows) &&
         Get(grid.table.get(), ppt::table::kColumns, columns) &&
         Get(rows.get(), ppt::rows::kCount, grid.rows) &&
         Get(columns.get(), ppt::columns::kCount, grid.columns);
}

bool CellShape(AutomationObject* table, std::int32_t row, std::int32_t column, ObjectRef& shape) {
  Variant cell;
  if (Failed(AutoGetAt2(table, u"Cell", row, column, cell)) || !cell.hasObject()) return false;
  if (!AutoGetObject(cell.object().get(), u"Shape", shape)) return false;
  if (AnswersTo(shape.get(), ppt::kShape)) return true;
  shape.Reset();
  return false;
}

bool FrameRange(AutomationObject* shape, ObjectRef& range) {
  ObjectRef frame;
  return Get(shape, ppt::shape::kTextFrame, frame) &&
         Get(frame.get(), ppt::textFrame::kTextRange, range);
}

}  // namespace quillmarch
