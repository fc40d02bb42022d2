// Tables: grid, rows, columns, cells.
#pragma once

#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class TableObject final : public DeckObject {
 public:
  TableObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer Cell(Args args) const;
  deck::ShapeAddress address_;
};

// A table's rows or columns.
class TableLinesObject final : public DeckObject {
 public:
  TableLinesObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address, bool rows)
      : DeckObject(std::move(session), open), address_(address), rows_(rows) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer Count() const;
  deck::ShapeAddress address_;
  bool rows_;
};

class CellObject final : public DeckObject {
 public:
  CellObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer Merged() const;
  deck::ShapeAddress address_;
};

}  // namespace quillmarch::host::model
