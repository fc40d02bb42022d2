// A frame's text as laid out: lines, and where each unit of the text is.
// Positions are 0-based UTF-16 units of the paragraphs' texts with one unit (CR) between them.
#pragma once

#include <cstddef>
#include <vector>

#include "host/layout/LayoutFrame.h"

namespace quillmarch::host::layout {

// Points from the frame's left top corner, the frame unrotated.
struct Box {
  double left = 0.0;
  double top = 0.0;
  double width = 0.0;
  double height = 0.0;
  friend bool operator==(const Box&, const Box&) = default;
};

// In the direction that lines run: `left` and `top` are those of the text area before it is
// turned for a vertical direction, counted from its corner inside the insets.
struct LaidLine {
  std::size_t paragraph = 0;
  std::size_t start = 0;
  std::size_t length = 0;  // with spaces that hang over the edge and a line break, without CR
  int column = 0;
  double left = 0.0;   // of the first character seen, a bullet left aside
  double width = 0.0;  // up to the last character seen; spaces at a wrapped end do not count
  double top = 0.0;
  double height = 0.0;  // as spaced
  double ascent = 0.0;  // from `top` to the base line
};

class LayoutResult {
 public:
  std::vector<LaidLine> lines;
  // Extent of the text along the lines and across them, spacing between paragraphs included.
  // `width` counts from where the leftmost line begins to where the rightmost one ends.
  double width = 0.0;
  double height = 0.0;
  // What the widest line needs from edge to edge, margins included.
  double neededWidth = 0.0;

  // The smallest box around the lines' pieces in the range. An empty range gives a box without
  // width at its place. Ranges beyond the end are held to it. `toTheEnd` includes an empty last
  // line, which holds no unit.
  Box Bounds(std::size_t start, std::size_t length, bool toTheEnd = false) const;
  // The box of the whole text.
  Box Bounds() const { return Bounds(0, length, true); }
  // The line that shows the unit; the last line for positions beyond the end.
  std::size_t LineAt(std::size_t position) const;

  std::size_t length = 0;  // of the text in units
  // For each unit the edges of what it shows, in the lines' coordinates; equal for units that
  // show nothing. The second and later units of a cluster repeat its end.
  std::vector<float> unitLeft, unitRight;

  // Where the text area is in the frame.
  double originLeft = 0.0;  // of the area inside the insets, along the lines
  double originTop = 0.0;
  double frameWidth = 0.0;
  double frameHeight = 0.0;
  Direction direction = Direction::kHorizontal;
};

}  // namespace quillmarch::host::layout
