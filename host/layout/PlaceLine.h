// Gives the units of a line their places.
#pragma once

#include <cstddef>
#include <vector>

#include "host/layout/FillLines.h"

namespace quillmarch::host::layout {

struct LinePlace {
  double left = 0.0;  // of what is seen, from the left edge of the column
  double width = 0.0;
  double needed = 0.0;  // from the edge where lines begin to the end of what is seen
};

struct PlaceWish {
  double columnWidth = 0.0;
  double start = 0.0;  // where the line begins, from the edge where lines begin
  double end = 0.0;    // where it ends at the latest
  Alignment alignment = Alignment::kLeft;
};

// Writes the edges of the line's units, from the left edge of the column, to `left` and `right`,
// which are the paragraph's and have an entry for each unit.
LinePlace PlaceLine(const ParagraphText& text, const FilledLine& line, const TabPlan& tabs,
                    const PlaceWish& wish, float* left, float* right);

}  // namespace quillmarch::host::layout
