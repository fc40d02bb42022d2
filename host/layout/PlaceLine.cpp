#include "host/layout/PlaceLine.h"

#include <algorithm>

#include "host/layout/ScriptClass.h"

namespace quillmarch::host::layout {
namespace {

// Units of one level, in the order of the text.
struct Stretch {
  std::size_t start;
  std::size_t end;
  std::uint8_t level;
};

class Placer {
 public:
  Placer(const ParagraphText& text, const FilledLine& line, const TabPlan& tabs,
         const PlaceWish& wish, float* left, float* right)
      : text_(text),
        line_(line),
        wish_(wish),
        left_(left),
        right_(right),
        cursor_(tabs, wish.start),
        rightToLeft_(text.level % 2 == 1) {}

  LinePlace Do() {
    seenEnd_ = line_.end;
    while (seenEnd_ > line_.start && text_.text[seenEnd_ - 1] == u'\v') --seenEnd_;
    // Blanks at a wrapped end hang over the edge; those at a paragraph's end are text.
    while (line_.wrapped && seenEnd_ > line_.start && IsHangingBlank(text_.text[seenEnd_ - 1])) {
      --seenEnd_;
    }
    double end = wish_.start;
    std::size_t segment = line_.start;
    for (std::size_t i = line_.start; i <= seenEnd_; ++i) {
      bool tab = i < seenEnd_ && text_.text[i] == u'\t';
      if (i == seenEnd_ || tab) {
        PlaceSegment(segment, i, cursor_.Begin());
        end = cursor_.End();
        segment = i + 1;
      }
      if (tab) {
        cursor_.Tab();
        SetUnit(i, end, cursor_.Begin());
      } else if (i < seenEnd_) {
        cursor_.Add(static_cast<double>(text_.advances[i]),
                    text_.text[i] == u'.' || text_.text[i] == u',');
      }
    }
    for (std::size_t i = seenEnd_; i < line_.end; ++i) SetUnit(i, end, end);
    return Align(end);
  }

 private:
  // From places counted from the edge where lines begin to ones from the left.
  void SetUnit(std::size_t unit, double from, double to) {
    if (rightToLeft_) {
      double mirrored = wish_.columnWidth - to;
      to = wish_.columnWidth - from;
      from = mirrored;
    }
    left_[unit] = static_cast<float>(from);
    right_[unit] = static_cast<float>(to);
  }

  void PlaceSegment(std::size_t from, std::size_t to, double begin) {
    if (from >= to) return;
    double width = 0.0;
    for (std::size_t i = from; i < to; ++i) width += static_cast<double>(text_.advances[i]);
    double x = rightToLeft_ ? wish_.columnWidth - begin - width : begin;
    for (const Stretch& stretch : Ordered(from, to)) {
      double stretchWidth = 0.0;
      for (std::size_t i = stretch.start; i < stretch.end; ++i) {
        stretchWidth += static_cast<double>(text_.advances[i]);
      }
      double place = stretch.level % 2 == 1 ? x + stretchWidth : x;
      for (std::size_t i = stretch.start; i < stretch.end; ++i) {
        auto advance = static_cast<double>(text_.advances[i]);
        double next = stretch.level % 2 == 1 ? place - advance : place + advance;
        left_[i] = static_cast<float>(std::min(place, next));
        right_[i] = static_cast<float>(std::max(place, next));
        place = next;
      }
      x += stretchWidth;
    }
  }

  // The stretches from left to right.
  std::vector<Stretch> Ordered(std::size_t from, std::size_t to) const {
    if (!text_.turns) return {{from, to, text_.level}};
    std::vector<Stretch> stretches;
    std::uint8_t highest = text_.level;
    auto piece = std::upper_bound(
        text_.pieces.begin(), text_.pieces.end(), from,
        [](std::size_t at, const TextPiece& candidate) { return at < candidate.end; });
    for (; piece != text_.pieces.end() && piece->start < to; ++piece) {
      std::size_t start = std::max(piece->start, from);
      std::size_t end = std::min(piece->end, to);
      highest = std::max(highest, piece->level);
      if (!stretches.empty() && stretches.back().level == piece->level) {
        stretches.back().end = end;
      } else {
        stretches.push_back({start, end, piece->level});
      }
    }
    for (std::uint8_t level = highest; level > 0; --level) {
      for (std::size_t i = 0; i < stretches.size(); ++i) {
        std::size_t end = i;
        while (end < stretches.size() && stretches[end].level >= level) ++end;
        std::reverse(stretches.begin() + static_cast<std::ptrdiff_t>(i),
                     stretches.begin() + static_cast<std::ptrdiff_t>(end));
        if (end > i) i = end;
      }
    }
    return stretches;
  }

  LinePlace Align(double end) {
    double width = end - wish_.start;
    double areaLeft = rightToLeft_ ? wish_.columnWidth - wish_.end : wish_.start;
    double areaRight = rightToLeft_ ? wish_.columnWidth - wish_.start : wish_.end;
    double stands = rightToLeft_ ? wish_.columnWidth - end : wish_.start;
    double place = stands;
    switch (wish_.alignment) {
      case Alignment::kLeft:
        place = areaLeft;
        break;
      case Alignment::kCenter:
        place = (areaLeft + areaRight - width) / 2.0;
        break;
      case Alignment::kRight:
        place = areaRight - width;
        break;
      case Alignment::kJustify:
        width = Justify(end, width);
        place = rightToLeft_ ? areaRight - width : areaLeft;
        stands = place;
        break;
    }
    auto shift = static_cast<float>(place - stands);
    if (shift != 0.0f) {
      for (std::size_t i = line_.start; i < line_.end; ++i) {
        left_[i] += shift;
        right_[i] += shift;
      }
    }
    return {place, width, end};
  }

  // Stretches the spaces of a wrapped line up to the edge; returns the new width.
  double Justify(double end, double width) {
    double slack = wish_.end - end;
    std::vector<std::size_t> units;
    std::size_t blanks = 0;
    for (std::size_t i = line_.start; i < seenEnd_; ++i) {
      // Text after a tab goes where the tab leads.
      if (text_.text[i] == u'\t') return width;
      if (text_.text[i] == u' ') ++blanks;
      units.push_back(i);
    }
    if (!line_.wrapped || slack <= 0.0 || blanks == 0) return width;
    std::stable_sort(units.begin(), units.end(),
                     [this](std::size_t a, std::size_t b) { return left_[a] < left_[b]; });
    double share = slack / static_cast<double>(blanks);
    double moved = rightToLeft_ ? -slack : 0.0;
    for (std::size_t unit : units) {
      left_[unit] = static_cast<float>(static_cast<double>(left_[unit]) + moved);
      if (text_.text[unit] == u' ') moved += share;
      right_[unit] = static_cast<float>(static_cast<double>(right_[unit]) + moved);
    }
    return width + slack;
  }

  const ParagraphText& text_;
  const FilledLine& line_;
  const PlaceWish& wish_;
  float* left_;
  float* right_;
  LineCursor cursor_;
  bool rightToLeft_;
  std::size_t seenEnd_ = 0;
};

}  // namespace

LinePlace PlaceLine(const ParagraphText& text, const FilledLine& line, const TabPlan& tabs,
                    const PlaceWish& wish, float* left, float* right) {
  return Placer(text, line, tabs, wish, left, right).Do();
}

}  // namespace quillmarch::host::layout
