#include "host/model/objects/SelectionObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/ShapeObject.h"
#include "host/model/objects/SlideObjects.h"
#include "host/model/objects/TextRangeObject.h"

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

std::vector<deck::ShapeAddress> Addresses(const Selected& selected) {
  std::vector<deck::ShapeAddress> addresses;
  for (const std::uint32_t shape : selected.shapes) {
    addresses.push_back(deck::ShapeAddress{selected.page, shape});
  }
  return addresses;
}

}  // namespace

// ---- Selection -------------------------------------------------------------------------------

// Of shapes and text it is the slide that they lie on.
Answer SelectionObject::SlideRange() const {
  if (selected().type == SelectionType::kNone) return kHostException;
  std::vector<std::uint32_t> slides = {selected().page.slide};
  if (selected().type == SelectionType::kSlides) slides = selected().slides;
  return Make<SlideRangeObject>(session(), open(), std::move(slides));
}

// Of members of a group it is the group, of a piece of text the shape that holds it.
Answer SelectionObject::ShapeRange() const {
  if (selected().type != SelectionType::kShapes && selected().type != SelectionType::kText) {
    return kHostException;
  }
  std::vector<deck::ShapeAddress> shapes = Addresses(selected());
  if (selected().group != deck::kNoShape) shapes = {{selected().page, selected().group}};
  return Make<ShapeRangeObject>(session(), open(), std::move(shapes));
}

Answer SelectionObject::TextRange() const {
  if (selected().type != SelectionType::kText) return kHostException;
  return Make<TextRangeObject>(session(), open(),
                               deck::ShapeAddress{selected().page, selected().shapes.front()},
                               selected().text, selected().text.length, false);
}

Answer SelectionObject::ChildShapeRange() const {
  if (selected().type != SelectionType::kShapes || selected().group == deck::kNoShape) {
    return kHostException;
  }
  return Make<ShapeRangeObject>(session(), open(), Addresses(selected()));
}

const MemberTable& SelectionObject::Table() const {
  using Self = SelectionObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kSelection},
      {{u"Type", 2007,
        [](Self& self) { return Variant::I4(static_cast<std::int32_t>(self.selected().type)); }},
       {u"SlideRange", 2008, [](Self& self) { return self.SlideRange(); }},
       {u"ShapeRange", 2009, [](Self& self) { return self.ShapeRange(); }},
       {u"TextRange", 2010, [](Self& self) { return self.TextRange(); }},
       {u"ChildShapeRange", 2011, [](Self& self) { return self.ChildShapeRange(); }},
       // A 16-bit truth value, unlike the other flags.
       {u"HasChildShapeRange", 2012, [](Self& self) {
          return Variant::Bool(self.selected().type == SelectionType::kShapes &&
                               self.selected().group != deck::kNoShape);
        }}});
  return table;
}

// ---- ShapeRange, SlideRange ------------------------------------------------------------------

const MemberTable& ShapeRangeObject::Table() const {
  using Self = ShapeRangeObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kShapeRange}, {{u"Item", 0,
                            [](Self& self, Args args) -> Answer {
                              deck::ShapeAddress shape;
                              const ResultCode code = PickItem(self.shapes_, args, shape);
                              if (Failed(code)) return code;
                              return Make<ShapeObject>(self.session(), self.open(), shape);
                            }},
                           {u"Count", 9, [](Self& self) { return CountOf(self.shapes_.size()); }}});
  return table;
}

const MemberTable& SlideRangeObject::Table() const {
  using Self = SlideRangeObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kSlideRange},
      {{u"Item", 0,
        [](Self& self, Args args) -> Answer {
          std::uint32_t slide = 0;
          const ResultCode code = PickItem(self.slides_, args, slide);
          if (Failed(code)) return code;
          return Make<SlideObject>(self.session(), self.open(), deck::PageAddress{slide, false});
        }},
       {u"Count", 11, [](Self& self) { return CountOf(self.slides_.size()); }}});
  return table;
}

}  // namespace quillmarch::host::model
