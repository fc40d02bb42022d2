// Text frames of a deck: their properties and places, and the edits on them.
#include <cmath>

#include "host/deck/Deck.h"
#include "host/deck/FrameEdit.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
// Places closer than this are one: what a caller reads and puts back has gone through 32-bit
// floats.
constexpr double kSamePlace = 1e-4;

double Kept(double value, double old) {
  return std::fabs(value - old) < kSamePlace ? old : value;
}

bool SameBox(const ShapeBox& one, const ShapeBox& other) {
  return one.left == other.left && one.top == other.top && one.width == other.width &&
         one.height == other.height;
}

}  // namespace

FrameState* Deck::FrameOf(SlidePart& part, const ShapeAddress& address) {
  if (FrameState* const known = part.Frame(address.shape)) return known;
  const XmlNames& names = part.names();
  const pugi::xml_node shape = part.shapes().At(address.shape).node;
  FrameProps props = ParseFrameProps(names, names.Child(TextBodyOf(names, shape), kA, "bodyPr"));
  if (const std::optional<PlaceholderKey> key = PlaceholderOf(names, shape)) {
    const LayoutStyles& layout = LayoutOf(address.page);
    const PlaceholderStyle* const steps[] = {MatchInLayout(layout.placeholders, *key),
                                             MatchInMaster(layout.master->placeholders, *key)};
    for (const PlaceholderStyle* const step : steps) {
      if (step != nullptr) Inherit(props, step->frame);
    }
  }
  Inherit(props, DefaultFrame());
  return &part.AddFrame(address.shape, props);
}

FrameProps Deck::Frame(const ShapeAddress& address) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return DefaultFrame();
  if (!address.IsCell()) return FrameOf(*part, address)->now;
  FrameProps props;
  auto row = static_cast<std::uint32_t>(address.row);
  auto column = static_cast<std::uint32_t>(address.column);
  const TableGrid* const grid = part->Table(address.shape);
  if (grid != nullptr && grid->Has(row, column)) {
    grid->Origin(row, column);
    props = ParseCellFrame(part->names().Child(grid->Cell(row, column), kA, "tcPr"));
  }
  Inherit(props, DefaultFrame());
  return props;
}

bool Deck::PutFrame(const ShapeAddress& address, const FrameProps& changes) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.IsCell() || PartOf(address.page).empty()) return false;
  if (part->ShapeText(address.shape) == nullptr) return false;
  FrameState* const frame = FrameOf(*part, address);
  FrameProps now = changes;
  Inherit(now, frame->now);
  if (now == frame->now) return true;
  frame->now = now;
  frame->changed = true;
  part->TouchFrames();
  return true;
}

bool Deck::PutBox(const ShapeAddress& address, const ShapeBox& wanted) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.IsCell() || PartOf(address.page).empty()) return false;
  if (address.shape >= part->shapes().Count()) return false;
  const ShapeEntry& entry = part->shapes().At(address.shape);
  if (!TakesBox(part->names(), entry)) return false;
  const ShapeBox now = Box(address);
  ShapeBox box{Kept(wanted.left, now.left), Kept(wanted.top, now.top),
               Kept(wanted.width, now.width), Kept(wanted.height, now.height)};
  if (SameBox(box, now)) return true;

  FrameState* const frame = FrameOf(*part, address);
  const std::optional<ShapeBox> before = frame->moved;
  frame->moved.reset();
  const ShapeBox file = Box(address);
  box = {Kept(box.left, file.left), Kept(box.top, file.top), Kept(box.width, file.width),
         Kept(box.height, file.height)};
  frame->changed = true;
  part->TouchFrames();
  if (SameBox(box, file)) return true;

  std::vector<GroupScale> scales;
  for (std::uint32_t group = entry.parent; group != kNoShape;
       group = part->shapes().At(group).parent) {
    const std::optional<GroupScale> scale = ScaleOf(*part, group);
    if (!scale) continue;
    if (scale->outer.width == 0 || scale->outer.height == 0) {
      frame->moved = before;
      return false;
    }
    scales.push_back(*scale);
  }
  for (auto scale = scales.rbegin(); scale != scales.rend(); ++scale) {
    box.left = scale->inner.left + (box.left - scale->outer.left) / scale->Across();
    box.top = scale->inner.top + (box.top - scale->outer.top) / scale->Down();
    box.width /= scale->Across();
    box.height /= scale->Down();
  }
  frame->moved = box;
  return true;
}

double Deck::FontScale(const ShapeAddress& address) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return 1.0;
  if (!address.IsCell()) {
    if (const FrameState* const frame = part->Frame(address.shape)) {
      return frame->now.autofit->Scale();
    }
  }
  TextBody* const text = Text(address);
  const BodyStyle* const style = text == nullptr ? nullptr : Style(address, *text);
  return style == nullptr ? 1.0 : style->fontScale;
}

ParagraphLevels Deck::Paragraphs(const ShapeAddress& address, const TextBody& text) {
  ParagraphLevels levels;
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return levels;
  const XmlNames& names = part->names();
  const pugi::xml_node shape = part->shapes().At(address.shape).node;
  Inherit(levels, ParseParagraphLevels(names, names.Child(text.node(), kA, "lstStyle")));
  const std::optional<PlaceholderKey> key =
      address.IsCell() ? std::nullopt : PlaceholderOf(names, shape);
  if (key) {
    const LayoutStyles& layout = LayoutOf(address.page);
    const MasterStyles& master = *layout.master;
    const PlaceholderStyle* const steps[] = {MatchInLayout(layout.placeholders, *key),
                                             MatchInMaster(master.placeholders, *key)};
    for (const PlaceholderStyle* const step : steps) {
      if (step != nullptr) Inherit(levels, step->paragraphs);
    }
    Inherit(levels, MasterParagraphs(master, *key));
  }
  Inherit(levels, defaultParagraphs_);
  return levels;
}

Deck::FrameVersion Deck::Version(const ShapeAddress& address) {
  const Held* const held = HeldPage(address.page);
  const TextBody* const text = held == nullptr ? nullptr : Text(address);
  if (text == nullptr) return {};
  return {held->serial, text->Revision(), held->part->FramesRevision()};
}

bool Deck::NeedsFit(const ShapeAddress& address) {
  if (address.IsCell() || PartOf(address.page).empty()) return false;
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return false;
  const TextBody* const text = part->KnownText(address.shape);
  const FrameState* const frame = part->Frame(address.shape);
  const bool moved = frame != nullptr && frame->changed;
  const std::uint64_t seen = frame == nullptr ? 0 : frame->fitted;
  if (text == nullptr || (text->Revision() == seen && !moved)) return false;
  return FrameOf(*part, address)->now.autofit->kind != AutofitKind::kNone;
}

void Deck::SetFitted(const ShapeAddress& address) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr) return;
  FrameState* const frame = FrameOf(*part, address);
  frame->changed = false;
  if (const TextBody* const text = part->KnownText(address.shape)) {
    frame->fitted = text->Revision();
  }
}

}  // namespace quillmarch::host::deck
