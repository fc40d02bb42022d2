#include "host/layout/FillLines.h"

#include "host/layout/ScriptClass.h"

namespace quillmarch::host::layout {
namespace {

// Sums of floats must not break a line that fits exactly.
constexpr double kRounding = 0.02;

class Filler {
 public:
  Filler(const ParagraphText& text, const std::vector<bool>& mayBreak, const TabPlan& tabs,
         const LineRoom& room, bool hangingPunctuation)
      : text_(text), mayBreak_(mayBreak), tabs_(tabs), room_(room), hanging_(hangingPunctuation) {}

  FilledLine Next(std::size_t start, bool first) const {
    LineCursor cursor(tabs_, first ? room_.firstStart : room_.start);
    std::size_t size = text_.text.size();
    std::size_t lastBreak = start;
    bool holdsOne = false;
    for (std::size_t i = start; i < size; ++i) {
      char16_t unit = text_.text[i];
      if (unit == u'\v') return {start, i + 1, false};
      if (i > start && mayBreak_[i]) lastBreak = i;
      if (!text_.clusterStart[i]) continue;
      if (unit == u'\t') {
        cursor.Tab();
      } else {
        cursor.Add(static_cast<double>(text_.advances[i]), unit == u'.' || unit == u',');
        if (IsHangingBlank(unit)) continue;
      }
      bool full = room_.wrap && cursor.End() > room_.end + kRounding;
      if (full && !(hanging_ && holdsOne && IsHangingStop(unit))) {
        if (lastBreak > start) return {start, lastBreak, true};
        // A word wider than the line is cut where the line ends.
        if (holdsOne) return {start, i, true};
      }
      holdsOne = true;
    }
    return {start, size, false};
  }

 private:
  const ParagraphText& text_;
  const std::vector<bool>& mayBreak_;
  const TabPlan& tabs_;
  const LineRoom& room_;
  bool hanging_;
};

}  // namespace

std::vector<FilledLine> FillLines(const ParagraphText& text, const std::vector<bool>& mayBreak,
                                  const TabPlan& tabs, const LineRoom& room,
                                  bool hangingPunctuation) {
  Filler filler(text, mayBreak, tabs, room, hangingPunctuation);
  std::vector<FilledLine> lines;
  std::size_t start = 0;
  do {
    lines.push_back(filler.Next(start, lines.empty()));
    start = lines.back().end;
  } while (start < text.text.size());
  // After a line break at the end there is one more line, without text.
  if (!text.text.empty() && text.text.back() == u'\v') lines.push_back({start, start, false});
  return lines;
}

}  // namespace quillmarch::host::layout
