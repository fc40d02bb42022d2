// What a text frame holds, as the measuring takes it: plain records with everything resolved.
// Lengths are points, texts UTF-16, font names UTF-8. Shares are fractions (1.0 is 100 %).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillmarch::host::layout {

enum class Caps : std::uint8_t { kNone, kSmall, kAll };

// Which one a character takes is decided by its script. An empty name means the default.
struct RunFonts {
  std::string latin, eastAsian, complexScript, symbol;
  friend bool operator==(const RunFonts&, const RunFonts&) = default;
};

struct LayoutRun {
  std::u16string text;  // VT breaks the line; CR does not occur
  RunFonts fonts;
  std::string language;  // BCP 47, may be empty; it only chooses among fallback fonts
  double size = 18.0;
  double spacing = 0.0;   // added after each character
  double baseline = 0.0;  // share of the size that the text is raised by; negative lowers it
  bool bold = false;
  bool italic = false;
  bool kerning = true;
  Caps caps = Caps::kNone;
  friend bool operator==(const LayoutRun&, const LayoutRun&) = default;
};

// A share of the natural height, or points.
struct Spacing {
  enum class Unit : std::uint8_t { kShare, kPoints };
  Unit unit = Unit::kShare;
  double value = 0.0;
  friend bool operator==(const Spacing&, const Spacing&) = default;
};

enum class Alignment : std::uint8_t { kLeft, kCenter, kRight, kJustify };
enum class TabAlignment : std::uint8_t { kLeft, kCenter, kRight, kDecimal };

struct TabStop {
  double position = 0.0;  // from the edge of the text area where lines begin
  TabAlignment alignment = TabAlignment::kLeft;
  friend bool operator==(const TabStop&, const TabStop&) = default;
};

struct Bullet {
  std::u16string text;  // the character, or the number with its dot; empty for none
  std::string font;     // empty: as the first run
  Spacing size{Spacing::Unit::kShare, 1.0};  // share of the first run's size
  friend bool operator==(const Bullet&, const Bullet&) = default;
};

struct LayoutParagraph {
  std::vector<LayoutRun> runs;
  LayoutRun mark;  // its format gives an empty paragraph its height; its text does not count
  Alignment alignment = Alignment::kLeft;  // left and right as seen, right to left as well
  bool rightToLeft = false;
  bool hangingPunctuation = true;  // East Asian stops may hang over the edge
  double marginStart = 0.0;        // on the side where lines begin
  double marginEnd = 0.0;
  double indent = 0.0;  // of the first line, from marginStart; negative hangs
  Bullet bullet;
  Spacing lineSpacing{Spacing::Unit::kShare, 1.0};
  Spacing before, after;      // a share is one of a line of the paragraph's largest font
  std::vector<TabStop> tabs;  // ascending
  friend bool operator==(const LayoutParagraph&, const LayoutParagraph&) = default;
};

enum class Anchor : std::uint8_t { kTop, kMiddle, kBottom };
enum class Direction : std::uint8_t {
  kHorizontal,
  kClockwise,         // turned by 90 degrees: lines run down, the next one is to the left
  kCounterclockwise,  // turned by 270 degrees: lines run up, the next one is to the right
  kEastAsian,         // as kClockwise, East Asian characters upright
  kMongolian,         // as kEastAsian, the next line is to the right
  kStacked            // one upright character below the other, lines from left to right
};
enum class Autofit : std::uint8_t { kNone, kShapeToText, kTextToShape };

// What makes a line of 100 %.
enum class LineHeight : std::uint8_t {
  kOfSize,  // 1.2 times the size, whatever the font; PowerPoint answers 21.60 for 18 points
  kOfFont   // the font's own ascent and descent
};

struct LayoutFrame {
  double width = 0.0;  // the whole frame, insets included, unrotated
  double height = 0.0;
  double insetLeft = 7.2, insetTop = 3.6, insetRight = 7.2, insetBottom = 3.6;
  bool wrap = true;
  Anchor anchor = Anchor::kTop;
  bool anchorCenter = false;  // the block of lines is centred between the sides
  int columns = 1;
  double columnSpacing = 0.0;
  Direction direction = Direction::kHorizontal;
  Autofit autofit = Autofit::kNone;
  double fontScale = 1.0;             // of kTextToShape, else not looked at
  double lineSpacingReduction = 0.0;  // likewise; taken off line spacings that are shares
  double defaultTab = 72.0;
  LineHeight lineHeight = LineHeight::kOfSize;
  std::vector<LayoutParagraph> paragraphs;
  friend bool operator==(const LayoutFrame&, const LayoutFrame&) = default;
};

}  // namespace quillmarch::host::layout
