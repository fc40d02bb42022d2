#include "host/model/LayoutRecord.h"

#include <numbers>
#include <utility>

#include "host/geometry/TextRectangle.h"
#include "host/model/BulletNumbers.h"

namespace quillmarch::host::model {
namespace {

constexpr double kHundredths = 100.0;
constexpr double kEmuPerPoint = 12700.0;
constexpr double kUnitsPerRadian = 180.0 * 60000.0 / std::numbers::pi;

double Points(const std::optional<std::int64_t>& emu) {
  return static_cast<double>(emu.value_or(0)) / kEmuPerPoint;
}

layout::Spacing SpacingOf(const deck::TextSpacing& spacing) {
  return {spacing.points ? layout::Spacing::Unit::kPoints : layout::Spacing::Unit::kShare,
          spacing.value};
}

layout::LayoutRun RunOf(const deck::ShownPiece& piece, const deck::TextExtras& inherited,
                        const deck::BodyStyle& style) {
  const deck::CharProps& props = *piece.props;
  deck::TextExtras extras = *piece.extras;
  Inherit(extras, inherited);
  layout::LayoutRun run;
  run.text = piece.text;
  run.fonts = {deck::ShownFace(props.latin, style), deck::ShownFace(props.eastAsian, style),
               deck::ShownFace(props.complexScript, style), std::move(extras.symbol)};
  run.language = std::move(extras.language);
  run.size = props.size / kHundredths;
  run.spacing = extras.spacing.value_or(0.0);
  run.baseline = extras.baseline.value_or(0.0);
  run.bold = props.bold == 1;
  run.italic = props.italic == 1;
  // Nothing said means that all sizes are kerned, a 0 that none is.
  run.kerning = !extras.kernFrom || (*extras.kernFrom > 0 && run.size >= *extras.kernFrom);
  run.caps = static_cast<layout::Caps>(extras.caps.value_or(deck::TextExtras::Caps::kNone));
  return run;
}

layout::LayoutParagraph ParagraphOf(const deck::ShownParagraph& shown,
                                    const deck::ParagraphProps& props,
                                    const deck::TextExtras& inherited,
                                    const deck::BodyStyle& style) {
  using Side = deck::ParagraphProps::Side;
  layout::LayoutParagraph paragraph;
  paragraph.runs.reserve(shown.pieces.size());
  for (const deck::ShownPiece& piece : shown.pieces) {
    paragraph.runs.push_back(RunOf(piece, inherited, style));
  }
  paragraph.mark = RunOf(shown.mark, inherited, style);
  paragraph.rightToLeft = props.rightToLeft.value_or(false);
  paragraph.alignment = static_cast<layout::Alignment>(props.side.value_or(Side::kLeft));
  paragraph.hangingPunctuation = props.hangingPunctuation.value_or(true);
  paragraph.marginStart = props.marginLeft.value_or(0.0);
  paragraph.marginEnd = props.marginRight.value_or(0.0);
  paragraph.indent = props.indent.value_or(0.0);
  if (props.lineSpacing) paragraph.lineSpacing = SpacingOf(*props.lineSpacing);
  if (props.before) paragraph.before = SpacingOf(*props.before);
  if (props.after) paragraph.after = SpacingOf(*props.after);
  if (props.tabs) {
    for (const deck::TabMark& tab : *props.tabs) {
      paragraph.tabs.push_back({tab.position, static_cast<layout::TabAlignment>(tab.side)});
    }
  }
  if (props.bulletFont) paragraph.bullet.font = *props.bulletFont;
  if (props.bulletSize) paragraph.bullet.size = SpacingOf(*props.bulletSize);
  return paragraph;
}

}  // namespace

double TextTurn(deck::Deck& deck, const deck::ShapeAddress& address) {
  return static_cast<double>(*deck.Frame(address).turn) / kUnitsPerRadian;
}

deck::ShapeBox TextArea(deck::Deck& deck, const deck::ShapeAddress& address) {
  deck::ShapeBox box = deck.Box(address);
  deck::SlidePart* const part = deck.Page(address.page);
  if (part == nullptr || address.IsCell()) return box;
  const deck::ShapeBox inner =
      TextRectangle(part->names(), part->shapes().At(address.shape).node, box.width, box.height);
  const deck::ShapeBox area{box.left + inner.left, box.top + inner.top, inner.width, inner.height};
  if (!StandsAcross(TextTurn(deck, address))) return area;
  return {area.left + (area.width - area.height) / 2.0, area.top + (area.height - area.width) / 2.0,
          area.height, area.width};
}

layout::LayoutFrame LayoutRecord(deck::Deck& deck, const deck::ShapeAddress& address,
                                 deck::TextBody& text, const deck::ShapeBox& area,
                                 const layout::LayoutFrame* before) {
  layout::LayoutFrame frame;
  const deck::BodyStyle* const style = deck.Style(address, text);
  deck::SlidePart* const part = deck.Page(address.page);
  if (style == nullptr || part == nullptr) return frame;
  const deck::FrameProps props = deck.Frame(address);
  frame.width = area.width;
  frame.height = area.height;
  frame.insetLeft = Points(props.insetLeft);
  frame.insetTop = Points(props.insetTop);
  frame.insetRight = Points(props.insetRight);
  frame.insetBottom = Points(props.insetBottom);
  frame.wrap = *props.wrap;
  frame.anchor = static_cast<layout::Anchor>(*props.anchor);
  frame.anchorCenter = *props.anchorCenter;
  frame.columns = *props.columns;
  frame.columnSpacing = Points(props.columnSpacing);
  frame.direction = static_cast<layout::Direction>(*props.direction);
  frame.autofit = static_cast<layout::Autofit>(props.autofit->kind);
  frame.fontScale = props.autofit->Scale();
  frame.lineSpacingReduction =
      static_cast<double>(props.autofit->lineSpacingReduction) / deck::kWholeShare;

  if (before != nullptr) {
    frame.paragraphs = before->paragraphs;
    frame.defaultTab = before->defaultTab;
    return frame;
  }
  const deck::ParagraphLevels levels = deck.Paragraphs(address, text);
  BulletNumbers numbers;
  text.VisitParagraphs([&](const deck::ShownParagraph& shown) {
    deck::ParagraphProps own = deck::ParseParagraphProps(part->names(), shown.properties);
    Inherit(own, levels[shown.level]);
    if (frame.paragraphs.empty() && own.defaultTab && *own.defaultTab > 0) {
      frame.defaultTab = *own.defaultTab;
    }
    layout::LayoutParagraph paragraph = ParagraphOf(shown, own, levels[shown.level].text, *style);
    // A paragraph without text shows no bullet and is not counted.
    if (own.bullet && !shown.pieces.empty()) {
      paragraph.bullet.text = numbers.Next(*own.bullet, shown.level);
    }
    frame.paragraphs.push_back(std::move(paragraph));
  });
  return frame;
}

}  // namespace quillmarch::host::model
