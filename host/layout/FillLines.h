// Divides a paragraph's text into lines.
#pragma once

#include <cstddef>
#include <vector>

#include "host/layout/ParagraphText.h"
#include "host/layout/TabPlan.h"

namespace quillmarch::host::layout {

struct FilledLine {
  std::size_t start = 0;
  std::size_t end = 0;   // after the hanging spaces and the line break
  bool wrapped = false;  // the text goes on because the line was full
};

// All from the edge where lines begin, in points.
struct LineRoom {
  double firstStart = 0.0;
  double start = 0.0;
  double end = 0.0;
  bool wrap = true;
};

// At least one line. Every line holds at least one cluster, however narrow the room. `mayBreak`
// has an entry for each unit: whether a line may begin with it. Linear in the text.
std::vector<FilledLine> FillLines(const ParagraphText& text, const std::vector<bool>& mayBreak,
                                  const TabPlan& tabs, const LineRoom& room,
                                  bool hangingPunctuation);

}  // namespace quillmarch::host::layout
