#include "host/model/FrameMeasure.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "host/geometry/TextRectangle.h"
#include "host/layout/FitText.h"
#include "host/model/LayoutRecord.h"

namespace quillmarch::host::model {
namespace {

// Who fits a text looks at one frame, with wrap on and off.
constexpr std::size_t kKeptLayouts = 4;
constexpr deck::TextSpan kNothing{std::numeric_limits<std::size_t>::max(), 0};
constexpr double kDegrees = 60000.0;  // of a file's angles

bool SamePlace(const deck::ShapeAddress& one, const deck::ShapeAddress& other) {
  return one.page == other.page && one.shape == other.shape && one.row == other.row &&
         one.column == other.column;
}

double RotationOf(deck::Deck& deck, const deck::ShapeAddress& address) {
  const deck::SlidePart* const part = deck.Page(address.page);
  const deck::ShapeEntry& entry = part->shapes().At(address.shape);
  const pugi::xml_node transform = deck::ShapeTransform(part->names(), entry.node, entry.kind);
  return static_cast<double>(deck::WholeAttribute(transform, "rot", 0)) / kDegrees *
         std::numbers::pi / 180.0;
}

// How much of a side's growth goes to its beginning: none, half or all of it.
double ShareAtBegin(const layout::LayoutFrame& frame, bool along) {
  if (!along) {
    double share = frame.anchor == layout::Anchor::kTop      ? 0.0
                   : frame.anchor == layout::Anchor::kMiddle ? 0.5
                                                             : 1.0;
    // Turned clockwise, the first line is at the right.
    const bool fromRight = frame.direction == layout::Direction::kClockwise ||
                           frame.direction == layout::Direction::kEastAsian;
    return fromRight ? 1.0 - share : share;
  }
  if (frame.anchorCenter || frame.paragraphs.empty()) return 0.5;
  double share = 0.0;
  switch (frame.paragraphs.front().alignment) {
    case layout::Alignment::kCenter:
      share = 0.5;
      break;
    case layout::Alignment::kRight:
      share = 1.0;
      break;
    case layout::Alignment::kLeft:
    case layout::Alignment::kJustify:
      break;
  }
  return frame.direction == layout::Direction::kCounterclockwise ? 1.0 - share : share;
}

}  // namespace

struct FrameMeasure::Entry {
  const deck::Deck* deck = nullptr;
  deck::ShapeAddress address;
  deck::Deck::FrameVersion version;
  deck::ShapeBox area;
  double turn = 0;
  layout::LayoutFrame frame;
  layout::LayoutResult text;
  mutable deck::TextSpan bounded = kNothing;  // what `bounds` is the box of
  mutable bool boundedToTheEnd = false;
  mutable layout::Box bounds;
};

FrameMeasure::FrameMeasure() = default;
FrameMeasure::~FrameMeasure() = default;

layout::LayoutEngine& FrameMeasure::Layout() {
  if (!layout_) layout_ = std::make_unique<layout::LayoutEngine>();
  return *layout_;
}

const FrameMeasure::Entry* FrameMeasure::Laid(deck::Deck& deck, const deck::ShapeAddress& address) {
  deck::TextBody* const text = deck.Text(address);
  if (text == nullptr) return nullptr;
  const deck::Deck::FrameVersion version = deck.Version(address);
  const layout::LayoutFrame* before = nullptr;
  for (const Entry& entry : entries_) {
    if (entry.deck != &deck || !SamePlace(entry.address, address)) continue;
    if (entry.version == version) return &entry;
    const bool sameText = entry.version.page == version.page && entry.version.text == version.text;
    if (sameText) before = &entry.frame;
  }
  const deck::ShapeBox area = TextArea(deck, address);
  layout::LayoutFrame frame = LayoutRecord(deck, address, *text, area, before);
  Entry* found = nullptr;
  for (Entry& entry : entries_) {
    if (entry.frame == frame) found = &entry;
  }
  if (found == nullptr) {
    if (entries_.size() < kKeptLayouts) {
      found = &entries_.emplace_back();
    } else {
      found = &entries_[next_];
      next_ = (next_ + 1) % kKeptLayouts;
    }
    found->text = Layout().LayOut(frame);
    found->bounded = kNothing;
    found->frame = std::move(frame);
    ++layouts_;
  }
  found->deck = &deck;
  found->address = address;
  found->version = version;
  found->area = area;
  found->turn = TextTurn(deck, address);
  return found;
}

bool FrameMeasure::Bounds(deck::Deck& deck, const deck::ShapeAddress& address, deck::TextSpan span,
                          bool toTheEnd, deck::ShapeBox& out) {
  Fit(deck, address);
  const Entry* const entry = Laid(deck, address);
  if (entry == nullptr) return false;
  // Its sides are asked for one after the other.
  if (entry->bounded.start != span.start || entry->bounded.length != span.length ||
      entry->boundedToTheEnd != toTheEnd) {
    entry->bounds = entry->text.Bounds(span.start, span.length, toTheEnd);
    entry->bounded = span;
    entry->boundedToTheEnd = toTheEnd;
  }
  const layout::Box& box = entry->bounds;
  out =
      TurnedAround({entry->area.left + box.left, entry->area.top + box.top, box.width, box.height},
                   entry->area, entry->turn);
  return true;
}

void FrameMeasure::GrowShape(deck::Deck& deck, const deck::ShapeAddress& address) {
  if (!deck.NeedsFit(address)) return;
  if (deck.Frame(address).autofit->kind == deck::AutofitKind::kShapeToText) {
    FitShape(deck, address);
  }
}

void FrameMeasure::Fit(deck::Deck& deck, const deck::ShapeAddress& address) {
  if (!deck.NeedsFit(address)) return;
  if (deck.Frame(address).autofit->kind == deck::AutofitKind::kShapeToText) {
    FitShape(deck, address);
  } else {
    FitText(deck, address);
  }
}

void FrameMeasure::FitShape(deck::Deck& deck, const deck::ShapeAddress& address) {
  const Entry* const entry = Laid(deck, address);
  if (entry == nullptr) return;
  layout::FrameSize wanted = layout::FitShapeToText(entry->frame, entry->text);
  const bool across = StandsAcross(entry->turn);
  if (across) std::swap(wanted.width, wanted.height);
  const deck::SlidePart* const part = deck.Page(address.page);
  const deck::ShapeBox now = deck.Box(address);
  const deck::ShapeBox size = ShapeAround(part->names(), part->shapes().At(address.shape).node, now,
                                          {0, 0, wanted.width, wanted.height});
  const bool turned = entry->frame.direction != layout::Direction::kHorizontal;
  double wider = size.width - now.width;
  double taller = size.height - now.height;
  if (across) std::swap(wider, taller);
  // The middle moves where the growth is not the same on both sides, and with the turns of the
  // shape and of the text in it.
  const double aside = wider * (0.5 - ShareAtBegin(entry->frame, !turned));
  const double down = taller * (0.5 - ShareAtBegin(entry->frame, turned));
  const double angle = RotationOf(deck, address) + entry->turn;
  const double middleX =
      now.left + now.width / 2.0 + aside * std::cos(angle) - down * std::sin(angle);
  const double middleY =
      now.top + now.height / 2.0 + aside * std::sin(angle) + down * std::cos(angle);
  deck.PutBox(address,
              {middleX - size.width / 2.0, middleY - size.height / 2.0, size.width, size.height});
  deck.SetFitted(address);
}

void FrameMeasure::FitText(deck::Deck& deck, const deck::ShapeAddress& address) {
  deck::TextBody* const text = deck.Text(address);
  const deck::SlidePart* const part = deck.Page(address.page);
  if (text == nullptr) return;
  const auto placeholder =
      deck::PlaceholderOf(part->names(), part->shapes().At(address.shape).node);
  const bool title = placeholder && deck::IsTitle(placeholder->type);
  const layout::LayoutFrame frame = LayoutRecord(deck, address, *text, TextArea(deck, address));
  const layout::TextFit found = layout::FitTextToShape(
      Layout(), frame, title ? layout::FitSteps::kTitle : layout::FitSteps::kBody);
  deck::Autofit fit;
  fit.kind = deck::AutofitKind::kTextToShape;
  fit.fontScale = static_cast<std::int32_t>(std::lround(found.fontScale * deck::kWholeShare));
  fit.lineSpacingReduction =
      static_cast<std::int32_t>(std::lround(found.lineSpacingReduction * deck::kWholeShare));
  deck::FrameProps change;
  change.autofit = fit;
  deck.PutFrame(address, change);
  deck.SetFitted(address);
}

}  // namespace quillmarch::host::model
