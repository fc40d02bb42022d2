// What decides on the layout of a paragraph and its runs beside the character properties:
// alignment, indents, spacing, bullet, tabs, and a run's spacing, baseline and the like. What is
// not said is unset. Lengths in points, shares as fractions.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "host/deck/XmlNames.h"
#include "host/deck/text/CharProps.h"

namespace quillmarch::host::deck {

struct TextExtras {
  enum class Caps : std::uint8_t { kNone, kSmall, kAll };
  std::optional<double> spacing;   // after each character
  std::optional<double> baseline;  // share of the size
  std::optional<Caps> caps;
  std::optional<double> kernFrom;  // the least size that is kerned; 0 for none
  std::string language;
  std::string symbol;  // typeface
};

struct TextSpacing {
  bool points = false;  // else a share
  double value = 0.0;
};

struct TabMark {
  enum class Side : std::uint8_t { kLeft, kCenter, kRight, kDecimal };
  double position = 0.0;
  Side side = Side::kLeft;
};

struct BulletMark {
  enum class Kind : std::uint8_t { kNone, kCharacter, kNumber, kPicture };
  Kind kind = Kind::kNone;
  std::string text;  // the character, or the numbering's name
  std::int32_t startAt = 1;
};

struct ParagraphProps {
  enum class Side : std::uint8_t { kLeft, kCenter, kRight, kJustify };
  std::optional<Side> side;
  std::optional<bool> rightToLeft, hangingPunctuation;
  std::optional<double> marginLeft, marginRight, indent, defaultTab;
  std::optional<TextSpacing> lineSpacing, before, after;
  std::optional<BulletMark> bullet;
  std::optional<std::string> bulletFont;     // empty: as the text
  std::optional<TextSpacing> bulletSize;     // a share of the text's size
  std::optional<std::vector<TabMark>> tabs;  // ascending
  TextExtras text;
};

using ParagraphLevels = std::array<ParagraphProps, kLevels>;

// `node` is a:rPr, a:defRPr or a:endParaRPr; null gives all unset.
TextExtras ParseTextExtras(const XmlNames& names, pugi::xml_node node);
// `node` is a:pPr or a:lvl1pPr and the like; null gives all unset.
ParagraphProps ParseParagraphProps(const XmlNames& names, pugi::xml_node node);
// `node` holds a:lvl1pPr to a:lvl9pPr, and a:defPPr below them all; null when it holds nothing.
std::shared_ptr<const ParagraphLevels> ParseParagraphLevels(const XmlNames& names,
                                                            pugi::xml_node node);

// Takes from `from` whatever `into` leaves unset.
void Inherit(TextExtras& into, const TextExtras& from);
void Inherit(ParagraphProps& into, const ParagraphProps& from);
void Inherit(ParagraphLevels& into, const std::shared_ptr<const ParagraphLevels>& from);

}  // namespace quillmarch::host::deck
