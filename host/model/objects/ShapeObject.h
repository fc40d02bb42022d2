// A shape of a page, or the shape that a table's cell is shown as.
#pragma once

#include <cstdint>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class ShapeObject final : public DeckObject {
 public:
  ShapeObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}

 protected:
  const MemberTable& Table() const override;

 private:
  struct View {
    deck::SlidePart* part = nullptr;
    const deck::ShapeEntry* entry = nullptr;
  };
  View Look() const;
  Answer Type() const;
  Answer Name() const;
  Answer Id() const;
  Answer AlternativeText() const;
  Answer Visible() const;
  Answer KindFlag(deck::ShapeKind kind) const;
  using Side = double deck::ShapeBox::*;
  Answer GetSide(Side side) const;
  ResultCode PutSide(Side side, bool isLength, const Variant& value) const;
  bool HasTextFrame(const View& view) const;
  template <typename Frame>
  Answer GiveFrame() const;
  Answer GiveTable() const;
  Answer GroupItems() const;
  Answer PlaceholderFormat() const;
  deck::ShapeAddress address_;
};

class PlaceholderFormatObject final : public DeckObject {
 public:
  PlaceholderFormatObject(SessionRef session, OpenDeck* open, std::int32_t type,
                          std::int32_t contained)
      : DeckObject(std::move(session), open), type_(type), contained_(contained) {}

 protected:
  const MemberTable& Table() const override;

 private:
  std::int32_t type_;
  std::int32_t contained_;
};

}  // namespace quillmarch::host::model
