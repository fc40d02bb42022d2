// The character properties of a run or of a level of a list style: what is said there, the rest
// unset.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "host/deck/ColorSpec.h"
#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

struct CharProps {
  std::int32_t size = -1;  // hundredths of a point
  std::int8_t bold = -1;   // 1, 0, or -1 for unset; so are the two below
  std::int8_t italic = -1;
  std::int8_t underline = -1;
  ColorSpec color;
  std::string latin;  // typeface; a name like "+mj-lt" points into the theme
  std::string eastAsian;
  std::string complexScript;
  friend bool operator==(const CharProps&, const CharProps&) = default;
};

// Paragraph levels of a list style.
inline constexpr std::size_t kLevels = 9;
using LevelProps = std::array<CharProps, kLevels>;

// `node` is a:rPr, a:defRPr or a:endParaRPr; null gives all unset.
CharProps ParseCharProps(const XmlNames& names, pugi::xml_node node);
// `node` holds a:lvl1pPr to a:lvl9pPr, and a:defPPr below them all; null gives all unset.
LevelProps ParseLevels(const XmlNames& names, pugi::xml_node node);

// Takes from `from` whatever `into` leaves unset.
void Inherit(CharProps& into, const CharProps& from);
void Inherit(LevelProps& into, const LevelProps& from);

}  // namespace quillmarch::host::deck
