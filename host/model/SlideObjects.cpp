// Slides, notes pages and their collections of shapes.
#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

namespace quillmarch::host::model {
namespace {

constexpr XmlNamespace kP = XmlNamespace::kPresentation;
// A slide that nobody named is called by its id.
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

ResultCode SlidesObject::Count(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(deck().SlideCount()));
  return kOk;
}

ResultCode SlidesObject::Item(Args args, Variant& out) {
  if (args.Count() != 1) return kBadParamCount;
  if (args[0].type() == VariantType::kText) {
    for (std::uint32_t i = 0; i < deck().SlideCount(); ++i) {
      const deck::PageAddress page{i, false};
      if (SlideName(deck(), page) == args[0].text()) {
        return Give<SlideObject>(out, session(), open(), page);
      }
    }
    return kHostException;
  }
  std::int32_t index = 0;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::uint32_t>(index) > deck().SlideCount()) return kHostException;
  return Give<SlideObject>(out, session(), open(),
                           deck::PageAddress{static_cast<std::uint32_t>(index) - 1, false});
}

ResultCode SlidesObject::FindBySlideId(Args args, Variant& out) {
  std::int32_t id = 0;
  if (args.Count() != 1) return kBadParamCount;
  if (!args.Whole(0, 0, id)) return kTypeMismatch;
  for (std::uint32_t i = 0; i < deck().SlideCount(); ++i) {
    if (deck().Slide(i).id == id) {
      return Give<SlideObject>(out, session(), open(), deck::PageAddress{i, false});
    }
  }
  return kHostException;
}

const MemberTable& SlidesObject::Table() const {
  using Self = SlidesObject;
  static const MemberTable table({ppt::kSlides},
                                 {{u"Count", 11, Getter<&Self::Count>::Call},
                                  {u"Item", 0, Getter<&Self::Item>::Call},
                                  {u"FindBySlideID", 2003, Getter<&Self::FindBySlideId>::Call}});
  return table;
}

// ---- Slide, SlideRange -----------------------------------------------------------------------

ResultCode SlideObject::Shapes(Args, Variant& out) {
  if (deck().Page(page_) == nullptr) return kHostException;
  return Give<ShapesObject>(out, session(), open(), page_, deck::kNoShape);
}
ResultCode SlideObject::Name(Args, Variant& out) {
  out = Variant::Text(SlideName(deck(), page_));
  return kOk;
}
ResultCode SlideObject::SlideId(Args, Variant& out) {
  out = Variant::I4(deck().Slide(page_.slide).id);
  return kOk;
}
ResultCode SlideObject::SlideIndex(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(page_.slide) + 1);
  return kOk;
}
ResultCode SlideObject::SlideNumber(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(page_.slide) + deck().FirstSlideNumber());
  return kOk;
}
ResultCode SlideObject::NotesPage(Args, Variant& out) {
  return Give<SlideObject>(out, session(), open(), deck::PageAddress{page_.slide, true});
}
ResultCode SlideObject::HasNotesPage(Args, Variant& out) {
  out = TriState(deck().HasNotes(page_.slide));
  return kOk;
}
ResultCode SlideObject::Tags(Args, Variant& out) {
  return Give<TagsObject>(out, session(), open(),
                          deck::TagOwner{deck::TagOwner::Kind::kSlide, page_, 0});
}
ResultCode SlideObject::Parent(Args, Variant& out) {
  return Give<PresentationObject>(out, session(), open());
}
ResultCode SlideObject::RangeCount(Args, Variant& out) {
  out = Variant::I4(1);
  return kOk;
}

const MemberTable& SlideObject::Table() const {
  using Self = SlideObject;
  static const MemberTable slide({ppt::kSlide},
                                 {{u"Parent", 2002, Getter<&Self::Parent>::Call},
                                  {u"Shapes", 2003, Getter<&Self::Shapes>::Call},
                                  {u"Name", 2008, Getter<&Self::Name>::Call},
                                  {u"SlideID", 2009, Getter<&Self::SlideId>::Call},
                                  {u"Tags", 2017, Getter<&Self::Tags>::Call},
                                  {u"SlideIndex", 2018, Getter<&Self::SlideIndex>::Call},
                                  {u"SlideNumber", 2019, Getter<&Self::SlideNumber>::Call},
                                  {u"NotesPage", 2022, Getter<&Self::NotesPage>::Call},
                                  {u"HasNotesPage", 2043, Getter<&Self::HasNotesPage>::Call}});
  static const MemberTable range({ppt::kSlideRange},
                                 {{u"Parent", 2002, Getter<&Self::Parent>::Call},
                                  {u"Shapes", 2003, Getter<&Self::Shapes>::Call},
                                  {u"Name", 2008, Getter<&Self::Name>::Call},
                                  {u"SlideID", 2009, Getter<&Self::SlideId>::Call},
                                  {u"Tags", 2017, Getter<&Self::Tags>::Call},
                                  {u"SlideIndex", 2018, Getter<&Self::SlideIndex>::Call},
                                  {u"SlideNumber", 2019, Getter<&Self::SlideNumber>::Call},
                                  {u"Count", 11, Getter<&Self::RangeCount>::Call}});
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

ResultCode ShapesObject::Count(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(List().size()));
  return kOk;
}

ResultCode ShapesObject::Item(Args args, Variant& out) {
  if (args.Count() != 1) return kBadParamCount;
  const std::span<const std::uint32_t> list = List();
  if (args[0].type() == VariantType::kText) {
    deck::SlidePart* const part = deck().Page(page_);
    for (const std::uint32_t shape : list) {
      const pugi::xml_node node = part->shapes().At(shape).node;
      const pugi::xml_node properties = deck::ShapeProperties(part->names(), node);
      if (ToWide(properties.attribute("name").value()) == args[0].text()) {
        return Give<ShapeObject>(out, session(), open(), deck::ShapeAddress{page_, shape});
      }
    }
    return kHostException;
  }
  std::int32_t index = 0;
  if (!args.Whole(0, 0, index)) return kTypeMismatch;
  if (index < 1 || static_cast<std::size_t>(index) > list.size()) return kHostException;
  return Give<ShapeObject>(out, session(), open(),
                           deck::ShapeAddress{page_, list[static_cast<std::size_t>(index) - 1]});
}

const MemberTable& ShapesObject::Table() const {
  using Self = ShapesObject;
  static const MemberTable shapes({ppt::kShapes}, {{u"Count", 2, Getter<&Self::Count>::Call},
                                                   {u"Item", 0, Getter<&Self::Item>::Call}});
  static const MemberTable items({ppt::kGroupShapes}, {{u"Count", 2, Getter<&Self::Count>::Call},
                                                       {u"Item", 0, Getter<&Self::Item>::Call}});
  return group_ == deck::kNoShape ? shapes : items;
}

}  // namespace quillmarch::host::model
