#include "host/model/objects/SlideObjects.h"

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/PresentationObjects.h"
#include "host/model/objects/ShapeObject.h"
#include "host/model/objects/TagsObject.h"

namespace quillmarch::host::model {
namespace {

constexpr XmlNamespace kP = XmlNamespace::kPresentation;
// A slide without a name is named after its id, counted from here.
constexpr std::int32_t kFirstSlideId = 255;

Wide SlideName(deck::Deck& deck, deck::PageAddress page) {
  Wide name;
  if (deck::SlidePart* const part = deck.Page(page)) {
    const pugi::xml_node slide = part->names().Child(part->root(), kP, "cSld");
    name = ToWide(slide.attribute("name").value());
  }
  if (name.empty()) name = u"Slide" + Decimal(deck.Slide(page.slide).id - kFirstSlideId);
  return name;
}

}  // namespace

// ---- Slides ----------------------------------------------------------------------------------

Answer SlidesObject::Item(Args args) const {
  if (args.Count() != 1) return kBadParamCount;
  if (args[0].type() == VariantType::kText) {
    for (std::uint32_t i = 0; i < deck().SlideCount(); ++i) {
      const deck::PageAddress page{i, false};
      if (SlideName(deck(), page) == args[0].text()) {
        return Make<SlideObject>(session(), open(), page);
      }
    }
    return kHostException;
  }
  std::int32_t index = 0;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::uint32_t>(index) > deck().SlideCount()) return kHostException;
  return Make<SlideObject>(session(), open(),
                           deck::PageAddress{static_cast<std::uint32_t>(index) - 1, false});
}

Answer SlidesObject::FindBySlideId(Args args) const {
  std::int32_t id = 0;
  if (args.Count() != 1) return kBadParamCount;
  if (!args.Whole(0, 0, id)) return kTypeMismatch;
  for (std::uint32_t i = 0; i < deck().SlideCount(); ++i) {
    if (deck().Slide(i).id == id) {
      return Make<SlideObject>(session(), open(), deck::PageAddress{i, false});
    }
  }
  return kHostException;
}

const MemberTable& SlidesObject::Table() const {
  using Self = SlidesObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kSlides},
      {{u"Item", 0, [](Self& self, Args args) { return self.Item(args); }},
       {u"Count", 11, [](Self& self) { return CountOf(self.deck().SlideCount()); }},
       {u"FindBySlideID", 2003, [](Self& self, Args args) { return self.FindBySlideId(args); }}});
  return table;
}

// ---- Slide, SlideRange -----------------------------------------------------------------------

const MemberTable& SlideObject::Table() const {
  using Self = SlideObject;
  // What a slide and a range of slides have in common.
  const auto common = [] {
    return Members<Self>{
        {u"Parent", 2002,
         [](Self& self) { return Make<PresentationObject>(self.session(), self.open()); }},
        {u"Shapes", 2003,
         [](Self& self) {
           if (self.deck().Page(self.page_) == nullptr) return ObjectRef();
           return Make<ShapesObject>(self.session(), self.open(), self.page_, deck::kNoShape);
         }},
        {u"Name", 2008, [](Self& self) { return SlideName(self.deck(), self.page_); }},
        {u"SlideID", 2009,
         [](Self& self) { return Variant::I4(self.deck().Slide(self.page_.slide).id); }},
        {u"Tags", 2017,
         [](Self& self) {
           return Make<TagsObject>(self.session(), self.open(),
                                   deck::TagOwner{deck::TagOwner::Kind::kSlide, self.page_, 0});
         }},
        {u"SlideIndex", 2018,
         [](Self& self) { return Variant::I4(static_cast<std::int32_t>(self.page_.slide) + 1); }},
        {u"SlideNumber", 2019, [](Self& self) {
           return Variant::I4(static_cast<std::int32_t>(self.page_.slide) +
                              self.deck().FirstSlideNumber());
         }}};
  };
  const auto makeSlide = [&] {
    Members<Self> members = common();
    members.push_back({u"NotesPage", 2022, [](Self& self) {
                         return Make<SlideObject>(self.session(), self.open(),
                                                  deck::PageAddress{self.page_.slide, true});
                       }});
    members.push_back({u"HasNotesPage", 2043, [](Self& self) {
                         return TriState(self.deck().HasNotes(self.page_.slide));
                       }});
    return MemberTable::Of<Self>({ppt::kSlide}, members);
  };
  const auto makeRange = [&] {
    Members<Self> members = common();
    members.push_back({u"Count", 11, [](Self&) { return CountOf(1); }});
    return MemberTable::Of<Self>({ppt::kSlideRange}, members);
  };
  static const MemberTable slide = makeSlide();
  static const MemberTable range = makeRange();
  return page_.notes ? range : slide;
}

// ---- Shapes, GroupShapes ---------------------------------------------------------------------

std::span<const std::uint32_t> ShapesObject::List() const {
  deck::SlidePart* const part = deck().Page(page_);
  if (part == nullptr) return {};
  const deck::ShapeTree& shapes = part->shapes();
  if (group_ == deck::kNoShape) return shapes.TopLevel();
  if (group_ >= shapes.Count()) return {};
  const deck::ShapeEntry& group = shapes.At(group_);
  return session()->personality.flatGroups ? shapes.Leaves(group) : shapes.Children(group);
}

Answer ShapesObject::Item(Args args) const {
  if (args.Count() != 1) return kBadParamCount;
  const std::span<const std::uint32_t> list = List();
  if (args[0].type() == VariantType::kText) {
    deck::SlidePart* const part = deck().Page(page_);
    for (const std::uint32_t shape : list) {
      const pugi::xml_node node = part->shapes().At(shape).node;
      const pugi::xml_node properties = deck::ShapeProperties(part->names(), node);
      if (ToWide(properties.attribute("name").value()) == args[0].text()) {
        return Make<ShapeObject>(session(), open(), deck::ShapeAddress{page_, shape});
      }
    }
    return kHostException;
  }
  std::int32_t index = 0;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::size_t>(index) > list.size()) return kHostException;
  return Make<ShapeObject>(session(), open(),
                           deck::ShapeAddress{page_, list[static_cast<std::size_t>(index) - 1]});
}

const MemberTable& ShapesObject::Table() const {
  using Self = ShapesObject;
  const auto make = [](const InterfaceId& interface) {
    return MemberTable::Of<Self>(
        {interface}, {{u"Item", 0, [](Self& self, Args args) { return self.Item(args); }},
                      {u"Count", 2, [](Self& self) { return CountOf(self.List().size()); }}});
  };
  static const MemberTable shapes = make(ppt::kShapes);
  static const MemberTable items = make(ppt::kGroupShapes);
  return group_ == deck::kNoShape ? shapes : items;
}

}  // namespace quillmarch::host::model
