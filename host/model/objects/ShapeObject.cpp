#include "host/model/objects/ShapeObject.h"

#include <cmath>

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/FrameObjects.h"
#include "host/model/objects/SlideObjects.h"
#include "host/model/objects/TableObjects.h"
#include "host/model/objects/TagsObject.h"

namespace quillmarch::host::model {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
// What 32 bits of EMU hold, in points.
constexpr double kMostPoints = 169093.0;

// MsoShapeType
enum ShapeType : std::int32_t {
  kAutoShape = 1,
  kCallout = 2,
  kChart = 3,
  kFreeform = 5,
  kGroup = 6,
  kEmbeddedObject = 7,
  kLine = 9,
  kLinkedObject = 10,
  kPicture = 13,
  kPlaceholder = 14,
  kMedia = 16,
  kTextBox = 17,
  kTable = 19,
  kInk = 22,
  kSmartArt = 24,
  kGraphic = 28
};

bool IsMedia(const deck::XmlNames& names, pugi::xml_node picture) {
  for (const pugi::xml_node child : picture.children()) {
    const pugi::xml_node properties = names.Child(child, kP, "nvPr");
    for (const char* media : {"audioFile", "videoFile", "wavAudioFile", "quickTimeFile"}) {
      if (names.Child(properties, kA, media)) return true;
    }
  }
  return false;
}

std::int32_t ContainedType(const deck::XmlNames& names, const deck::ShapeEntry& entry) {
  const pugi::xml_node properties = names.Child(entry.node, kP, "spPr");
  const std::string_view geometry =
      names.Child(properties, kA, "prstGeom").attribute("prst").value();
  switch (entry.kind) {
    case deck::ShapeKind::kShape: {
      const pugi::xml_node common =
          names.Child(names.Child(entry.node, kP, "nvSpPr"), kP, "cNvSpPr");
      if (deck::FlagAttribute(common, "txBox") == 1) return kTextBox;
      if (names.Child(properties, kA, "custGeom")) return kFreeform;
      if (geometry.find("Callout") != std::string_view::npos) return kCallout;
      return kAutoShape;
    }
    case deck::ShapeKind::kPicture:
      return IsMedia(names, entry.node) ? kMedia : kPicture;
    case deck::ShapeKind::kConnector:
      return geometry == "line" ? kLine : kAutoShape;
    case deck::ShapeKind::kGroup:
      return kGroup;
    case deck::ShapeKind::kChart:
      return kChart;
    case deck::ShapeKind::kTable:
      return kTable;
    case deck::ShapeKind::kDiagram:
      return kSmartArt;
    case deck::ShapeKind::kOleObject: {
      const std::string_view link = "link";
      const pugi::xml_node data =
          names.Child(names.Child(entry.node, kA, "graphic"), kA, "graphicData");
      const bool linked =
          static_cast<bool>(names.Child(names.Child(data, kP, "oleObj"), kP, link.data()));
      return linked ? kLinkedObject : kEmbeddedObject;
    }
    case deck::ShapeKind::kInk:
      return kInk;
    case deck::ShapeKind::kOtherFrame:
      break;
  }
  return kGraphic;
}

// PpPlaceholderType
std::int32_t PlaceholderType(const std::string& type) {
  struct Row {
    std::string_view word;
    std::int32_t type;
  };
  constexpr Row kRows[] = {{"title", 1}, {"body", 2},  {"ctrTitle", 3}, {"subTitle", 4},
                           {"obj", 7},   {"chart", 8}, {"clipArt", 9},  {"media", 10},
                           {"dgm", 11},  {"tbl", 12},  {"sldNum", 13},  {"hdr", 14},
                           {"ftr", 15},  {"dt", 16},   {"pic", 18},     {"sldImg", 18}};
  for (const Row& row : kRows) {
    if (row.word == type) return row.type;
  }
  return 7;
}

}  // namespace

ShapeObject::View ShapeObject::Look() const {
  deck::SlidePart* const part = deck().Page(address_.page);
  if (part == nullptr || address_.shape >= part->shapes().Count()) return {};
  return {part, &part->shapes().At(address_.shape)};
}

Answer ShapeObject::Type() const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  const deck::XmlNames& names = view.part->names();
  std::int32_t type = kAutoShape;
  if (!address_.IsCell()) {
    const bool placeholder = deck::PlaceholderOf(names, view.entry->node).has_value();
    type = placeholder ? std::int32_t{kPlaceholder} : ContainedType(names, *view.entry);
  }
  return Variant::I4(type);
}

Answer ShapeObject::Name() const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  if (address_.IsCell()) return Wide();
  return ToWide(
      deck::ShapeProperties(view.part->names(), view.entry->node).attribute("name").value());
}

Answer ShapeObject::Id() const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  // A cell's shape has no id of its own.
  const std::uint32_t id = address_.IsCell() ? 0 : view.entry->id;
  // The file's ids are unsigned; the host's are the same 32 bits.
  return Variant::I4(static_cast<std::int32_t>(id));
}

Answer ShapeObject::AlternativeText() const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  if (address_.IsCell()) return Wide();
  const pugi::xml_node properties = deck::ShapeProperties(view.part->names(), view.entry->node);
  return ToWide(properties.attribute("descr").value());
}

Answer ShapeObject::Visible() const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  const pugi::xml_node properties = deck::ShapeProperties(view.part->names(), view.entry->node);
  return TriState(deck::FlagAttribute(properties, "hidden") != 1);
}

Answer ShapeObject::GetSide(Side side) const {
  session()->measure.GrowShape(deck(), address_);
  return SingleOf(deck().Box(address_).*side);
}

ResultCode ShapeObject::PutSide(Side side, bool isLength, const Variant& value) const {
  double points = 0;
  if (!RealOf(value, points)) return kTypeMismatch;
  if (!(std::fabs(points) <= kMostPoints) || (isLength && points < 0)) return kInvalidArgument;
  const View view = Look();
  // A table is as large as its rows and columns.
  if (view.entry == nullptr || (isLength && view.entry->kind == deck::ShapeKind::kTable)) {
    return kHostException;
  }
  session()->measure.GrowShape(deck(), address_);
  deck::ShapeBox box = deck().Box(address_);
  box.*side = points;
  return deck().PutBox(address_, box) ? kOk : kHostException;
}

bool ShapeObject::HasTextFrame(const View& view) const {
  return address_.IsCell() || view.entry->kind == deck::ShapeKind::kShape;
}

template <typename Frame>
Answer ShapeObject::GiveFrame() const {
  const View view = Look();
  if (view.entry == nullptr || !HasTextFrame(view)) return kHostException;
  return Make<Frame>(session(), open(), address_);
}

Answer ShapeObject::KindFlag(deck::ShapeKind kind) const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  return TriState(!address_.IsCell() && view.entry->kind == kind);
}

Answer ShapeObject::GiveTable() const {
  const View view = Look();
  if (view.entry == nullptr || address_.IsCell()) return kHostException;
  if (view.part->Table(address_.shape) == nullptr) return kHostException;
  return Make<TableObject>(session(), open(), address_);
}

Answer ShapeObject::GroupItems() const {
  const View view = Look();
  if (view.entry == nullptr || view.entry->kind != deck::ShapeKind::kGroup) return kHostException;
  return Make<ShapesObject>(session(), open(), address_.page, address_.shape);
}

Answer ShapeObject::PlaceholderFormat() const {
  const View view = Look();
  if (view.entry == nullptr || address_.IsCell()) return kHostException;
  const deck::XmlNames& names = view.part->names();
  const auto key = deck::PlaceholderOf(names, view.entry->node);
  if (!key) return kHostException;
  return Make<PlaceholderFormatObject>(session(), open(), PlaceholderType(key->type),
                                       ContainedType(names, *view.entry));
}

const MemberTable& ShapeObject::Table() const {
  using Self = ShapeObject;
  using Box = deck::ShapeBox;
  const auto make = [](bool textFrame2) {
    Members<Self> members = {
        {u"GroupItems", 108, [](Self& self) { return self.GroupItems(); }},
        {u"Height", 109, [](Self& self) { return self.GetSide(&Box::height); },
         [](Self& self, const Variant& value) { return self.PutSide(&Box::height, true, value); }},
        {u"Left", 111, [](Self& self) { return self.GetSide(&Box::left); },
         [](Self& self, const Variant& value) { return self.PutSide(&Box::left, false, value); }},
        {u"Name", 115, [](Self& self) { return self.Name(); }},
        {u"TextFrame", 121, [](Self& self) { return self.GiveFrame<TextFrameObject>(); }},
        {u"Top", 123, [](Self& self) { return self.GetSide(&Box::top); },
         [](Self& self, const Variant& value) { return self.PutSide(&Box::top, false, value); }},
        {u"Type", 124, [](Self& self) { return self.Type(); }},
        {u"Visible", 127, [](Self& self) { return self.Visible(); }},
        {u"Width", 128, [](Self& self) { return self.GetSide(&Box::width); },
         [](Self& self, const Variant& value) { return self.PutSide(&Box::width, true, value); }},
        {u"ZOrderPosition", 129, [](Self& self) { return CountOf(self.address_.shape + 1); }},
        {u"AlternativeText", 131, [](Self& self) { return self.AlternativeText(); }},
        {u"Id", 139, [](Self& self) { return self.Id(); }},
        {u"HasChart", 148, [](Self& self) { return self.KindFlag(deck::ShapeKind::kChart); }},
        {u"HasSmartArt", 155, [](Self& self) { return self.KindFlag(deck::ShapeKind::kDiagram); }},
        {u"PlaceholderFormat", 2005, [](Self& self) { return self.PlaceholderFormat(); }},
        {u"Tags", 2008,
         [](Self& self) {
           return Make<TagsObject>(self.session(), self.open(),
                                   deck::TagOwner{deck::TagOwner::Kind::kShape, self.address_.page,
                                                  self.address_.shape});
         }},
        {u"HasTextFrame", 2014,
         [](Self& self) -> Answer {
           const View view = self.Look();
           if (view.entry == nullptr) return kHostException;
           return TriState(self.HasTextFrame(view));
         }},
        {u"HasTable", 2016, [](Self& self) { return self.KindFlag(deck::ShapeKind::kTable); }},
        {u"Table", 2017, [](Self& self) { return self.GiveTable(); }}};
    if (textFrame2) {
      members.push_back(
          {u"TextFrame2", 145, [](Self& self) { return self.GiveFrame<TextFrame2Object>(); }});
    }
    return MemberTable::Of<Self>({ppt::kShape}, members);
  };
  static const MemberTable whole = make(true);
  static const MemberTable older = make(false);
  return session()->personality.hasTextFrame2 ? whole : older;
}

const MemberTable& PlaceholderFormatObject::Table() const {
  using Self = PlaceholderFormatObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::LibraryInterface(0x77)},
      {{u"Type", 2003, [](Self& self) { return Variant::I4(self.type_); }},
       {u"ContainedType", 2005, [](Self& self) { return Variant::I4(self.contained_); }}});
  return table;
}

}  // namespace quillmarch::host::model
