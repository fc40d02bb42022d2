#include "host/model/SelectionObjects.h"

#include "foundation/automation/HostMembers.h"

namespace quillmarch::host::model {
namespace {

// The item at a call's one argument, counted from 1; kOk when there is one.
template <typename T>
ResultCode PickItem(const std::vector<T>& items, Args args, T& item) {
  std::int32_t index = 0;
  if (args.Count() != 1) return kBadParamCount;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::size_t>(index) > items.size()) return kHostException;
  item = items[static_cast<std::size_t>(index) - 1];
  return kOk;
}

template <typename T>
ResultCode GiveCount(const std::vector<T>& items, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(items.size()));
  return kOk;
}

std::vector<deck::ShapeAddress> Addresses(const Selected& selected) {
  std::vector<deck::ShapeAddress> addresses;
  for (const std::uint32_t shape : selected.shapes) {
    addresses.push_back(deck::ShapeAddress{selected.page, shape});
  }
  return addresses;
}

}  // namespace

// ---- Selection -------------------------------------------------------------------------------

ResultCode SelectionObject::Type(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(selected().type));
  return kOk;
}

// Of shapes and text it is the slide that they lie on.
ResultCode SelectionObject::SlideRange(Args, Variant& out) {
  if (selected().type == SelectionType::kNone) return kHostException;
  std::vector<std::uint32_t> slides = {selected().page.slide};
  if (selected().type == SelectionType::kSlides) slides = selected().slides;
  return Give<SlideRangeObject>(out, session(), open(), std::move(slides));
}

// Of members of a group it is the group, of a piece of text the shape that holds it.
ResultCode SelectionObject::ShapeRange(Args, Variant& out) {
  if (selected().type != SelectionType::kShapes && selected().type != SelectionType::kText) {
    return kHostException;
  }
  std::vector<deck::ShapeAddress> shapes = Addresses(selected());
  if (selected().group != deck::kNoShape) shapes = {{selected().page, selected().group}};
  return Give<ShapeRangeObject>(out, session(), open(), std::move(shapes));
}

ResultCode SelectionObject::TextRange(Args, Variant& out) {
  if (selected().type != SelectionType::kText) return kHostException;
  return Give<TextRangeObject>(out, session(), open(),
                               deck::ShapeAddress{selected().page, selected().shapes.front()},
                               selected().text, selected().text.length, false);
}

ResultCode SelectionObject::ChildShapeRange(Args, Variant& out) {
  if (selected().type != SelectionType::kShapes || selected().group == deck::kNoShape) {
    return kHostException;
  }
  return Give<ShapeRangeObject>(out, session(), open(), Addresses(selected()));
}

// A 16-bit truth value, unlike the other flags.
ResultCode SelectionObject::HasChildShapeRange(Args, Variant& out) {
  out = Variant::Bool(selected().type == SelectionType::kShapes &&
                      selected().group != deck::kNoShape);
  return kOk;
}

const MemberTable& SelectionObject::Table() const {
  using Self = SelectionObject;
  static const MemberTable table(
      {ppt::kSelection}, {{u"Type", 2007, Getter<&Self::Type>::Call},
                          {u"SlideRange", 2008, Getter<&Self::SlideRange>::Call},
                          {u"ShapeRange", 2009, Getter<&Self::ShapeRange>::Call},
                          {u"TextRange", 2010, Getter<&Self::TextRange>::Call},
                          {u"ChildShapeRange", 2011, Getter<&Self::ChildShapeRange>::Call},
                          {u"HasChildShapeRange", 2012, Getter<&Self::HasChildShapeRange>::Call}});
  return table;
}

// ---- ShapeRange, SlideRange ------------------------------------------------------------------

ResultCode ShapeRangeObject::Count(Args, Variant& out) {
  return GiveCount(shapes_, out);
}
ResultCode ShapeRangeObject::Item(Args args, Variant& out) {
  deck::ShapeAddress shape;
  const ResultCode code = PickItem(shapes_, args, shape);
  return Failed(code) ? code : Give<ShapeObject>(out, session(), open(), shape);
}

const MemberTable& ShapeRangeObject::Table() const {
  using Self = ShapeRangeObject;
  static const MemberTable table({ppt::kShapeRange}, {{u"Count", 9, Getter<&Self::Count>::Call},
                                                      {u"Item", 0, Getter<&Self::Item>::Call}});
  return table;
}

ResultCode SlideRangeObject::Count(Args, Variant& out) {
  return GiveCount(slides_, out);
}
ResultCode SlideRangeObject::Item(Args args, Variant& out) {
  std::uint32_t slide = 0;
  const ResultCode code = PickItem(slides_, args, slide);
  if (Failed(code)) return code;
  return Give<SlideObject>(out, session(), open(), deck::PageAddress{slide, false});
}

const MemberTable& SlideRangeObject::Table() const {
  using Self = SlideRangeObject;
  static const MemberTable table({ppt::kSlideRange}, {{u"Count", 11, Getter<&Self::Count>::Call},
                                                      {u"Item", 0, Getter<&Self::Item>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
