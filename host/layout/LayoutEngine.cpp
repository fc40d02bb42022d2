#include "host/layout/LayoutEngine.h"

#include <algorithm>
#include <limits>

#include "host/layout/FillLines.h"
#include "host/layout/ParagraphText.h"
#include "host/layout/PlaceLine.h"
#include "host/layout/TabPlan.h"

namespace quillmarch::host::layout {
namespace {

// Spacing between paragraphs that is a share counts lines of this height, in sizes.
constexpr double kSpacingLine = 1.2;
// Line spacing is never reduced below this share.
constexpr double kLeastLineSpacing = 0.1;
constexpr double kRounding = 0.02;
// Of a longer text nothing is kept for the next one.
constexpr std::size_t kMostUnitsKept = 1u << 16;

double Points(const Spacing& spacing, double size) {
  return spacing.unit == Spacing::Unit::kPoints ? spacing.value
                                                : spacing.value * size * kSpacingLine;
}

// The text area before it is turned: insets by the sides that lines run along.
struct Area {
  double left, top, width, height;
};

Area AreaOf(const LayoutFrame& frame) {
  double across = frame.width - frame.insetLeft - frame.insetRight;
  double down = frame.height - frame.insetTop - frame.insetBottom;
  switch (frame.direction) {
    case Direction::kHorizontal:
      return {frame.insetLeft, frame.insetTop, across, down};
    case Direction::kClockwise:
    case Direction::kEastAsian:
      return {frame.insetTop, frame.insetRight, down, across};
    case Direction::kCounterclockwise:
      return {frame.insetBottom, frame.insetLeft, down, across};
    case Direction::kMongolian:
    case Direction::kStacked:
      return {frame.insetTop, frame.insetLeft, down, across};
  }
  return {};
}

}  // namespace

// A paragraph and all that does not depend on the room that it gets.
struct MeasuredParagraph {
  LayoutParagraph paragraph;
  Direction direction = Direction::kHorizontal;
  LineHeight lineHeight = LineHeight::kOfSize;
  double scale = 0.0;
  ParagraphText text;
  std::vector<bool> mayBreak;
  double bulletWidth = 0.0;

  bool IsOf(const LayoutParagraph& other, const LayoutFrame& frame, double wantedScale) const {
    return scale == wantedScale && direction == frame.direction && lineHeight == frame.lineHeight &&
           paragraph == other;
  }
};

namespace {

MeasuredParagraph Measure(const LayoutParagraph& paragraph, const LayoutFrame& frame, double scale,
                          Fonts fonts, LineBreaks& breaks) {
  MeasuredParagraph measured;
  measured.paragraph = paragraph;
  measured.direction = frame.direction;
  measured.lineHeight = frame.lineHeight;
  measured.scale = scale;
  measured.text = TakeApart(paragraph, frame.direction, scale, fonts);
  measured.mayBreak = breaks.Before(measured.text.text);
  if (!paragraph.bullet.text.empty() && !measured.text.text.empty()) {
    measured.bulletWidth = BulletWidth(paragraph.bullet, paragraph.runs.front(), scale, fonts);
  }
  return measured;
}

class Layouter {
 public:
  // `measured` are paragraphs of an earlier frame, and become those of this one.
  Layouter(const LayoutFrame& frame, Fonts fonts, LineBreaks& breaks,
           std::vector<MeasuredParagraph>& measured)
      : frame_(frame), fonts_(fonts), breaks_(breaks), measured_(measured), area_(AreaOf(frame)) {
    if (frame.autofit == Autofit::kTextToShape) {
      scale_ = frame.fontScale;
      reduction_ = frame.lineSpacingReduction;
    }
    columns_ = std::max(1, frame.columns);
    columnWidth_ = (area_.width - (columns_ - 1) * frame.columnSpacing) / columns_;
  }

  LayoutResult Do() {
    std::size_t length = 0;
    for (const LayoutParagraph& paragraph : frame_.paragraphs) {
      for (const LayoutRun& run : paragraph.runs) length += run.text.size();
      ++length;
    }
    out_.length = length > 0 ? length - 1 : 0;
    out_.unitLeft.assign(length, 0.0f);
    out_.unitRight.assign(length, 0.0f);
    for (std::size_t i = 0; i < frame_.paragraphs.size(); ++i) AddParagraph(i);
    Settle();
    return std::move(out_);
  }

 private:
  const MeasuredParagraph& MeasuredAt(std::size_t index) {
    const LayoutParagraph& paragraph = frame_.paragraphs[index];
    if (index < measured_.size()) {
      if (!measured_[index].IsOf(paragraph, frame_, scale_)) {
        measured_[index] = Measure(paragraph, frame_, scale_, fonts_, breaks_);
      }
    } else {
      measured_.push_back(Measure(paragraph, frame_, scale_, fonts_, breaks_));
    }
    return measured_[index];
  }

  void AddParagraph(std::size_t index) {
    const LayoutParagraph& paragraph = frame_.paragraphs[index];
    const MeasuredParagraph& measured = MeasuredAt(index);
    const ParagraphText& text = measured.text;
    TabPlan tabs(paragraph, frame_.defaultTab);
    LineRoom room;
    room.start = std::max(0.0, paragraph.marginStart);
    room.firstStart = std::max(0.0, paragraph.marginStart + paragraph.indent);
    room.end = columnWidth_ - paragraph.marginEnd;
    room.wrap = frame_.wrap;
    if (!paragraph.bullet.text.empty() && !text.text.empty()) {
      room.firstStart = std::max(room.firstStart + measured.bulletWidth, room.start);
    }
    // Between paragraphs both spacings count, at the top and the bottom neither.
    if (index > 0) y_ += Points(paragraph.before, text.largestSize);
    std::vector<FilledLine> lines =
        FillLines(text, measured.mayBreak, tabs, room, paragraph.hangingPunctuation);
    std::size_t piece = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
      PlaceWish wish{columnWidth_, i == 0 ? room.firstStart : room.start, room.end,
                     paragraph.alignment};
      LinePlace place = PlaceLine(text, lines[i], tabs, wish, out_.unitLeft.data() + unit_,
                                  out_.unitRight.data() + unit_);
      AddLine(index, paragraph, text, lines[i], place, piece);
      out_.neededWidth = std::max(out_.neededWidth, place.needed + paragraph.marginEnd);
    }
    unit_ += text.text.size();
    if (!lines.empty() && unit_ < out_.unitLeft.size()) {
      // The paragraph's mark is at the end of its last line and shows nothing.
      const LaidLine& last = out_.lines.back();
      out_.unitLeft[unit_] = out_.unitRight[unit_] = static_cast<float>(last.left + last.width);
    }
    ++unit_;
    y_ += Points(paragraph.after, text.largestSize);
  }

  // `piece` is the first piece that may reach into the line; moved on from line to line.
  void AddLine(std::size_t index, const LayoutParagraph& paragraph, const ParagraphText& text,
               const FilledLine& filled, const LinePlace& place, std::size_t& piece) {
    LaidLine line;
    line.paragraph = index;
    line.start = unit_ + filled.start;
    line.length = filled.end - filled.start;
    line.left = place.left;
    line.width = place.width;
    double ascent = 0.0;
    double descent = 0.0;
    while (piece < text.pieces.size() && text.pieces[piece].end <= filled.start) ++piece;
    bool measured = false;
    for (std::size_t i = piece; i < text.pieces.size() && text.pieces[i].start < filled.end; ++i) {
      // A line break's own font counts only where nothing else is in the line.
      if (text.pieces[i].kind == TextPiece::Kind::kLineBreak && measured) continue;
      ascent = std::max(ascent, text.pieces[i].ascent);
      descent = std::max(descent, text.pieces[i].descent);
      measured = true;
    }
    if (!measured) {
      ascent = text.markAscent;
      descent = text.markDescent;
    }
    double natural = ascent + descent;
    if (paragraph.lineSpacing.unit == Spacing::Unit::kPoints) {
      line.height = paragraph.lineSpacing.value;
    } else {
      line.height = natural * std::max(kLeastLineSpacing, paragraph.lineSpacing.value - reduction_);
    }
    // What spacing takes or gives, it takes or gives above the text, in the first line too.
    line.ascent = ascent + line.height - natural;
    if (column_ + 1 < columns_ && columnHasLines_ && y_ + line.height > area_.height + kRounding) {
      ++column_;
      y_ = 0.0;
      columnHasLines_ = false;
    }
    line.column = column_;
    line.top = y_;
    y_ += line.height;
    lowest_ = std::max(lowest_, y_);
    columnHasLines_ = true;
    double columnLeft = column_ * (columnWidth_ + frame_.columnSpacing);
    if (columnLeft != 0.0) {
      line.left += columnLeft;
      for (std::size_t i = line.start; i < line.start + line.length; ++i) {
        out_.unitLeft[i] += static_cast<float>(columnLeft);
        out_.unitRight[i] += static_cast<float>(columnLeft);
      }
    }
    out_.lines.push_back(line);
  }

  void Settle() {
    out_.originLeft = area_.left;
    out_.originTop = area_.top;
    out_.frameWidth = frame_.width;
    out_.frameHeight = frame_.height;
    out_.direction = frame_.direction;
    if (out_.lines.empty()) return;
    double left = std::numeric_limits<double>::max();
    double right = std::numeric_limits<double>::lowest();
    for (const LaidLine& line : out_.lines) {
      left = std::min(left, line.left);
      right = std::max(right, line.left + line.width);
    }
    out_.width = right - left;
    out_.height = lowest_;
    double sideways = frame_.anchorCenter ? (area_.width - out_.width) / 2.0 - left : 0.0;
    double down = 0.0;
    if (frame_.anchor == Anchor::kMiddle) down = (area_.height - out_.height) / 2.0;
    if (frame_.anchor == Anchor::kBottom) down = area_.height - out_.height;
    out_.originLeft += sideways;
    out_.originTop += down;
  }

  const LayoutFrame& frame_;
  Fonts fonts_;
  LineBreaks& breaks_;
  std::vector<MeasuredParagraph>& measured_;
  Area area_;
  double scale_ = 1.0;
  double reduction_ = 0.0;
  int columns_ = 1;
  double columnWidth_ = 0.0;
  LayoutResult out_;
  std::size_t unit_ = 0;  // where the paragraph begins
  double y_ = 0.0;
  double lowest_ = 0.0;
  int column_ = 0;
  bool columnHasLines_ = false;
};

}  // namespace

LayoutEngine::LayoutEngine() = default;
LayoutEngine::~LayoutEngine() = default;

LayoutResult LayoutEngine::LayOut(const LayoutFrame& frame) {
  LayoutResult laid =
      Layouter(frame, Fonts{book_, words_, frame.lineHeight}, breaks_, measured_).Do();
  measured_.resize(std::min(measured_.size(), frame.paragraphs.size()));
  if (laid.length > kMostUnitsKept) measured_.clear();
  return laid;
}

}  // namespace quillmarch::host::layout
