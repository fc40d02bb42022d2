// The two text frames that a shape shows: one state, two ways to name it.
#pragma once

#include <cstdint>
#include <optional>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

// What both text frames of a shape have.
class FrameObject : public DeckObject {
 protected:
  FrameObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : DeckObject(std::move(session), open), address_(address) {}
  const deck::ShapeAddress& address() const { return address_; }
  deck::AutofitKind Autofit() const { return deck().Frame(address_).autofit->kind; }
  ResultCode PutAutofit(deck::AutofitKind kind) const;
  // Where the first frame's autosize is kept on a host that has two; null on others.
  std::int32_t* FirstAutoSize(bool make) const;

  // The rows that the two classes share; only these two members have a number of their own in each.
  template <typename Self>
  static Members<Self> CommonMembers(DispId hasText, DispId wordWrap);

 private:
  using Inset = std::optional<std::int64_t> deck::FrameProps::*;
  Answer HasText() const;
  Answer WordWrap() const;
  ResultCode PutWordWrap(const Variant& value) const;
  Answer GetInset(Inset inset) const;
  ResultCode PutInset(Inset inset, const Variant& value) const;
  Answer Parent() const;
  ResultCode Change(const deck::FrameProps& change) const;
  deck::ShapeAddress address_;
};

class TextFrameObject final : public FrameObject {
 public:
  TextFrameObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : FrameObject(std::move(session), open, address) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer TextRange() const;
  Answer AutoSize() const;
  ResultCode PutAutoSize(const Variant& value) const;
};

class TextFrame2Object final : public FrameObject {
 public:
  TextFrame2Object(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address)
      : FrameObject(std::move(session), open, address) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer AutoSize() const;
  ResultCode PutAutoSize(const Variant& value) const;
};

}  // namespace quillmarch::host::model
