// A range of text: an address and a span of UTF-16 units. A put through it makes the span the new
// text's.
#pragma once

#include <cstddef>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class TextRangeObject final : public DeckObject {
 public:
  // `count` is the number of units (paragraphs, runs, characters) that were asked for; `reachesEnd`
  // is true when the range holds the frame's last paragraph, which may be empty.
  TextRangeObject(SessionRef session, OpenDeck* open, const deck::ShapeAddress& address,
                  deck::TextSpan span, std::size_t count, bool reachesEnd)
      : DeckObject(std::move(session), open),
        address_(address),
        span_(span),
        count_(count),
        reachesEnd_(reachesEnd) {}

 protected:
  const MemberTable& Table() const override;

 private:
  deck::TextBody* Body() const { return deck().Text(address_); }
  ResultCode PutText(const Variant& value);
  Answer Paragraphs(Args args) const;
  Answer Characters(Args args) const;
  Answer Runs(Args args) const;
  Answer Bound(double deck::ShapeBox::*side) const;
  deck::ShapeAddress address_;
  deck::TextSpan span_;
  std::size_t count_;
  bool reachesEnd_;
};

}  // namespace quillmarch::host::model
