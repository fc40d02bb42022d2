#include "host/layout/LayoutResult.h"

#include <algorithm>
#include <limits>

namespace quillmarch::host::layout {
namespace {

Box ToFrame(const LayoutResult& text, double left, double top, double right, double bottom) {
  left += text.originLeft;
  right += text.originLeft;
  top += text.originTop;
  bottom += text.originTop;
  switch (text.direction) {
    case Direction::kHorizontal:
      return {left, top, right - left, bottom - top};
    case Direction::kClockwise:
    case Direction::kEastAsian:
      return {text.frameWidth - bottom, left, bottom - top, right - left};
    case Direction::kCounterclockwise:
      return {top, text.frameHeight - right, bottom - top, right - left};
    case Direction::kMongolian:
    case Direction::kStacked:
      return {top, left, bottom - top, right - left};
  }
  return {};
}

}  // namespace

std::size_t LayoutResult::LineAt(std::size_t position) const {
  if (lines.empty()) return 0;
  auto after =
      std::upper_bound(lines.begin(), lines.end(), position,
                       [](std::size_t at, const LaidLine& line) { return at < line.start; });
  return after == lines.begin() ? 0 : static_cast<std::size_t>(after - lines.begin()) - 1;
}

Box LayoutResult::Bounds(std::size_t start, std::size_t count, bool toTheEnd) const {
  if (lines.empty()) return ToFrame(*this, 0, 0, 0, 0);
  start = std::min(start, length);
  std::size_t end = start + std::min(count, length - start);
  double left = std::numeric_limits<double>::max();
  double right = std::numeric_limits<double>::lowest();
  double top = left;
  double bottom = right;
  for (std::size_t i = LineAt(start); i < lines.size(); ++i) {
    const LaidLine& line = lines[i];
    const bool behind = i > LineAt(start) && line.start >= end;
    if (behind && !(toTheEnd && i + 1 == lines.size())) break;
    top = std::min(top, line.top);
    bottom = std::max(bottom, line.top + line.height);
    if (behind) break;
    std::size_t from = std::max(start, line.start);
    std::size_t to = std::min(end, line.start + line.length);
    for (std::size_t unit = from; unit < to; ++unit) {
      left = std::min(left, static_cast<double>(unitLeft[unit]));
      right = std::max(right, static_cast<double>(unitRight[unit]));
    }
    if (from >= to) {
      double place = from < line.start + line.length ? static_cast<double>(unitLeft[from])
                                                     : line.left + line.width;
      left = std::min(left, place);
      right = std::max(right, place);
    }
  }
  return ToFrame(*this, left, top, right, bottom);
}

}  // namespace quillmarch::host::layout
