// A window's selection and its ranges of shapes and slides.
#pragma once

#include <utility>
#include <vector>

#include "host/model/Objects.h"

namespace quillmarch::host::model {

// Asks the window anew with every call; what the type has not fails.
class SelectionObject final : public DeckObject {
 public:
  SelectionObject(SessionRef session, OpenDeck* open) : DeckObject(std::move(session), open) {}
  ResultCode Type(Args, Variant& out);
  ResultCode SlideRange(Args, Variant& out);
  ResultCode ShapeRange(Args, Variant& out);
  ResultCode TextRange(Args, Variant& out);
  ResultCode ChildShapeRange(Args, Variant& out);
  ResultCode HasChildShapeRange(Args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  const Selected& selected() const { return open()->selected; }
};

class ShapeRangeObject final : public DeckObject {
 public:
  ShapeRangeObject(SessionRef session, OpenDeck* open, std::vector<deck::ShapeAddress> shapes)
      : DeckObject(std::move(session), open), shapes_(std::move(shapes)) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  std::vector<deck::ShapeAddress> shapes_;
};

class SlideRangeObject final : public DeckObject {
 public:
  SlideRangeObject(SessionRef session, OpenDeck* open, std::vector<std::uint32_t> slides)
      : DeckObject(std::move(session), open), slides_(std::move(slides)) {}
  ResultCode Count(Args, Variant& out);
  ResultCode Item(Args args, Variant& out);

 protected:
  const MemberTable& Table() const override;

 private:
  std::vector<std::uint32_t> slides_;
};

}  // namespace quillmarch::host::model
