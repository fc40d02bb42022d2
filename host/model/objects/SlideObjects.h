// Slides, notes pages and their collections of shapes.
#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

class SlidesObject final : public DeckObject {
 public:
  SlidesObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}

 protected:
  const MemberTable& Table() const override;

 private:
  Answer Item(Args args) const;
  Answer FindBySlideId(Args args) const;
};

// A slide, or the range of one page as which hosts give a slide's notes page.
class SlideObject final : public DeckObject {
 public:
  SlideObject(SessionRef session, OpenDeck* open, deck::PageAddress page)
      : DeckObject(std::move(session), open), page_(page) {}

 protected:
  const MemberTable& Table() const override;

 private:
  deck::PageAddress page_;
};

// The shapes of a page, or with a group's number its group items.
class ShapesObject final : public DeckObject {
 public:
  ShapesObject(SessionRef session, OpenDeck* open, deck::PageAddress page, std::uint32_t group)
      : DeckObject(std::move(session), open), page_(page), group_(group) {}

 protected:
  const MemberTable& Table() const override;

 private:
  std::span<const std::uint32_t> List() const;
  Answer Item(Args args) const;
  deck::PageAddress page_;
  std::uint32_t group_;
};

}  // namespace quillmarch::host::model
