// A paragraph taken apart for measuring: pieces of one font, size, script and direction, and the
// advance of each unit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/layout/FontBook.h"
#include "host/layout/LayoutFrame.h"
#include "host/layout/WordAdvances.h"

namespace quillmarch::host::layout {

struct TextPiece {
  enum class Kind : std::uint8_t { kText, kTab, kLineBreak };
  Kind kind = Kind::kText;
  std::size_t start = 0;
  std::size_t end = 0;
  std::uint8_t level = 0;  // of the bidirectional algorithm; odd runs from right to left
  double ascent = 0.0;     // of the font in points, raised or lowered text included
  double descent = 0.0;
};

struct ParagraphText {
  std::u16string text;
  std::vector<TextPiece> pieces;  // cover the text in order
  std::vector<float> advances;    // points; 0 for units after the first of their cluster
  std::vector<bool> clusterStart;
  std::uint8_t level = 0;  // of the paragraph
  bool turns = false;      // some level differs from the paragraph's
  // Of the mark, which measures lines without text.
  double markAscent = 0.0;
  double markDescent = 0.0;
  double largestSize = 0.0;  // of its runs, or of the mark where there is no text
};

struct Fonts {
  FontBook& book;
  WordAdvances& words;
  LineHeight lineHeight;
};

// `scale` multiplies all sizes.
ParagraphText TakeApart(const LayoutParagraph& paragraph, Direction direction, double scale,
                        Fonts fonts);

// The width of a bullet in points, 0 for none. `first` is the format it follows.
double BulletWidth(const Bullet& bullet, const LayoutRun& first, double scale, Fonts fonts);

}  // namespace quillmarch::host::layout
