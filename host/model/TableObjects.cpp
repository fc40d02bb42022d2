// Tables: grid, rows, columns, cells.
#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

namespace quillmarch::host::model {
namespace {

deck::TableGrid* GridOf(deck::Deck& deck, const deck::ShapeAddress& address) {
  deck::SlidePart* const part = deck.Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return nullptr;
  return part->Table(address.shape);
}

}  // namespace

ResultCode TableObject::Rows(Args, Variant& out) {
  return Give<TableLinesObject>(out, session(), open(), address_, true);
}
ResultCode TableObject::Columns(Args, Variant& out) {
  return Give<TableLinesObject>(out, session(), open(), address_, false);
}

ResultCode TableObject::Cell(Args args, Variant& out) {
  std::int32_t row = 0;
  std::int32_t column = 0;
  if (args.Count() != 2) return kBadParamCount;
  if (!args.Whole(0, 0, row) || !args.Whole(1, 0, column)) return kTypeMismatch;
  const deck::TableGrid* const grid = GridOf(deck(), address_);
  if (grid == nullptr || row < 1 || column < 1) return kHostException;
  if (!grid->Has(static_cast<std::uint32_t>(row) - 1, static_cast<std::uint32_t>(column) - 1)) {
    return kHostException;
  }
  deck::ShapeAddress cell = address_;
  cell.row = row - 1;
  cell.column = column - 1;
  return Give<CellObject>(out, session(), open(), cell);
}

const MemberTable& TableObject::Table() const {
  using Self = TableObject;
  static const MemberTable table({ppt::kTable}, {{u"Columns", 2003, Getter<&Self::Columns>::Call},
                                                 {u"Rows", 2004, Getter<&Self::Rows>::Call},
                                                 {u"Cell", 2005, Getter<&Self::Cell>::Call}});
  return table;
}

ResultCode TableLinesObject::Count(Args, Variant& out) {
  const deck::TableGrid* const grid = GridOf(deck(), address_);
  if (grid == nullptr) return kHostException;
  out = Variant::I4(static_cast<std::int32_t>(rows_ ? grid->Rows() : grid->Columns()));
  return kOk;
}

const MemberTable& TableLinesObject::Table() const {
  using Self = TableLinesObject;
  static const MemberTable rows({ppt::kRows}, {{u"Count", 11, Getter<&Self::Count>::Call}});
  static const MemberTable columns({ppt::kColumns}, {{u"Count", 11, Getter<&Self::Count>::Call}});
  return rows_ ? rows : columns;
}

ResultCode CellObject::Shape(Args, Variant& out) {
  return Give<ShapeObject>(out, session(), open(), address_);
}

ResultCode CellObject::Merged(Args, Variant& out) {
  const deck::TableGrid* const grid = GridOf(deck(), address_);
  if (grid == nullptr) return kHostException;
  out = TriState(grid->Merged(static_cast<std::uint32_t>(address_.row),
                              static_cast<std::uint32_t>(address_.column)));
  return kOk;
}

const MemberTable& CellObject::Table() const {
  using Self = CellObject;
  static const MemberTable table({ppt::kCell}, {{u"Shape", 2003, Getter<&Self::Shape>::Call},
                                                {u"Merged", 2009, Getter<&Self::Merged>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
