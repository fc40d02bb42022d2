// What a user selects in the active window; what no user could select is an error.
#include <algorithm>

#include "host/deck/XmlNames.h"
#include "host/model/Host.h"
#include "host/model/HostState.h"

namespace quillmarch::host {

namespace {

using model::OpenDeck;
using model::Selected;
using model::SelectionType;

Error NoSlide(const OpenDeck& open, std::int32_t slide) {
  const std::uint32_t count = open.deck->SlideCount();
  return {ErrorCode::kNotFound, "there is no slide " + std::to_string(slide) + "; the deck has " +
                                    std::to_string(count) + (count == 1 ? " slide" : " slides")};
}

Error Unfit(std::string words) {
  return {ErrorCode::kBadArgument, std::move(words)};
}

bool HasSlide(const OpenDeck& open, std::int32_t slide) {
  return slide >= 1 && static_cast<std::uint32_t>(slide) <= open.deck->SlideCount();
}

// As the command line writes it.
std::string Shown(const ShapeKey& key) {
  if (!key.name.empty()) return "\"" + key.name + "\"";
  std::string text = "#";
  for (const std::int32_t index : key.path) {
    if (text.size() > 1) text += '/';
    text += std::to_string(index);
  }
  return text;
}

std::string_view NameOf(const deck::SlidePart& part, std::uint32_t shape) {
  return deck::ShapeProperties(part.names(), part.shapes().At(shape).node)
      .attribute("name")
      .value();
}

struct Found {
  std::uint32_t shape = deck::kNoShape;
  std::uint32_t group = deck::kNoShape;  // the outermost one that it lies in
};

std::span<const std::uint32_t> MembersOf(const deck::ShapeTree& shapes, std::uint32_t group,
                                         bool flat) {
  const deck::ShapeEntry& entry = shapes.At(group);
  if (entry.kind != deck::ShapeKind::kGroup) return {};
  return flat ? shapes.Leaves(entry) : shapes.Children(entry);
}

Found FindByPath(const deck::ShapeTree& shapes, const std::vector<std::int32_t>& path, bool flat) {
  Found found;
  std::span<const std::uint32_t> level = shapes.TopLevel();
  for (std::size_t i = 0; i < path.size(); ++i) {
    if (path[i] < 1 || static_cast<std::size_t>(path[i]) > level.size()) return {};
    if (i == 1) found.group = found.shape;
    found.shape = level[static_cast<std::size_t>(path[i]) - 1];
    level = MembersOf(shapes, found.shape, flat);
  }
  return found;
}

// Top level first, so that a name means what the host's own look-up by name means.
Found FindByName(const deck::SlidePart& part, const std::string& name) {
  const deck::ShapeTree& shapes = part.shapes();
  for (const std::uint32_t shape : shapes.TopLevel()) {
    if (NameOf(part, shape) == name) return {shape, deck::kNoShape};
  }
  for (const std::uint32_t group : shapes.TopLevel()) {
    for (const std::uint32_t leaf : MembersOf(shapes, group, true)) {
      if (NameOf(part, leaf) == name) return {leaf, group};
    }
  }
  return {};
}

Result<deck::SlidePart*> SlideToSelectOn(const OpenDeck& open, std::int32_t slide) {
  if (!HasSlide(open, slide)) return NoSlide(open, slide);
  deck::SlidePart* const part = open.deck->Page({static_cast<std::uint32_t>(slide) - 1, false});
  if (part != nullptr) return part;
  return Error{ErrorCode::kDamaged, "slide " + std::to_string(slide) + " can't be read"};
}

Result<Found> FindShapeKey(const deck::SlidePart& part, bool flat, std::int32_t slide,
                           const ShapeKey& key) {
  const Found found =
      key.name.empty() ? FindByPath(part.shapes(), key.path, flat) : FindByName(part, key.name);
  if (found.shape != deck::kNoShape) return found;
  return Error{ErrorCode::kNotFound,
               "there is no shape " + Shown(key) + " on slide " + std::to_string(slide)};
}

void Select(OpenDeck& open, Selected selected, std::uint32_t shown) {
  open.shown = shown;
  open.selected = std::move(selected);
}

bool CutsPair(const Wide& text, std::size_t at) {
  return at > 0 && at < text.size() && text[at - 1] >= 0xD800 && text[at - 1] <= 0xDBFF &&
         text[at] >= 0xDC00 && text[at] <= 0xDFFF;
}

Error NoDeck() {
  return {ErrorCode::kNotFound, "no presentation is open"};
}

}  // namespace

Result<void> Host::SelectSlides(const std::vector<std::int32_t>& slides) {
  OpenDeck* const open = state_->session->Active();
  if (open == nullptr) return NoDeck();
  if (slides.empty()) return Unfit("no slide is named");
  Selected selected;
  selected.type = SelectionType::kSlides;
  for (const std::int32_t slide : slides) {
    if (!HasSlide(*open, slide)) return NoSlide(*open, slide);
    const std::uint32_t index = static_cast<std::uint32_t>(slide) - 1;
    const bool known =
        std::find(selected.slides.begin(), selected.slides.end(), index) != selected.slides.end();
    if (!known) selected.slides.push_back(index);
  }
  const std::uint32_t shown = selected.slides.back();
  Select(*open, std::move(selected), shown);
  return {};
}

Result<void> Host::SelectShapes(std::int32_t slide, const std::vector<ShapeKey>& shapes) {
  OpenDeck* const open = state_->session->Active();
  if (open == nullptr) return NoDeck();
  if (shapes.empty()) return Unfit("no shape is named");
  const Result<deck::SlidePart*> part = SlideToSelectOn(*open, slide);
  if (!part) return part.error();
  Selected selected;
  selected.type = SelectionType::kShapes;
  selected.page = {static_cast<std::uint32_t>(slide) - 1, false};
  for (const ShapeKey& key : shapes) {
    const Result<Found> found =
        FindShapeKey(**part, state_->session->personality.flatGroups, slide, key);
    if (!found) return found.error();
    if (!selected.shapes.empty() && found->group != selected.group) {
      return Unfit("shapes within a group can be selected only with others of the same group");
    }
    selected.group = found->group;
    const bool known = std::find(selected.shapes.begin(), selected.shapes.end(), found->shape) !=
                       selected.shapes.end();
    if (!known) selected.shapes.push_back(found->shape);
  }
  Select(*open, std::move(selected), static_cast<std::uint32_t>(slide) - 1);
  return {};
}

Result<void> Host::SelectText(std::int32_t slide, const ShapeKey& shape, std::int32_t start,
                              std::int32_t length) {
  OpenDeck* const open = state_->session->Active();
  if (open == nullptr) return NoDeck();
  const Result<deck::SlidePart*> part = SlideToSelectOn(*open, slide);
  if (!part) return part.error();
  const Result<Found> found =
      FindShapeKey(**part, state_->session->personality.flatGroups, slide, shape);
  if (!found) return found.error();

  Selected selected;
  selected.type = SelectionType::kText;
  selected.page = {static_cast<std::uint32_t>(slide) - 1, false};
  selected.shapes = {found->shape};
  deck::TextBody* const body = open->deck->Text({selected.page, found->shape});
  const std::size_t units = body == nullptr ? 0 : body->Length();
  const std::string named = "shape " + Shown(shape) + " on slide " + std::to_string(slide);
  if (units == 0) return Unfit(named + " has no text");
  const auto first = static_cast<std::int64_t>(start) - 1;
  if (start < 1 || length < 1 || first + length > static_cast<std::int64_t>(units)) {
    return Unfit(named + " has " + std::to_string(units) + " characters, counted from 1");
  }
  selected.text = {static_cast<std::size_t>(first), static_cast<std::size_t>(length)};
  const Wide text = body->Text({0, units});
  if (CutsPair(text, selected.text.start) ||
      CutsPair(text, selected.text.start + selected.text.length)) {
    return Unfit("the piece of " + named + " begins or ends within a character");
  }
  Select(*open, std::move(selected), static_cast<std::uint32_t>(slide) - 1);
  return {};
}

void Host::ClearSelection() {
  if (OpenDeck* const open = state_->session->Active()) open->selected = {};
}

}  // namespace quillmarch::host
