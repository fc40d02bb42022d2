#include "host/model/objects/FrameObjects.h"

#include <cmath>

#include "foundation/automation/HostMembers.h"
#include "host/model/objects/ShapeObject.h"
#include "host/model/objects/TextRangeObject.h"

namespace quillmarch::host::model {
namespace {

constexpr InterfaceId kTextFrame2{
    0x000C0398, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

enum AutoSizeValue : std::int32_t {
  kMixed = -2,
  kNone = 0,
  kShapeToText = 1,
  kTextToShape = 2  // known only to the second frame
};

constexpr double kEmuPerPoint = 12700.0;
// The longest inset that the file format holds, in points.
constexpr double kMostMargin = 4032.0;

std::int32_t AutoSizeOf(deck::AutofitKind kind) {
  switch (kind) {
    case deck::AutofitKind::kShapeToText:
      return kShapeToText;
    case deck::AutofitKind::kTextToShape:
      return kTextToShape;
    case deck::AutofitKind::kNone:
      break;
  }
  return kNone;
}

// The first frame has no word for a text that fits its shape.
std::int32_t FirstAutoSizeOf(deck::AutofitKind kind) {
  const std::int32_t value = AutoSizeOf(kind);
  return value == kTextToShape ? std::int32_t{kMixed} : value;
}

}  // namespace

Answer FrameObject::HasText() const {
  const deck::TextBody* const body = deck().Text(address_);
  return TriState(body != nullptr && body->Length() > 0);
}

ResultCode FrameObject::Change(const deck::FrameProps& change) const {
  // What the shape has grown to stays when it stops growing.
  session()->measure.GrowShape(deck(), address_);
  return deck().PutFrame(address_, change) ? kOk : kHostException;
}

ResultCode FrameObject::PutAutofit(deck::AutofitKind kind) const {
  // The stored scale stays with what is put again.
  if (!address_.IsCell() && Autofit() == kind) return kOk;
  deck::FrameProps change;
  change.autofit = deck::Autofit{kind};
  return Change(change);
}

std::int32_t* FrameObject::FirstAutoSize(bool make) const {
  if (!session()->personality.twoAutoSizeStates || address_.IsCell()) return nullptr;
  if (address_.page.notes) return nullptr;
  auto& values = open()->firstAutoSizes;
  const std::pair key(address_.page.slide, address_.shape);
  if (make) return &values.try_emplace(key, FirstAutoSizeOf(Autofit())).first->second;
  const auto found = values.find(key);
  return found == values.end() ? nullptr : &found->second;
}

Answer FrameObject::WordWrap() const {
  return TriState(*deck().Frame(address_).wrap);
}

ResultCode FrameObject::PutWordWrap(const Variant& value) const {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted < -1 || wanted > 1) return kInvalidArgument;
  deck::FrameProps change;
  change.wrap = wanted != 0;
  return Change(change);
}

Answer FrameObject::GetInset(Inset inset) const {
  const deck::FrameProps props = deck().Frame(address_);
  return SingleOf(static_cast<double>(*(props.*inset)) / kEmuPerPoint);
}

ResultCode FrameObject::PutInset(Inset inset, const Variant& value) const {
  double points = 0;
  if (!RealOf(value, points)) return kTypeMismatch;
  if (!(points >= 0 && points <= kMostMargin)) return kInvalidArgument;
  deck::FrameProps change;
  change.*inset = std::llround(points * kEmuPerPoint);
  return Change(change);
}

Answer FrameObject::Parent() const {
  return Make<ShapeObject>(session(), open(), address_);
}

template <typename Self>
Members<Self> FrameObject::CommonMembers(DispId hasText, DispId wordWrap) {
  using Props = deck::FrameProps;
  using Base = FrameObject;
  return {
      {u"Parent", 1, [](Base& self) { return self.Parent(); }},
      {u"MarginBottom", 100, [](Base& self) { return self.GetInset(&Props::insetBottom); },
       [](Base& self, const Variant& value) { return self.PutInset(&Props::insetBottom, value); }},
      {u"MarginLeft", 101, [](Base& self) { return self.GetInset(&Props::insetLeft); },
       [](Base& self, const Variant& value) { return self.PutInset(&Props::insetLeft, value); }},
      {u"MarginRight", 102, [](Base& self) { return self.GetInset(&Props::insetRight); },
       [](Base& self, const Variant& value) { return self.PutInset(&Props::insetRight, value); }},
      {u"MarginTop", 103, [](Base& self) { return self.GetInset(&Props::insetTop); },
       [](Base& self, const Variant& value) { return self.PutInset(&Props::insetTop, value); }},
      {u"HasText", hasText, [](Base& self) { return self.HasText(); }},
      {u"WordWrap", wordWrap, [](Base& self) { return self.WordWrap(); },
       [](Base& self, const Variant& value) { return self.PutWordWrap(value); }}};
}

// ---- TextFrame -------------------------------------------------------------------------------

Answer TextFrameObject::TextRange() const {
  const deck::TextBody* const body = deck().Text(address());
  // A shape without a text body in the file shows an empty range.
  const std::size_t length = body == nullptr ? 0 : body->Length();
  return Make<TextRangeObject>(session(), open(), address(), deck::TextSpan{0, length},
                               std::size_t{1}, true);
}

Answer TextFrameObject::AutoSize() const {
  const std::int32_t* const own = FirstAutoSize(false);
  return Variant::I4(own != nullptr ? *own : FirstAutoSizeOf(Autofit()));
}

ResultCode TextFrameObject::PutAutoSize(const Variant& value) const {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted != kNone && wanted != kShapeToText) return kInvalidArgument;
  if (std::int32_t* const own = FirstAutoSize(true)) {
    *own = wanted;
    return kOk;
  }
  return PutAutofit(wanted == kNone ? deck::AutofitKind::kNone : deck::AutofitKind::kShapeToText);
}

const MemberTable& TextFrameObject::Table() const {
  using Self = TextFrameObject;
  const auto make = [] {
    Members<Self> members = CommonMembers<Self>(2003, 2009);
    members.push_back({u"TextRange", 2004, [](Self& self) { return self.TextRange(); }});
    members.push_back({u"AutoSize", 2008, [](Self& self) { return self.AutoSize(); },
                       [](Self& self, const Variant& value) { return self.PutAutoSize(value); }});
    return MemberTable::Of<Self>({ppt::kTextFrame}, members);
  };
  static const MemberTable table = make();
  return table;
}

// ---- TextFrame2 ------------------------------------------------------------------------------

Answer TextFrame2Object::AutoSize() const {
  return Variant::I4(AutoSizeOf(Autofit()));
}

ResultCode TextFrame2Object::PutAutoSize(const Variant& value) const {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted < kNone || wanted > kTextToShape) return kInvalidArgument;
  FirstAutoSize(true);
  return PutAutofit(wanted == kNone          ? deck::AutofitKind::kNone
                    : wanted == kShapeToText ? deck::AutofitKind::kShapeToText
                                             : deck::AutofitKind::kTextToShape);
}

const MemberTable& TextFrame2Object::Table() const {
  using Self = TextFrame2Object;
  const auto make = [] {
    Members<Self> members = CommonMembers<Self>(113, 110);
    members.push_back({u"AutoSize", 111, [](Self& self) { return self.AutoSize(); },
                       [](Self& self, const Variant& value) { return self.PutAutoSize(value); }});
    return MemberTable::Of<Self>({kTextFrame2}, members);
  };
  static const MemberTable table = make();
  return table;
}

}  // namespace quillmarch::host::model
