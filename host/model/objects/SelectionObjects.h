// A window's selection and its ranges of shapes and slides.
#pragma once

#include <utility>
#include <vector>

#include "host/model/objects/DeckObject.h"

namespace quillmarch::host::model {

// Asks the window again with every call. A member that does not fit the selection's type fails.
class SelectionObject final : public DeckObject {
 public:
  SelectionObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}

 protected:
  const MemberTable& Table() const override;

 private:
  const Selected& selected() const { return open()->selected; }
  Answer SlideRange() const;
  Answer ShapeRange() const;
  Answer TextRange() const;
  Answer ChildShapeRange() const;
};

class ShapeRangeObject final : public DeckObject {
 public:
  ShapeRangeObject(SessionRef session, OpenDeck* open, std::vector<deck::ShapeAddress> shapes)
      : DeckObject(std::move(session), open), shapes_(std::move(shapes)) {}

 protected:
  const MemberTable& Table() const override;

 private:
  std::vector<deck::ShapeAddress> shapes_;
};

class SlideRangeObject final : public DeckObject {
 public:
  SlideRangeObject(SessionRef session, OpenDeck* open, std::vector<std::uint32_t> slides)
      : DeckObject(std::move(session), open), slides_(std::move(slides)) {}

 protected:
  const MemberTable& Table() const override;

 private:
  std::vector<std::uint32_t> slides_;
};

}  // namespace quillmarch::host::model
