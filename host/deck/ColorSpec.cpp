#include "host/deck/ColorSpec.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;

constexpr std::string_view kWords[] = {
    "bg1",     "tx1",   "bg2",      "tx2", "accent1", "accent2", "accent3", "accent4", "accent5",
    "accent6", "hlink", "folHlink", "dk1", "lt1",     "dk2",     "lt2",     "phClr"};

constexpr const char* kThemeElements[] = {"dk1",     "lt1",     "dk2",     "lt2",
                                          "accent1", "accent2", "accent3", "accent4",
                                          "accent5", "accent6", "hlink",   "folHlink"};

// The preset colours that text is likely to have; any other name reads as black.
struct Preset {
  std::string_view name;
  std::uint32_t rgb;
};
constexpr Preset kPresets[] = {
    {"black", 0x000000},  {"white", 0xFFFFFF},  {"red", 0xFF0000},    {"green", 0x008000},
    {"blue", 0x0000FF},   {"yellow", 0xFFFF00}, {"cyan", 0x00FFFF},   {"magenta", 0xFF00FF},
    {"gray", 0x808080},   {"grey", 0x808080},   {"orange", 0xFFA500}, {"purple", 0x800080},
    {"navy", 0x000080},   {"teal", 0x008080},   {"maroon", 0x800000}, {"olive", 0x808000},
    {"silver", 0xC0C0C0}, {"lime", 0x00FF00},   {"dkGray", 0xA9A9A9}, {"ltGray", 0xD3D3D3}};

std::uint32_t HexColor(std::string_view text) {
  std::uint32_t value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value, 16);
  return value & 0xFFFFFFu;
}

ColorChange ChangeOf(const char* local) {
  const std::string_view word = local;
  if (word == "lumMod") return ColorChange::kLumMod;
  if (word == "lumOff") return ColorChange::kLumOff;
  if (word == "satMod") return ColorChange::kSatMod;
  if (word == "satOff") return ColorChange::kSatOff;
  if (word == "tint") return ColorChange::kTint;
  if (word == "shade") return ColorChange::kShade;
  return ColorChange::kOther;
}

struct Hsl {
  double hue = 0, saturation = 0, lightness = 0;
};

Hsl ToHsl(const std::array<double, 3>& c) {
  const double high = std::max({c[0], c[1], c[2]});
  const double low = std::min({c[0], c[1], c[2]});
  const double span = high - low;
  Hsl hsl;
  hsl.lightness = (high + low) / 2;
  if (span <= 0) return hsl;
  hsl.saturation = span / (1 - std::fabs(2 * hsl.lightness - 1));
  if (high == c[0])
    hsl.hue = std::fmod((c[1] - c[2]) / span + 6, 6);
  else if (high == c[1])
    hsl.hue = (c[2] - c[0]) / span + 2;
  else
    hsl.hue = (c[0] - c[1]) / span + 4;
  return hsl;
}

std::array<double, 3> FromHsl(const Hsl& hsl) {
  const double chroma = (1 - std::fabs(2 * hsl.lightness - 1)) * hsl.saturation;
  const double second = chroma * (1 - std::fabs(std::fmod(hsl.hue, 2.0) - 1));
  const double base = hsl.lightness - chroma / 2;
  std::array<double, 3> c = {base, base, base};
  const auto sector = static_cast<int>(hsl.hue) % 6;
  constexpr int kMain[] = {0, 1, 1, 2, 2, 0};
  constexpr int kSecond[] = {1, 0, 2, 1, 0, 2};
  c[static_cast<std::size_t>(kMain[sector])] += chroma;
  c[static_cast<std::size_t>(kSecond[sector])] += second;
  return c;
}

double ToLinear(double c) {
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double FromLinear(double c) {
  return c <= 0.0031308 ? c * 12.92 : 1.055 * std::pow(c, 1 / 2.4) - 0.055;
}

void Apply(const ColorModifier& modifier, std::array<double, 3>& c) {
  const double share = std::clamp(static_cast<double>(modifier.value) / 100000.0, -100.0, 100.0);
  switch (modifier.change) {
    case ColorChange::kTint:
      for (double& channel : c) channel = FromLinear(1 - (1 - ToLinear(channel)) * share);
      break;
    case ColorChange::kShade:
      for (double& channel : c) channel = FromLinear(ToLinear(channel) * share);
      break;
    case ColorChange::kOther:
      return;
    default: {
      Hsl hsl = ToHsl(c);
      if (modifier.change == ColorChange::kLumMod) hsl.lightness *= share;
      if (modifier.change == ColorChange::kLumOff) hsl.lightness += share;
      if (modifier.change == ColorChange::kSatMod) hsl.saturation *= share;
      if (modifier.change == ColorChange::kSatOff) hsl.saturation += share;
      hsl.lightness = std::clamp(hsl.lightness, 0.0, 1.0);
      hsl.saturation = std::clamp(hsl.saturation, 0.0, 1.0);
      c = FromHsl(hsl);
    }
  }
  for (double& channel : c) channel = std::clamp(channel, 0.0, 1.0);
}

}  // namespace

std::string_view SchemeWord(SchemeSlot slot) {
  return kWords[static_cast<std::size_t>(slot)];
}

std::optional<SchemeSlot> SlotOfWord(std::string_view word) {
  for (std::size_t i = 0; i < std::size(kWords); ++i) {
    if (kWords[i] == word) return static_cast<SchemeSlot>(i);
  }
  return std::nullopt;
}

ColorSpec ParseColor(const XmlNames& names, pugi::xml_node node) {
  ColorSpec color;
  if (names.SpaceOf(node) != kA) return color;
  const std::string_view local = LocalName(node.name());
  const std::string_view value = node.attribute("val").value();
  if (local == "srgbClr") {
    color.kind = ColorSpec::Kind::kRgb;
    color.rgb = HexColor(value);
  } else if (local == "schemeClr") {
    color.kind = ColorSpec::Kind::kScheme;
    color.slot = SlotOfWord(value).value_or(SchemeSlot::kText1);
  } else if (local == "sysClr") {
    color.kind = ColorSpec::Kind::kRgb;
    color.rgb = HexColor(node.attribute("lastClr").value());
    if (!node.attribute("lastClr")) color.rgb = value == "window" ? 0xFFFFFFu : 0u;
  } else if (local == "prstClr") {
    color.kind = ColorSpec::Kind::kRgb;
    for (const Preset& preset : kPresets) {
      if (preset.name == value) color.rgb = preset.rgb;
    }
  } else if (local == "scrgbClr") {
    color.kind = ColorSpec::Kind::kRgb;
    for (const char* channel : {"r", "g", "b"}) {
      const double share =
          std::clamp(static_cast<double>(PercentAttribute(node, channel, 0)) / 100000.0, 0.0, 1.0);
      color.rgb = color.rgb << 8 | static_cast<std::uint32_t>(std::lround(FromLinear(share) * 255));
    }
  } else if (local == "hslClr") {
    color.kind = ColorSpec::Kind::kRgb;
    Hsl hsl;
    hsl.hue =
        static_cast<double>(std::clamp<std::int64_t>(WholeAttribute(node, "hue", 0), 0, 21599999)) /
        3600000.0;
    hsl.saturation =
        std::clamp(static_cast<double>(PercentAttribute(node, "sat", 0)) / 100000.0, 0.0, 1.0);
    hsl.lightness =
        std::clamp(static_cast<double>(PercentAttribute(node, "lum", 0)) / 100000.0, 0.0, 1.0);
    for (const double channel : FromHsl(hsl)) {
      color.rgb = color.rgb << 8 | static_cast<std::uint32_t>(std::lround(channel * 255));
    }
  } else {
    return color;
  }
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    color.modifiers.push_back(
        {ChangeOf(LocalName(child.name())), PercentAttribute(child, "val", 100000)});
  }
  return color;
}

ColorSpec ParseFill(const XmlNames& names, pugi::xml_node parent) {
  for (const pugi::xml_node child : parent.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    if (local == "solidFill") {
      for (const pugi::xml_node inner : child.children()) {
        ColorSpec color = ParseColor(names, inner);
        if (color.kind != ColorSpec::Kind::kUnset) return color;
      }
      return {};
    }
    if (local == "noFill" || local == "gradFill" || local == "blipFill" || local == "pattFill" ||
        local == "grpFill") {
      ColorSpec color;
      color.kind = ColorSpec::Kind::kNoPlain;
      return color;
    }
  }
  return {};
}

ColorMap ParseColorMap(pugi::xml_node clrMap) {
  ColorMap map;
  for (std::size_t slot = 0; slot < map.theme.size(); ++slot) {
    const std::string_view value = clrMap.attribute(std::string(kWords[slot]).c_str()).value();
    for (std::size_t i = 0; i < std::size(kThemeElements); ++i) {
      if (value == kThemeElements[i]) map.theme[slot] = static_cast<std::uint8_t>(i);
    }
  }
  return map;
}

ThemeColors ParseThemeColors(const XmlNames& names, pugi::xml_node clrScheme) {
  ThemeColors colors;
  for (std::size_t i = 0; i < std::size(kThemeElements); ++i) {
    const pugi::xml_node entry = names.Child(clrScheme, kA, kThemeElements[i]);
    for (const pugi::xml_node child : entry.children()) {
      const ColorSpec color = ParseColor(names, child);
      if (color.kind == ColorSpec::Kind::kRgb) colors.rgb[i] = color.rgb;
    }
  }
  return colors;
}

std::uint32_t ResolveColor(const ColorSpec& color, const ColorMap& map, const ThemeColors& theme) {
  std::uint32_t rgb = color.rgb;
  if (color.kind == ColorSpec::Kind::kScheme) {
    const auto slot = static_cast<std::size_t>(color.slot);
    constexpr std::size_t kFirstDirect = static_cast<std::size_t>(SchemeSlot::kDark1);
    if (color.slot == SchemeSlot::kPlaceholder)
      rgb = theme.rgb[map.theme[1]];
    else if (slot >= kFirstDirect)
      rgb = theme.rgb[slot - kFirstDirect];
    else
      rgb = theme.rgb[map.theme[slot]];
  } else if (color.kind != ColorSpec::Kind::kRgb) {
    return 0;
  }
  if (color.modifiers.empty()) return rgb;
  std::array<double, 3> channels = {static_cast<double>(rgb >> 16 & 0xFF) / 255.0,
                                    static_cast<double>(rgb >> 8 & 0xFF) / 255.0,
                                    static_cast<double>(rgb & 0xFF) / 255.0};
  for (const ColorModifier& modifier : color.modifiers) Apply(modifier, channels);
  std::uint32_t result = 0;
  for (const double channel : channels) {
    result = result << 8 | static_cast<std::uint32_t>(std::lround(channel * 255));
  }
  return result;
}

}  // namespace quillmarch::host::deck
