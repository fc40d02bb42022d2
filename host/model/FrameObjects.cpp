// The two text frames that a shape shows: one state, two ways to name it.
#include <cmath>

#include "foundation/automation/HostMembers.h"
#include "host/model/Objects.h"

namespace quillmarch::host::model {
namespace {

constexpr InterfaceId kTextFrame2{
    0x000C0398, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

enum AutoSizeValue : std::int32_t {
  kMixed = -2,
  kNone = 0,
  kShapeToText = 1,
  kTextToShape = 2  // known to the second frame alone
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

ResultCode FrameObject::HasText(Args, Variant& out) {
  const deck::TextBody* const body = deck().Text(address_);
  out = TriState(body != nullptr && body->Length() > 0);
  return kOk;
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

ResultCode FrameObject::WordWrap(Args, Variant& out) {
  out = TriState(*deck().Frame(address_).wrap);
  return kOk;
}

ResultCode FrameObject::PutWordWrap(const Variant& value) {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted < -1 || wanted > 1) return kInvalidArgument;
  deck::FrameProps change;
  change.wrap = wanted != 0;
  return Change(change);
}

ResultCode FrameObject::GetInset(Inset inset, Variant& out) const {
  const deck::FrameProps props = deck().Frame(address_);
  out = Variant::R4(static_cast<float>(static_cast<double>(*(props.*inset)) / kEmuPerPoint));
  return kOk;
}

ResultCode FrameObject::PutInset(Inset inset, const Variant& value) const {
  double points = 0;
  if (!RealOf(value, points)) return kTypeMismatch;
  if (!(points >= 0 && points <= kMostMargin)) return kInvalidArgument;
  deck::FrameProps change;
  change.*inset = std::llround(points * kEmuPerPoint);
  return Change(change);
}

ResultCode FrameObject::MarginLeft(Args, Variant& out) {
  return GetInset(&deck::FrameProps::insetLeft, out);
}
ResultCode FrameObject::PutMarginLeft(const Variant& value) {
  return PutInset(&deck::FrameProps::insetLeft, value);
}
ResultCode FrameObject::MarginTop(Args, Variant& out) {
  return GetInset(&deck::FrameProps::insetTop, out);
}
ResultCode FrameObject::PutMarginTop(const Variant& value) {
  return PutInset(&deck::FrameProps::insetTop, value);
}
ResultCode FrameObject::MarginRight(Args, Variant& out) {
  return GetInset(&deck::FrameProps::insetRight, out);
}
ResultCode FrameObject::PutMarginRight(const Variant& value) {
  return PutInset(&deck::FrameProps::insetRight, value);
}
ResultCode FrameObject::MarginBottom(Args, Variant& out) {
  return GetInset(&deck::FrameProps::insetBottom, out);
}
ResultCode FrameObject::PutMarginBottom(const Variant& value) {
  return PutInset(&deck::FrameProps::insetBottom, value);
}

ResultCode FrameObject::Parent(Args, Variant& out) {
  return Give<ShapeObject>(out, session(), open(), address_);
}

ResultCode TextFrameObject::TextRange(Args, Variant& out) {
  const deck::TextBody* const body = deck().Text(address());
  // A shape without a text body in the file shows an empty range.
  const std::size_t length = body == nullptr ? 0 : body->Length();
  return Give<TextRangeObject>(out, session(), open(), address(), deck::TextSpan{0, length},
                               std::size_t{1}, true);
}

ResultCode TextFrameObject::AutoSize(Args, Variant& out) {
  const std::int32_t* const own = FirstAutoSize(false);
  out = Variant::I4(own != nullptr ? *own : FirstAutoSizeOf(Autofit()));
  return kOk;
}

ResultCode TextFrameObject::PutAutoSize(const Variant& value) {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted != kNone && wanted != kShapeToText) return kInvalidArgument;
  if (std::int32_t* const own = FirstAutoSize(true)) {
    *own = wanted;
    return kOk;
  }
  return PutAutofit(wanted == kNone ? deck::AutofitKind::kNone : deck::AutofitKind::kShapeToText);
}

ResultCode TextFrame2Object::AutoSize(Args, Variant& out) {
  out = Variant::I4(AutoSizeOf(Autofit()));
  return kOk;
}

ResultCode TextFrame2Object::PutAutoSize(const Variant& value) {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  if (wanted < kNone || wanted > kTextToShape) return kInvalidArgument;
  FirstAutoSize(true);
  return PutAutofit(wanted == kNone          ? deck::AutofitKind::kNone
                    : wanted == kShapeToText ? deck::AutofitKind::kShapeToText
                                             : deck::AutofitKind::kTextToShape);
}

const MemberTable& TextFrameObject::Table() const {
  using Self = TextFrameObject;
  static const MemberTable table(
      {ppt::kTextFrame},
      {{u"Parent", 1, Getter<&FrameObject::Parent>::Call},
       {u"MarginBottom", 100, Getter<&FrameObject::MarginBottom>::Call,
        Putter<&FrameObject::PutMarginBottom>::Call},
       {u"MarginLeft", 101, Getter<&FrameObject::MarginLeft>::Call,
        Putter<&FrameObject::PutMarginLeft>::Call},
       {u"MarginRight", 102, Getter<&FrameObject::MarginRight>::Call,
        Putter<&FrameObject::PutMarginRight>::Call},
       {u"MarginTop", 103, Getter<&FrameObject::MarginTop>::Call,
        Putter<&FrameObject::PutMarginTop>::Call},
       {u"HasText", 2003, Getter<&FrameObject::HasText>::Call},
       {u"TextRange", 2004, Getter<&Self::TextRange>::Call},
       {u"AutoSize", 2008, Getter<&Self::AutoSize>::Call, Putter<&Self::PutAutoSize>::Call},
       {u"WordWrap", 2009, Getter<&FrameObject::WordWrap>::Call,
        Putter<&FrameObject::PutWordWrap>::Call}});
  return table;
}

const MemberTable& TextFrame2Object::Table() const {
  using Self = TextFrame2Object;
  static const MemberTable table(
      {kTextFrame2},
      {{u"Parent", 1, Getter<&FrameObject::Parent>::Call},
       {u"MarginBottom", 100, Getter<&FrameObject::MarginBottom>::Call,
        Putter<&FrameObject::PutMarginBottom>::Call},
       {u"MarginLeft", 101, Getter<&FrameObject::MarginLeft>::Call,
        Putter<&FrameObject::PutMarginLeft>::Call},
       {u"MarginRight", 102, Getter<&FrameObject::MarginRight>::Call,
        Putter<&FrameObject::PutMarginRight>::Call},
       {u"MarginTop", 103, Getter<&FrameObject::MarginTop>::Call,
        Putter<&FrameObject::PutMarginTop>::Call},
       {u"WordWrap", 110, Getter<&FrameObject::WordWrap>::Call,
        Putter<&FrameObject::PutWordWrap>::Call},
       {u"AutoSize", 111, Getter<&Self::AutoSize>::Call, Putter<&Self::PutAutoSize>::Call},
       {u"HasText", 113, Getter<&FrameObject::HasText>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
