// What a text frame of a deck inherits, and where it lies.
#include <algorithm>

#include "host/deck/Deck.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr std::int32_t kDefaultSize = 1800;  // hundredths of a point
constexpr double kEmuPerPoint = 12700.0;
// A layout has a handful of placeholders; a file that invents more of them gains nothing.
constexpr std::size_t kMostPlainBodies = 256;
constexpr std::size_t kMostPlainCells = 32;

// The defaults when nothing is set anywhere.
CharProps LastResort() {
  CharProps props;
  props.size = kDefaultSize;
  props.bold = props.italic = props.underline = 0;
  props.color.kind = ColorSpec::Kind::kScheme;
  props.color.slot = SchemeSlot::kText1;
  props.latin = "+mn-lt";
  props.eastAsian = "+mn-ea";
  props.complexScript = "+mn-cs";
  return props;
}

// Colour and theme font that a shape's style gives its text.
CharProps FontReference(const XmlNames& names, pugi::xml_node shape) {
  CharProps props;
  const pugi::xml_node reference = names.Child(names.Child(shape, kP, "style"), kA, "fontRef");
  if (!reference) return props;
  for (const pugi::xml_node child : reference.children()) {
    const ColorSpec color = ParseColor(names, child);
    if (color.kind != ColorSpec::Kind::kUnset) props.color = color;
  }
  const std::string_view index = reference.attribute("idx").value();
  if (index == "major" || index == "minor") {
    const std::string stem = index == "major" ? "+mj-" : "+mn-";
    props.latin = stem + "lt";
    props.eastAsian = stem + "ea";
    props.complexScript = stem + "cs";
  }
  return props;
}

void InheritAll(LevelProps& levels, const CharProps& props) {
  for (CharProps& level : levels) Inherit(level, props);
}

bool HasChildren(pugi::xml_node node) {
  return static_cast<bool>(node.first_child());
}

}  // namespace

const std::string& ShownFace(const std::string& face, const BodyStyle& style) {
  struct Row {
    std::string_view word;
    std::string BodyStyle::*font;
  };
  constexpr Row kRows[] = {
      {"+mj-lt", &BodyStyle::majorLatin},     {"+mj-ea", &BodyStyle::majorEastAsian},
      {"+mj-cs", &BodyStyle::majorComplex},   {"+mn-lt", &BodyStyle::minorLatin},
      {"+mn-ea", &BodyStyle::minorEastAsian}, {"+mn-cs", &BodyStyle::minorComplex}};
  for (const Row& row : kRows) {
    if (face == row.word) return style.*row.font;
  }
  return face;
}

std::shared_ptr<const BodyStyle> Deck::StyleOf(SlidePart& part, const ShapeAddress& address,
                                               pugi::xml_node text) {
  const XmlNames& names = part.names();
  const pugi::xml_node shape = part.shapes().At(address.shape).node;
  const std::optional<PlaceholderKey> placeholder =
      address.IsCell() ? std::nullopt : PlaceholderOf(names, shape);
  const pugi::xml_node list = names.Child(text, kA, "lstStyle");
  const pugi::xml_node bodyProperties = names.Child(text, kA, "bodyPr");
  const std::optional<Autofit> own = ParseFrameProps(names, bodyProperties).autofit;
  const std::optional<ColorMap> ownMap = ParseColorMapOverride(names, part.root());
  const bool plain = !HasChildren(list) && !own && !ownMap && !names.Child(shape, kP, "style");
  Layout& entry = LayoutEntry(address.page);
  std::string key;
  if (placeholder) key = placeholder->type + "/" + std::to_string(placeholder->index);
  CharProps cell;
  if (address.IsCell()) {
    if (const TableGrid* const grid = part.Table(address.shape)) {
      auto row = static_cast<std::uint32_t>(address.row);
      auto column = static_cast<std::uint32_t>(address.column);
      if (grid->Has(row, column)) grid->Origin(row, column);
      cell = TableStyleSheet().CellProps(names, *grid, row, column);
    }
    for (const auto& [props, known] : entry.plainCells) {
      if (plain && props == cell) return known;
    }
  } else if (plain) {
    if (const auto found = entry.plainBodies.find(key); found != entry.plainBodies.end()) {
      return found->second;
    }
  }

  const LayoutStyles& layout = *entry.styles;
  const MasterStyles& master = *layout.master;
  auto style = std::make_shared<BodyStyle>();
  style->levels = ParseLevels(names, list);
  std::optional<Autofit> fit = own;
  if (placeholder) {
    const PlaceholderStyle* const steps[] = {MatchInLayout(layout.placeholders, *placeholder),
                                             MatchInMaster(master.placeholders, *placeholder)};
    for (const PlaceholderStyle* const step : steps) {
      if (step == nullptr) continue;
      Inherit(style->levels, step->levels);
      if (!fit) fit = step->frame.autofit;
    }
    InheritAll(style->levels, FontReference(names, shape));
    Inherit(style->levels, MasterLevels(master, *placeholder));
  } else if (address.IsCell()) {
    InheritAll(style->levels, cell);
  } else {
    InheritAll(style->levels, FontReference(names, shape));
  }
  Inherit(style->levels, defaultText_);
  InheritAll(style->levels, LastResort());
  style->fontScale = fit ? fit->Scale() : 1.0;
  style->colorMap = ownMap ? *ownMap : layout.colorMap ? *layout.colorMap : master.colorMap;
  style->colors = master.theme.colors;
  style->majorLatin = master.theme.majorLatin;
  style->majorEastAsian = master.theme.majorEastAsian;
  style->majorComplex = master.theme.majorComplex;
  style->minorLatin = master.theme.minorLatin;
  style->minorEastAsian = master.theme.minorEastAsian;
  style->minorComplex = master.theme.minorComplex;
  if (plain && address.IsCell()) {
    if (entry.plainCells.size() < kMostPlainCells) entry.plainCells.emplace_back(cell, style);
  } else if (plain && entry.plainBodies.size() < kMostPlainBodies) {
    entry.plainBodies.emplace(key, style);
  }
  return style;
}

// The frame in the coordinates of whatever holds the shape.
ShapeBox Deck::OwnBox(SlidePart& part, PageAddress page, std::uint32_t shape) {
  if (const std::optional<ShapeBox>& moved = part.MovedBox(shape)) return *moved;
  std::optional<ShapeBox>& known = part.FileBox(shape);
  if (!known) known = FileBox(part, page, shape);
  return *known;
}

ShapeBox Deck::FileBox(SlidePart& part, PageAddress page, std::uint32_t shape) {
  const XmlNames& names = part.names();
  const ShapeEntry& entry = part.shapes().At(shape);
  const pugi::xml_node transform = ShapeTransform(names, entry.node, entry.kind);
  if (const auto box = BoxOf(names, transform, "off", "ext")) return *box;
  const std::optional<PlaceholderKey> placeholder = PlaceholderOf(names, entry.node);
  if (!placeholder) return {};
  const LayoutStyles& layout = LayoutOf(page);
  const PlaceholderStyle* const steps[] = {
      MatchInLayout(layout.placeholders, *placeholder),
      MatchInMaster(layout.master->placeholders, *placeholder)};
  for (const PlaceholderStyle* const step : steps) {
    if (step != nullptr && step->box) return *step->box;
  }
  return {};
}

std::optional<Deck::GroupScale> Deck::ScaleOf(const SlidePart& part, std::uint32_t group) {
  const ShapeEntry& entry = part.shapes().At(group);
  const pugi::xml_node transform = ShapeTransform(part.names(), entry.node, entry.kind);
  auto outer = BoxOf(part.names(), transform, "off", "ext");
  const auto inner = BoxOf(part.names(), transform, "chOff", "chExt");
  if (!outer || !inner || inner->width == 0 || inner->height == 0) return std::nullopt;
  if (const std::optional<ShapeBox>& moved = part.MovedBox(group)) outer = moved;
  return GroupScale{*outer, *inner};
}

ShapeBox Deck::Box(const ShapeAddress& address) {
  SlidePart* const part = Page(address.page);
  if (part == nullptr || address.shape >= part->shapes().Count()) return {};
  const XmlNames& names = part->names();
  ShapeBox box = OwnBox(*part, address.page, address.shape);
  std::uint32_t group = part->shapes().At(address.shape).parent;
  while (group != kNoShape) {
    if (const auto scale = ScaleOf(*part, group)) {
      box.left = scale->outer.left + (box.left - scale->inner.left) * scale->Across();
      box.top = scale->outer.top + (box.top - scale->inner.top) * scale->Down();
      box.width *= scale->Across();
      box.height *= scale->Down();
    }
    group = part->shapes().At(group).parent;
  }
  if (!address.IsCell()) return box;

  // A cell's place is the sum of the columns and rows before it.
  const TableGrid* const grid = part->Table(address.shape);
  if (grid == nullptr) return box;
  const auto points = [](pugi::xml_node node, const char* name) {
    return static_cast<double>(WholeAttribute(node, name, 0)) / kEmuPerPoint;
  };
  std::int32_t index = 0;
  box.width = box.height = 0;
  for (const pugi::xml_node column : names.Child(grid->node(), kA, "tblGrid").children()) {
    if (!names.Is(column, kA, "gridCol")) continue;
    if (index < address.column) box.left += points(column, "w");
    if (index == address.column) box.width = points(column, "w");
    ++index;
  }
  index = 0;
  for (const pugi::xml_node row : grid->node().children()) {
    if (!names.Is(row, kA, "tr")) continue;
    if (index < address.row) box.top += points(row, "h");
    if (index == address.row) box.height = points(row, "h");
    ++index;
  }
  return box;
}

}  // namespace quillmarch::host::deck
