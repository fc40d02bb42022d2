#include "host/model/objects/TableObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/ShapeObject.h"

namespace quillmarch::host::model {
namespace {

deck::TableGrid* GridOf(deck::Deck& deck, const deck::ShapeAddress& address) {
  deck::SlidePart* const part = deck.Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return nullptr;
  return part->Table(address.shape);
}

}  // namespace

Answer TableObject::Cell(Args args) const {
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
  return Make<CellObject>(session(), open(), cell);
}

const MemberTable& TableObject::Table() const {
  using Self = TableObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kTable},
      {{u"Columns", 2003,
        [](Self& self) {
          return Make<TableLinesObject>(self.session(), self.open(), self.address_, false);
        }},
       {u"Rows", 2004,
        [](Self& self) {
          return Make<TableLinesObject>(self.session(), self.open(), self.address_, true);
        }},
       {u"Cell", 2005, [](Self& self, Args args) { return self.Cell(args); }}});
  return table;
}

Answer TableLinesObject::Count() const {
  const deck::TableGrid* const grid = GridOf(deck(), address_);
  if (grid == nullptr) return kHostException;
  return CountOf(rows_ ? grid->Rows() : grid->Columns());
}

const MemberTable& TableLinesObject::Table() const {
  using Self = TableLinesObject;
  const auto make = [](const InterfaceId& interface) {
    return MemberTable::Of<Self>({interface},
                                 {{u"Count", 11, [](Self& self) { return self.Count(); }}});
  };
  static const MemberTable rows = make(ppt::kRows);
  static const MemberTable columns = make(ppt::kColumns);
  return rows_ ? rows : columns;
}

Answer CellObject::Merged() const {
  const deck::TableGrid* const grid = GridOf(deck(), address_);
  if (grid == nullptr) return kHostException;
  return TriState(grid->Merged(static_cast<std::uint32_t>(address_.row),
                               static_cast<std::uint32_t>(address_.column)));
}

const MemberTable& CellObject::Table() const {
  using Self = CellObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kCell},
      {{u"Shape", 2003,
        [](Self& self) { return Make<ShapeObject>(self.session(), self.open(), self.address_); }},
       {u"Merged", 2009, [](Self& self) { return self.Merged(); }}});
  return table;
}

}  // namespace quillmarch::host::model
