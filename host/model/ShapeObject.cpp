#include <cmath>
#include <vector>

#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

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

ResultCode ShapeObject::Type(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  const deck::XmlNames& names = view.part->names();
  std::int32_t type = kAutoShape;
  if (!address_.IsCell()) {
    const bool placeholder = deck::PlaceholderOf(names, view.entry->node).has_value();
    type = placeholder ? std::int32_t{kPlaceholder} : ContainedType(names, *view.entry);
  }
  out = Variant::I4(type);
  return kOk;
}

ResultCode ShapeObject::Name(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  Wide name;
  if (!address_.IsCell()) {
    name = ToWide(
        deck::ShapeProperties(view.part->names(), view.entry->node).attribute("name").value());
  }
  out = Variant::Text(std::move(name));
  return kOk;
}

ResultCode ShapeObject::Id(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  // A cell's shape has no id of its own.
  const std::uint32_t id = address_.IsCell() ? 0 : view.entry->id;
  // The file's ids are unsigned; the host's are the same 32 bits.
  out = Variant::I4(static_cast<std::int32_t>(id));
  return kOk;
}

ResultCode ShapeObject::AlternativeText(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  const pugi::xml_node properties = deck::ShapeProperties(view.part->names(), view.entry->node);
  out = Variant::Text(address_.IsCell() ? Wide() : ToWide(properties.attribute("descr").value()));
  return kOk;
}

ResultCode ShapeObject::Visible(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  const pugi::xml_node properties = deck::ShapeProperties(view.part->names(), view.entry->node);
  out = TriState(deck::FlagAttribute(properties, "hidden") != 1);
  return kOk;
}

ResultCode ShapeObject::GetSide(Side side, Variant& out) const {
  session()->measure.GrowShape(deck(), address_);
  out = Variant::R4(static_cast<float>(deck().Box(address_).*side));
  return kOk;
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

ResultCode ShapeObject::Left(Args, Variant& out) {
  return GetSide(&deck::ShapeBox::left, out);
}
ResultCode ShapeObject::PutLeft(const Variant& value) {
  return PutSide(&deck::ShapeBox::left, false, value);
}
ResultCode ShapeObject::Top(Args, Variant& out) {
  return GetSide(&deck::ShapeBox::top, out);
}
ResultCode ShapeObject::PutTop(const Variant& value) {
  return PutSide(&deck::ShapeBox::top, false, value);
}
ResultCode ShapeObject::Width(Args, Variant& out) {
  return GetSide(&deck::ShapeBox::width, out);
}
ResultCode ShapeObject::PutWidth(const Variant& value) {
  return PutSide(&deck::ShapeBox::width, true, value);
}
ResultCode ShapeObject::Height(Args, Variant& out) {
  return GetSide(&deck::ShapeBox::height, out);
}
ResultCode ShapeObject::PutHeight(const Variant& value) {
  return PutSide(&deck::ShapeBox::height, true, value);
}

ResultCode ShapeObject::ZOrderPosition(Args, Variant& out) {
  out = Variant::I4(static_cast<std::int32_t>(address_.shape) + 1);
  return kOk;
}

ResultCode ShapeObject::HasTextFrame(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  out = TriState(address_.IsCell() || view.entry->kind == deck::ShapeKind::kShape);
  return kOk;
}

ResultCode ShapeObject::TextFrame(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  if (!address_.IsCell() && view.entry->kind != deck::ShapeKind::kShape) return kHostException;
  return Give<TextFrameObject>(out, session(), open(), address_);
}

ResultCode ShapeObject::TextFrame2(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  if (!address_.IsCell() && view.entry->kind != deck::ShapeKind::kShape) return kHostException;
  return Give<TextFrame2Object>(out, session(), open(), address_);
}

ResultCode ShapeObject::KindFlag(deck::ShapeKind kind, Variant& out) const {
  const View view = Look();
  if (view.entry == nullptr) return kHostException;
  out = TriState(!address_.IsCell() && view.entry->kind == kind);
  return kOk;
}

ResultCode ShapeObject::HasTable(Args, Variant& out) {
  return KindFlag(deck::ShapeKind::kTable, out);
}
ResultCode ShapeObject::HasChart(Args, Variant& out) {
  return KindFlag(deck::ShapeKind::kChart, out);
}
ResultCode ShapeObject::HasSmartArt(Args, Variant& out) {
  return KindFlag(deck::ShapeKind::kDiagram, out);
}

ResultCode ShapeObject::Table_(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr || address_.IsCell()) return kHostException;
  if (view.part->Table(address_.shape) == nullptr) return kHostException;
  return Give<TableObject>(out, session(), open(), address_);
}

ResultCode ShapeObject::GroupItems(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr || view.entry->kind != deck::ShapeKind::kGroup) return kHostException;
  return Give<ShapesObject>(out, session(), open(), address_.page, address_.shape);
}

ResultCode ShapeObject::PlaceholderFormat(Args, Variant& out) {
  const View view = Look();
  if (view.entry == nullptr || address_.IsCell()) return kHostException;
  const deck::XmlNames& names = view.part->names();
  const auto key = deck::PlaceholderOf(names, view.entry->node);
  if (!key) return kHostException;
  return Give<PlaceholderFormatObject>(out, session(), open(), PlaceholderType(key->type),
                                       ContainedType(names, *view.entry));
}

ResultCode ShapeObject::Tags(Args, Variant& out) {
  return Give<TagsObject>(
      out, session(), open(),
      deck::TagOwner{deck::TagOwner::Kind::kShape, address_.page, address_.shape});
}

const MemberTable& ShapeObject::Table() const {
  using Self = ShapeObject;
  const auto make = [](bool textFrame2) {
    std::vector<Member> members = {
        {u"GroupItems", 108, Getter<&Self::GroupItems>::Call},
        {u"Height", 109, Getter<&Self::Height>::Call, Putter<&Self::PutHeight>::Call},
        {u"Left", 111, Getter<&Self::Left>::Call, Putter<&Self::PutLeft>::Call},
        {u"Name", 115, Getter<&Self::Name>::Call},
        {u"TextFrame", 121, Getter<&Self::TextFrame>::Call},
        {u"Top", 123, Getter<&Self::Top>::Call, Putter<&Self::PutTop>::Call},
        {u"Type", 124, Getter<&Self::Type>::Call},
        {u"Visible", 127, Getter<&Self::Visible>::Call},
        {u"Width", 128, Getter<&Self::Width>::Call, Putter<&Self::PutWidth>::Call},
        {u"ZOrderPosition", 129, Getter<&Self::ZOrderPosition>::Call},
        {u"AlternativeText", 131, Getter<&Self::AlternativeText>::Call},
        {u"Id", 139, Getter<&Self::Id>::Call},
        {u"HasChart", 148, Getter<&Self::HasChart>::Call},
        {u"HasSmartArt", 155, Getter<&Self::HasSmartArt>::Call},
        {u"PlaceholderFormat", 2005, Getter<&Self::PlaceholderFormat>::Call},
        {u"Tags", 2008, Getter<&Self::Tags>::Call},
        {u"HasTextFrame", 2014, Getter<&Self::HasTextFrame>::Call},
        {u"HasTable", 2016, Getter<&Self::HasTable>::Call},
        {u"Table", 2017, Getter<&Self::Table_>::Call}};
    if (textFrame2) members.push_back({u"TextFrame2", 145, Getter<&Self::TextFrame2>::Call});
    return MemberTable({ppt::kShape}, members);
  };
  static const MemberTable whole = make(true);
  static const MemberTable older = make(false);
  return session()->personality.hasTextFrame2 ? whole : older;
}

ResultCode PlaceholderFormatObject::Type(Args, Variant& out) {
  out = Variant::I4(type_);
  return kOk;
}
ResultCode PlaceholderFormatObject::ContainedType(Args, Variant& out) {
  out = Variant::I4(contained_);
  return kOk;
}

const MemberTable& PlaceholderFormatObject::Table() const {
  using Self = PlaceholderFormatObject;
  static const MemberTable table({ppt::LibraryInterface(0x77)},
                                 {{u"Type", 2003, Getter<&Self::Type>::Call},
                                  {u"ContainedType", 2005, Getter<&Self::ContainedType>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
