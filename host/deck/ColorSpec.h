// A colour as a file states it, and the colour that comes of it.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

// What a scheme colour may name. The first twelve go through the colour map of slide or master,
// the next four name the theme's own colours directly.
enum class SchemeSlot : std::uint8_t {
  kBackground1,
  kText1,
  kBackground2,
  kText2,
  kAccent1,
  kAccent2,
  kAccent3,
  kAccent4,
  kAccent5,
  kAccent6,
  kHyperlink,
  kFollowedHyperlink,
  kDark1,
  kLight1,
  kDark2,
  kLight2,
  kPlaceholder,  // "phClr": whatever the style's user brings
};

// The file's word for a slot ("tx1"), and back; nothing for any other word.
std::string_view SchemeWord(SchemeSlot slot);
std::optional<SchemeSlot> SlotOfWord(std::string_view word);

enum class ColorChange : std::uint8_t {
  kLumMod,
  kLumOff,
  kSatMod,
  kSatOff,
  kTint,
  kShade,
  kOther,  // alpha and others that leave the colour as it is, seen on white
};

struct ColorModifier {
  ColorChange change = ColorChange::kOther;
  std::int64_t value = 0;  // thousandths of a per cent
  friend bool operator==(const ColorModifier&, const ColorModifier&) = default;
};

struct ColorSpec {
  enum class Kind : std::uint8_t {
    kUnset,  // nothing is said here: the colour is inherited
    kRgb,
    kScheme,
    kNoPlain  // no fill, a gradient, a picture: there is no one colour
  };
  Kind kind = Kind::kUnset;
  std::uint32_t rgb = 0;  // 0xRRGGBB
  SchemeSlot slot = SchemeSlot::kText1;
  std::vector<ColorModifier> modifiers;
  friend bool operator==(const ColorSpec&, const ColorSpec&) = default;
};

// The twelve colours of a theme, 0xRRGGBB, in the order dk1 lt1 dk2 lt2 accent1-6 hlink folHlink.
struct ThemeColors {
  std::array<std::uint32_t, 12> rgb = {0x000000, 0xFFFFFF, 0x44546A, 0xE7E6E6, 0x4472C4, 0xED7D31,
                                       0xA5A5A5, 0xFFC000, 0x5B9BD5, 0x70AD47, 0x0563C1, 0x954F72};
};

// Which theme colour (an index into ThemeColors) each mapped slot means.
struct ColorMap {
  std::array<std::uint8_t, 12> theme = {1, 0, 3, 2, 4, 5, 6, 7, 8, 9, 10, 11};
};

// `node` is a:srgbClr, a:schemeClr or another colour element; any other gives kUnset.
ColorSpec ParseColor(const XmlNames& names, pugi::xml_node node);
// The colour of a fill among the children of `parent` (a:rPr, a:defRPr and the like).
ColorSpec ParseFill(const XmlNames& names, pugi::xml_node parent);
ColorMap ParseColorMap(pugi::xml_node clrMap);
ThemeColors ParseThemeColors(const XmlNames& names, pugi::xml_node clrScheme);

// 0xRRGGBB; black for kUnset and kNoPlain.
std::uint32_t ResolveColor(const ColorSpec& color, const ColorMap& map, const ThemeColors& theme);

}  // namespace quillmarch::host::deck
