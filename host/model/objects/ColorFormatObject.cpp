#include "host/model/objects/ColorFormatObject.h"

#include <cmath>
#include <cstdio>
#include <optional>

#include "foundation/automation/HostMembers.h"
#include "host/deck/text/RunPropertiesEdit.h"

namespace quillmarch::host::model {
namespace {

constexpr std::int32_t kTypeMixed = -2;
constexpr std::int32_t kTypeRgb = 1;
constexpr std::int32_t kTypeScheme = 2;
constexpr double kFullShare = 100000.0;

using deck::ColorSpec;
using deck::SchemeSlot;

// PpColorSchemeIndex: the eight colours of the older colour schemes, by number from 1.
constexpr SchemeSlot kSchemeColors[] = {SchemeSlot::kBackground1, SchemeSlot::kText1,
                                        SchemeSlot::kBackground2, SchemeSlot::kText2,
                                        SchemeSlot::kAccent1,     SchemeSlot::kAccent2,
                                        SchemeSlot::kHyperlink,   SchemeSlot::kFollowedHyperlink};

// MsoThemeColorIndex, by number from 1.
constexpr SchemeSlot kThemeColors[] = {
    SchemeSlot::kDark1,      SchemeSlot::kLight1,      SchemeSlot::kDark2,
    SchemeSlot::kLight2,     SchemeSlot::kAccent1,     SchemeSlot::kAccent2,
    SchemeSlot::kAccent3,    SchemeSlot::kAccent4,     SchemeSlot::kAccent5,
    SchemeSlot::kAccent6,    SchemeSlot::kHyperlink,   SchemeSlot::kFollowedHyperlink,
    SchemeSlot::kText1,      SchemeSlot::kBackground1, SchemeSlot::kText2,
    SchemeSlot::kBackground2};

// The number of a slot in one of the tables above; 0 when it has none there.
template <std::size_t N>
std::int32_t NumberOf(const SchemeSlot (&table)[N], SchemeSlot slot) {
  for (std::size_t i = 0; i < N; ++i) {
    if (table[i] == slot) return static_cast<std::int32_t>(i) + 1;
  }
  return 0;
}

template <std::size_t N>
std::optional<SchemeSlot> SlotOf(const SchemeSlot (&table)[N], const Variant& value) {
  std::int32_t number = 0;
  if (!WholeOf(value, number) || number < 1 || static_cast<std::size_t>(number) > N) {
    return std::nullopt;
  }
  return table[number - 1];
}

// The host's colours have red in the low byte.
std::uint32_t SwapRedAndBlue(std::uint32_t color) {
  return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}

bool IsTintOrShade(const deck::ColorModifier& modifier) {
  return modifier.change == deck::ColorChange::kTint ||
         modifier.change == deck::ColorChange::kShade;
}

std::string ColorXml(const ColorSpec& color, std::string_view prefix) {
  const bool scheme = color.kind == ColorSpec::Kind::kScheme;
  const std::string name = std::string(prefix) + (scheme ? "schemeClr" : "srgbClr");
  char hex[8] = {};
  std::snprintf(hex, sizeof hex, "%06X", color.rgb & 0xFFFFFFu);
  std::string xml = "<" + name + " val=\"" +
                    (scheme ? std::string(deck::SchemeWord(color.slot)) : std::string(hex)) + "\"";
  std::string inner;
  for (const deck::ColorModifier& modifier : color.modifiers) {
    const char* word = nullptr;
    switch (modifier.change) {
      case deck::ColorChange::kLumMod:
        word = "lumMod";
        break;
      case deck::ColorChange::kLumOff:
        word = "lumOff";
        break;
      case deck::ColorChange::kSatMod:
        word = "satMod";
        break;
      case deck::ColorChange::kSatOff:
        word = "satOff";
        break;
      case deck::ColorChange::kTint:
        word = "tint";
        break;
      case deck::ColorChange::kShade:
        word = "shade";
        break;
      case deck::ColorChange::kOther:
        break;
    }
    if (word == nullptr) continue;
    inner += "<" + std::string(prefix) + word + " val=\"" + std::to_string(modifier.value) + "\"/>";
  }
  if (inner.empty()) return xml + "/>";
  return xml + ">" + inner + "</" + name + ">";
}

}  // namespace

deck::TextBody* ColorFormatObject::Body() const {
  deck::TextBody* const body = deck().Text(address_);
  if (body == nullptr || deck().Style(address_, *body) == nullptr) return nullptr;
  return body;
}

// The one plain colour of the range, good until the next edit; null where it varies or is no plain
// colour.
const ColorSpec* ColorFormatObject::Common() const {
  deck::TextBody* const body = Body();
  if (body == nullptr) return nullptr;
  const ColorSpec* color = nullptr;
  bool same = true;
  body->VisitProps(span_, [&](const deck::CharProps& props) {
    same = color == nullptr || color == &props.color || *color == props.color;
    color = &props.color;
    return same;
  });
  const bool plain = color != nullptr && same && color->kind != ColorSpec::Kind::kNoPlain;
  return plain ? color : nullptr;
}

ResultCode ColorFormatObject::Put(const ColorSpec& color) const {
  deck::TextBody* const body = Body();
  if (body == nullptr || deck().PartOf(address_.page).empty()) return kHostException;
  const ColorSpec* const now = Common();
  if (now != nullptr && *now == color) return kOk;
  body->EditProps(span_, [&](std::string_view raw, std::string_view prefix) {
    return deck::WithSolidFill(raw, prefix, ColorXml(color, prefix));
  });
  return kOk;
}

Answer ColorFormatObject::Type() const {
  if (Body() == nullptr) return kHostException;
  const ColorSpec* const color = Common();
  std::int32_t type = kTypeMixed;
  if (color != nullptr) type = color->kind == ColorSpec::Kind::kScheme ? kTypeScheme : kTypeRgb;
  return Variant::I4(type);
}

Answer ColorFormatObject::Rgb() const {
  const ColorSpec* const color = Common();
  if (color == nullptr) return kHostException;
  const deck::BodyStyle& style = *Body()->style();
  const std::uint32_t rgb = deck::ResolveColor(*color, style.colorMap, style.colors);
  return Variant::I4(static_cast<std::int32_t>(SwapRedAndBlue(rgb)));
}

ResultCode ColorFormatObject::PutRgb(const Variant& value) const {
  std::int32_t number = 0;
  if (!WholeOf(value, number)) return kTypeMismatch;
  ColorSpec color;
  color.kind = ColorSpec::Kind::kRgb;
  color.rgb = SwapRedAndBlue(static_cast<std::uint32_t>(number) & 0xFFFFFFu);
  return Put(color);
}

Answer ColorFormatObject::SchemeColor() const {
  const ColorSpec* const color = Common();
  if (color == nullptr) return kHostException;
  const bool scheme = color->kind == ColorSpec::Kind::kScheme;
  return Variant::I4(scheme ? NumberOf(kSchemeColors, color->slot) : 0);
}

ResultCode ColorFormatObject::PutSchemeColor(const Variant& value) const {
  const std::optional<SchemeSlot> slot = SlotOf(kSchemeColors, value);
  if (!slot) return kInvalidArgument;
  ColorSpec color;
  color.kind = ColorSpec::Kind::kScheme;
  color.slot = *slot;
  return Put(color);
}

Answer ColorFormatObject::ObjectThemeColor() const {
  const ColorSpec* const color = Common();
  if (color == nullptr) return kHostException;
  const bool scheme = color->kind == ColorSpec::Kind::kScheme;
  return Variant::I4(scheme ? NumberOf(kThemeColors, color->slot) : 0);
}

ResultCode ColorFormatObject::PutObjectThemeColor(const Variant& value) const {
  const std::optional<SchemeSlot> slot = SlotOf(kThemeColors, value);
  if (!slot) return kInvalidArgument;
  ColorSpec color;
  color.kind = ColorSpec::Kind::kScheme;
  color.slot = *slot;
  return Put(color);
}

// From -1 (black) through 0 (the colour itself) to 1 (white).
Answer ColorFormatObject::TintAndShade() const {
  const ColorSpec* const color = Common();
  if (color == nullptr) return kHostException;
  double value = 0;
  for (const deck::ColorModifier& modifier : color->modifiers) {
    const double share = static_cast<double>(modifier.value) / kFullShare;
    if (modifier.change == deck::ColorChange::kTint) value = 1 - share;
    if (modifier.change == deck::ColorChange::kShade) value = share - 1;
  }
  return Variant::R4(static_cast<float>(value));
}

ResultCode ColorFormatObject::PutTintAndShade(const Variant& value) const {
  double wanted = 0;
  if (!RealOf(value, wanted)) return kTypeMismatch;
  if (!(std::fabs(wanted) <= 1)) return kInvalidArgument;
  const ColorSpec* const common = Common();
  if (common == nullptr) return kHostException;
  ColorSpec color = *common;
  const Answer now = TintAndShade();
  // What the file holds need not be a whole thousandth of a per cent as a float.
  if (std::fabs(static_cast<double>(now.value().single()) - wanted) < 1 / kFullShare) return kOk;
  std::erase_if(color.modifiers, IsTintOrShade);
  const auto share = static_cast<std::int64_t>(std::lround((1 - std::fabs(wanted)) * kFullShare));
  if (wanted > 0) color.modifiers.push_back({deck::ColorChange::kTint, share});
  if (wanted < 0) color.modifiers.push_back({deck::ColorChange::kShade, share});
  return Put(color);
}

const MemberTable& ColorFormatObject::Table() const {
  using Self = ColorFormatObject;
  static const auto table = MemberTable::Of<Self>(
      {ppt::kColorFormat},
      {{u"RGB", 0, [](Self& self) { return self.Rgb(); },
        [](Self& self, const Variant& value) { return self.PutRgb(value); }},
       {u"Type", 101, [](Self& self) { return self.Type(); }},
       {u"TintAndShade", 103, [](Self& self) { return self.TintAndShade(); },
        [](Self& self, const Variant& value) { return self.PutTintAndShade(value); }},
       {u"ObjectThemeColor", 104, [](Self& self) { return self.ObjectThemeColor(); },
        [](Self& self, const Variant& value) { return self.PutObjectThemeColor(value); }},
       {u"SchemeColor", 2003, [](Self& self) { return self.SchemeColor(); },
        [](Self& self, const Variant& value) { return self.PutSchemeColor(value); }}});
  return table;
}

}  // namespace quillmarch::host::model
