#include <cmath>

#include "foundation/automation/HostMembers.h"
#include "host/deck/text/RunPropertiesEdit.h"
#include "host/model/Objects.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kMixed = -2;
constexpr std::int32_t kToggle = -3;
constexpr double kHundredths = 100.0;
// The sizes that the file format can hold, in points.
constexpr double kLeastSize = 1.0;
constexpr double kMostSize = 4000.0;
// Half of the smallest difference between two sizes in a file.
constexpr double kSameSize = 0.005;

}  // namespace

deck::TextBody* FontObject::Body() const {
  deck::TextBody* const body = deck().Text(address_);
  if (body == nullptr || deck().Style(address_, *body) == nullptr) return nullptr;
  return body;
}

ResultCode FontObject::Size(Args, Variant& out) {
  deck::TextBody* const body = Body();
  if (body == nullptr) return kHostException;
  std::int32_t common = -1;
  body->VisitProps(span_, [&](const deck::CharProps& props) {
    if (common >= 0 && props.size != common) {
      common = kMixed;
      return false;
    }
    common = props.size;
    return true;
  });
  if (common == -1) return kHostException;
  const double scale = deck().FontScale(address_);
  out = Variant::R4(common == kMixed ? static_cast<float>(kMixed)
                                     : static_cast<float>(common / kHundredths * scale));
  return kOk;
}

ResultCode FontObject::PutSize(const Variant& value) {
  double points = 0;
  if (!RealOf(value, points)) return kTypeMismatch;
  deck::TextBody* const body = Body();
  if (body == nullptr || deck().PartOf(address_.page).empty()) return kHostException;
  const double nominal = points / deck().FontScale(address_);
  if (!(points >= kLeastSize) || !(nominal <= kMostSize)) return kInvalidArgument;
  bool same = true;
  body->VisitProps(span_, [&](const deck::CharProps& props) {
    same = std::fabs(props.size / kHundredths - nominal) < kSameSize;
    return same;
  });
  if (same) return kOk;
  const std::string size = std::to_string(std::lround(nominal * kHundredths));
  body->EditProps(span_, [&](std::string_view raw, std::string_view prefix) {
    return deck::WithRunAttribute(raw, prefix, "sz", size);
  });
  return kOk;
}

ResultCode FontObject::GetFlag(Flag flag, Variant& out) const {
  deck::TextBody* const body = Body();
  if (body == nullptr) return kHostException;
  int common = -1;
  body->VisitProps(span_, [&](const deck::CharProps& props) {
    if (common >= 0 && props.*flag != common) {
      common = kMixed;
      return false;
    }
    common = props.*flag;
    return true;
  });
  if (common == -1) return kHostException;
  out = common == kMixed ? Variant::I4(kMixed) : TriState(common != 0);
  return kOk;
}

ResultCode FontObject::PutFlag(Flag flag, const char* attribute, const char* on, const char* off,
                               const Variant& value) const {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  Variant now;
  const ResultCode code = GetFlag(flag, now);
  if (Failed(code)) return code;
  if (deck().PartOf(address_.page).empty()) return kHostException;
  if (wanted == kToggle) wanted = now.whole() == -1 ? 0 : -1;
  if (wanted != 0 && wanted != -1 && wanted != 1) return kInvalidArgument;
  if (now.whole() == (wanted == 0 ? 0 : -1)) return kOk;
  Body()->EditProps(span_, [&](std::string_view raw, std::string_view prefix) {
    return deck::WithRunAttribute(raw, prefix, attribute, wanted == 0 ? off : on);
  });
  return kOk;
}

ResultCode FontObject::Bold(Args, Variant& out) {
  return GetFlag(&deck::CharProps::bold, out);
}
ResultCode FontObject::PutBold(const Variant& value) {
  return PutFlag(&deck::CharProps::bold, "b", "1", "0", value);
}
ResultCode FontObject::Italic(Args, Variant& out) {
  return GetFlag(&deck::CharProps::italic, out);
}
ResultCode FontObject::PutItalic(const Variant& value) {
  return PutFlag(&deck::CharProps::italic, "i", "1", "0", value);
}
ResultCode FontObject::Underline(Args, Variant& out) {
  return GetFlag(&deck::CharProps::underline, out);
}
ResultCode FontObject::PutUnderline(const Variant& value) {
  return PutFlag(&deck::CharProps::underline, "u", "sng", "none", value);
}

ResultCode FontObject::Color(Args, Variant& out) {
  if (Body() == nullptr) return kHostException;
  return Give<ColorFormatObject>(out, session(), open(), address_, span_);
}

// The typeface as shown all over the range; empty where it varies.
bool FontObject::Faces(Face face, std::string& common) const {
  deck::TextBody* const body = Body();
  if (body == nullptr) return false;
  bool any = false;
  body->VisitProps(span_, [&](const deck::CharProps& props) {
    const std::string& shown = deck::ShownFace(props.*face, *body->style());
    if (any && shown != common) {
      common.clear();
      return false;
    }
    common = shown;
    any = true;
    return true;
  });
  return true;
}

ResultCode FontObject::GetFace(Face face, Variant& out) const {
  std::string common;
  if (!Faces(face, common)) return kHostException;
  out = Variant::Text(ToWide(common));
  return kOk;
}

ResultCode FontObject::PutFaces(std::initializer_list<Face> faces, const Variant& value) const {
  if (value.type() != VariantType::kText) return kTypeMismatch;
  const std::string face = ToUtf8(value.text());
  if (face.empty()) return kInvalidArgument;
  if (deck().PartOf(address_.page).empty()) return kHostException;
  for (const Face target : faces) {
    std::string common;
    if (!Faces(target, common)) return kHostException;
    if (common == face) continue;
    const char* const local = target == &deck::CharProps::latin       ? "latin"
                              : target == &deck::CharProps::eastAsian ? "ea"
                                                                      : "cs";
    Body()->EditProps(span_, [&](std::string_view raw, std::string_view prefix) {
      return deck::WithTypeface(raw, prefix, local, face);
    });
  }
  return kOk;
}

ResultCode FontObject::Name(Args, Variant& out) {
  return GetFace(&deck::CharProps::latin, out);
}
// The host takes a font's name for complex scripts too; Asian texts have a name of their own.
ResultCode FontObject::PutName(const Variant& value) {
  return PutFaces({&deck::CharProps::latin, &deck::CharProps::complexScript}, value);
}
ResultCode FontObject::NameAscii(Args, Variant& out) {
  return GetFace(&deck::CharProps::latin, out);
}
ResultCode FontObject::PutNameAscii(const Variant& value) {
  return PutFaces({&deck::CharProps::latin}, value);
}
ResultCode FontObject::NameFarEast(Args, Variant& out) {
  return GetFace(&deck::CharProps::eastAsian, out);
}
ResultCode FontObject::PutNameFarEast(const Variant& value) {
  return PutFaces({&deck::CharProps::eastAsian}, value);
}
ResultCode FontObject::NameComplexScript(Args, Variant& out) {
  return GetFace(&deck::CharProps::complexScript, out);
}
ResultCode FontObject::PutNameComplexScript(const Variant& value) {
  return PutFaces({&deck::CharProps::complexScript}, value);
}

const MemberTable& FontObject::Table() const {
  using Self = FontObject;
  static const MemberTable table(
      {ppt::kFont},
      {{u"Color", 2003, Getter<&Self::Color>::Call},
       {u"Bold", 2004, Getter<&Self::Bold>::Call, Putter<&Self::PutBold>::Call},
       {u"Italic", 2005, Getter<&Self::Italic>::Call, Putter<&Self::PutItalic>::Call},
       {u"Underline", 2008, Getter<&Self::Underline>::Call, Putter<&Self::PutUnderline>::Call},
       {u"Size", 2014, Getter<&Self::Size>::Call, Putter<&Self::PutSize>::Call},
       {u"Name", 2015, Getter<&Self::Name>::Call, Putter<&Self::PutName>::Call},
       {u"NameFarEast", 2016, Getter<&Self::NameFarEast>::Call,
        Putter<&Self::PutNameFarEast>::Call},
       {u"NameAscii", 2017, Getter<&Self::NameAscii>::Call, Putter<&Self::PutNameAscii>::Call},
       {u"NameOther", 2019, Getter<&Self::NameAscii>::Call, Putter<&Self::PutNameAscii>::Call},
       {u"NameComplexScript", 2020, Getter<&Self::NameComplexScript>::Call,
        Putter<&Self::PutNameComplexScript>::Call}});
  return table;
}

}  // namespace quillmarch::host::model
