#include "host/model/objects/FontObject.h"

#include <cmath>

#include "foundation/automation/HostMembers.h"
#include "host/deck/text/RunPropertiesEdit.h"
#include "host/model/objects/ColorFormatObject.h"

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

Answer FontObject::Size() const {
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
  return SingleOf(common == kMixed ? kMixed : common / kHundredths * scale);
}

ResultCode FontObject::PutSize(const Variant& value) const {
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

Answer FontObject::GetFlag(Flag flag) const {
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
  return common == kMixed ? Variant::I4(kMixed) : TriState(common != 0);
}

ResultCode FontObject::PutFlag(Flag flag, const char* attribute, const char* on, const char* off,
                               const Variant& value) const {
  std::int32_t wanted = 0;
  if (!WholeOf(value, wanted)) return kTypeMismatch;
  const Answer answer = GetFlag(flag);
  if (Failed(answer.code())) return answer.code();
  const std::int32_t now = answer.value().whole();
  if (deck().PartOf(address_.page).empty()) return kHostException;
  if (wanted == kToggle) wanted = now == -1 ? 0 : -1;
  if (wanted != 0 && wanted != -1 && wanted != 1) return kInvalidArgument;
  if (now == (wanted == 0 ? 0 : -1)) return kOk;
  Body()->EditProps(span_, [&](std::string_view raw, std::string_view prefix) {
    return deck::WithRunAttribute(raw, prefix, attribute, wanted == 0 ? off : on);
  });
  return kOk;
}

// The typeface as shown throughout the range; empty where it varies.
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

Answer FontObject::GetFace(Face face) const {
  std::string common;
  if (!Faces(face, common)) return kHostException;
  return ToWide(common);
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

Answer FontObject::Color() const {
  if (Body() == nullptr) return kHostException;
  return Make<ColorFormatObject>(session(), open(), address_, span_);
}

const MemberTable& FontObject::Table() const {
  using Self = FontObject;
  using Props = deck::CharProps;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kFont},
      {{u"Color", 2003, [](Self& self) { return self.Color(); }},
       {u"Bold", 2004, [](Self& self) { return self.GetFlag(&Props::bold); },
        [](Self& self, const Variant& value) {
          return self.PutFlag(&Props::bold, "b", "1", "0", value);
        }},
       {u"Italic", 2005, [](Self& self) { return self.GetFlag(&Props::italic); },
        [](Self& self, const Variant& value) {
          return self.PutFlag(&Props::italic, "i", "1", "0", value);
        }},
       {u"Underline", 2008, [](Self& self) { return self.GetFlag(&Props::underline); },
        [](Self& self, const Variant& value) {
          return self.PutFlag(&Props::underline, "u", "sng", "none", value);
        }},
       {u"Size", 2014, [](Self& self) { return self.Size(); },
        [](Self& self, const Variant& value) { return self.PutSize(value); }},
       // The host applies a font's name to complex scripts too; East Asian text has a name of its
       // own.
       {u"Name", 2015, [](Self& self) { return self.GetFace(&Props::latin); },
        [](Self& self, const Variant& value) {
          return self.PutFaces({&Props::latin, &Props::complexScript}, value);
        }},
       {u"NameFarEast", 2016, [](Self& self) { return self.GetFace(&Props::eastAsian); },
        [](Self& self, const Variant& value) { return self.PutFaces({&Props::eastAsian}, value); }},
       {u"NameAscii", 2017, [](Self& self) { return self.GetFace(&Props::latin); },
        [](Self& self, const Variant& value) { return self.PutFaces({&Props::latin}, value); }},
       {u"NameOther", 2019, [](Self& self) { return self.GetFace(&Props::latin); },
        [](Self& self, const Variant& value) { return self.PutFaces({&Props::latin}, value); }},
       {u"NameComplexScript", 2020, [](Self& self) { return self.GetFace(&Props::complexScript); },
        [](Self& self, const Variant& value) {
          return self.PutFaces({&Props::complexScript}, value);
        }}});
  return table;
}

}  // namespace quillmarch::host::model
