// The tags of a presentation, slide or shape.
#pragma once

#include <utility>

#include "host/deck/TagList.h"
#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class TagsObject final : public DeckObject {
 public:
  TagsObject(SessionRef session, OpenDeck* open, const deck::TagOwner& owner)
      : DeckObject(std::move(session), open), owner_(owner) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer Item(Args args) const;
  ResultCode Add(Args args) const;
  Answer Name(Args args) const;
  Answer Value(Args args) const;
  deck::TagOwner owner_;
};

}  // namespace quillmarch::host::model
