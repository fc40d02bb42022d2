// Frames for the layout's tests. The standard font has one width for all characters, so that
// expected places can be counted: 10 points make kCell a character, and a line is 12 points high.
#pragma once

#include <string>
#include <vector>

#include "host/layout/LayoutEngine.h"

namespace quillmarch::host::layout {

inline constexpr double kCell = 10.0 * 1229.0 / 2048.0;  // Liberation Mono's advance
inline constexpr double kLine = 12.0;
inline constexpr double kNear = 0.01;

inline LayoutRun Piece(std::u16string text, double size = 10.0) {
  LayoutRun run;
  run.text = std::move(text);
  run.size = size;
  run.fonts = {"Courier New", "Noto Sans CJK SC", "Courier New", "Courier New"};
  return run;
}

inline LayoutParagraph Paragraph(std::u16string text, double size = 10.0) {
  LayoutParagraph paragraph;
  paragraph.mark = Piece({}, size);
  if (!text.empty()) paragraph.runs.push_back(Piece(std::move(text), size));
  return paragraph;
}

// A frame without insets, `cells` characters wide.
inline LayoutFrame Frame(double cells, std::vector<LayoutParagraph> paragraphs) {
  LayoutFrame frame;
  frame.width = cells * kCell;
  frame.height = 200.0;
  frame.insetLeft = frame.insetTop = frame.insetRight = frame.insetBottom = 0.0;
  frame.defaultTab = 10 * kCell;
  frame.paragraphs = std::move(paragraphs);
  return frame;
}

inline LayoutFrame Frame(double cells, std::u16string text) {
  return Frame(cells, std::vector<LayoutParagraph>{Paragraph(std::move(text))});
}

// The text of each line, with its blanks and line break, without CR.
inline std::vector<std::u16string> Lines(const LayoutFrame& frame, const LayoutResult& laid) {
  std::u16string text;
  for (std::size_t i = 0; i < frame.paragraphs.size(); ++i) {
    if (i > 0) text += u'\r';
    for (const LayoutRun& run : frame.paragraphs[i].runs) text += run.text;
  }
  std::vector<std::u16string> lines;
  for (const LaidLine& line : laid.lines) lines.push_back(text.substr(line.start, line.length));
  return lines;
}

inline std::vector<std::u16string> Lines(const LayoutFrame& frame) {
  LayoutEngine layout;
  return Lines(frame, layout.LayOut(frame));
}

inline LayoutResult LaidOut(const LayoutFrame& frame) {
  LayoutEngine layout;
  return layout.LayOut(frame);
}

}  // namespace quillmarch::host::layout
