#include "host/deck/FrameProps.h"

#include <limits>
#include <string_view>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr std::int64_t kSideInset = 91440;
constexpr std::int64_t kEndInset = 45720;
constexpr std::int64_t kMostInset = 2147483647;
constexpr std::int64_t kLeastScale = 1000;
constexpr std::int64_t kMostColumns = 16;
constexpr std::int64_t kFullTurn = 360 * 60000;
constexpr std::int64_t kNoTurn = std::numeric_limits<std::int64_t>::min();

std::optional<std::int64_t> Length(pugi::xml_node node, const char* name) {
  const std::int64_t value = WholeAttribute(node, name, -1);
  if (value < 0 || value > kMostInset) return std::nullopt;
  return value;
}

std::optional<FrameAnchor> AnchorOf(std::string_view word) {
  if (word == "t") return FrameAnchor::kTop;
  if (word == "ctr") return FrameAnchor::kMiddle;
  if (word == "b") return FrameAnchor::kBottom;
  // Justified and distributed text begins at the top.
  if (word == "just" || word == "dist") return FrameAnchor::kTop;
  return std::nullopt;
}

std::optional<TextDirection> DirectionOf(std::string_view word) {
  if (word == "horz") return TextDirection::kHorizontal;
  if (word == "vert") return TextDirection::kClockwise;
  if (word == "vert270") return TextDirection::kCounterclockwise;
  if (word == "eaVert") return TextDirection::kEastAsian;
  if (word == "mongolianVert") return TextDirection::kMongolian;
  if (word == "wordArtVert" || word == "wordArtVertRtl") return TextDirection::kStacked;
  return std::nullopt;
}

std::optional<Autofit> AutofitOf(const XmlNames& names, pugi::xml_node properties) {
  for (const pugi::xml_node child : properties.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    Autofit fit;
    if (local == "noAutofit") return fit;
    if (local == "spAutoFit") {
      fit.kind = AutofitKind::kShapeToText;
      return fit;
    }
    if (local != "normAutofit") continue;
    fit.kind = AutofitKind::kTextToShape;
    const std::int64_t scale = PercentAttribute(child, "fontScale", kWholeShare);
    if (scale >= kLeastScale && scale <= kWholeShare) {
      fit.fontScale = static_cast<std::int32_t>(scale);
    }
    const std::int64_t reduction = PercentAttribute(child, "lnSpcReduction", 0);
    if (reduction > 0 && reduction < kWholeShare) {
      fit.lineSpacingReduction = static_cast<std::int32_t>(reduction);
    }
    return fit;
  }
  return std::nullopt;
}

template <typename T>
void Take(std::optional<T>& into, const std::optional<T>& from) {
  if (!into) into = from;
}

}  // namespace

FrameProps ParseFrameProps(const XmlNames& names, pugi::xml_node node) {
  FrameProps props;
  if (!node) return props;
  const std::string_view wrap = node.attribute("wrap").value();
  if (wrap == "none" || wrap == "square") props.wrap = wrap == "square";
  props.autofit = AutofitOf(names, node);
  props.insetLeft = Length(node, "lIns");
  props.insetTop = Length(node, "tIns");
  props.insetRight = Length(node, "rIns");
  props.insetBottom = Length(node, "bIns");
  props.anchor = AnchorOf(node.attribute("anchor").value());
  if (const int center = FlagAttribute(node, "anchorCtr"); center >= 0) {
    props.anchorCenter = center == 1;
  }
  props.direction = DirectionOf(node.attribute("vert").value());
  if (const std::int64_t turn = WholeAttribute(node, "rot", kNoTurn); turn != kNoTurn) {
    props.turn = turn % kFullTurn;
  }
  const std::int64_t columns = WholeAttribute(node, "numCol", -1);
  if (columns >= 1 && columns <= kMostColumns) props.columns = static_cast<std::int32_t>(columns);
  props.columnSpacing = Length(node, "spcCol");
  return props;
}

FrameProps ParseCellFrame(pugi::xml_node node) {
  FrameProps props;
  props.wrap = true;
  props.autofit = Autofit{};
  props.insetLeft = Length(node, "marL");
  props.insetTop = Length(node, "marT");
  props.insetRight = Length(node, "marR");
  props.insetBottom = Length(node, "marB");
  props.anchor = AnchorOf(node.attribute("anchor").value());
  if (const int center = FlagAttribute(node, "anchorCtr"); center >= 0) {
    props.anchorCenter = center == 1;
  }
  props.direction = DirectionOf(node.attribute("vert").value());
  return props;
}

void Inherit(FrameProps& into, const FrameProps& from) {
  Take(into.wrap, from.wrap);
  Take(into.autofit, from.autofit);
  Take(into.insetLeft, from.insetLeft);
  Take(into.insetTop, from.insetTop);
  Take(into.insetRight, from.insetRight);
  Take(into.insetBottom, from.insetBottom);
  Take(into.anchor, from.anchor);
  Take(into.anchorCenter, from.anchorCenter);
  Take(into.direction, from.direction);
  Take(into.turn, from.turn);
  Take(into.columns, from.columns);
  Take(into.columnSpacing, from.columnSpacing);
}

FrameProps DefaultFrame() {
  FrameProps props;
  props.wrap = true;
  props.autofit = Autofit{};
  props.insetLeft = props.insetRight = kSideInset;
  props.insetTop = props.insetBottom = kEndInset;
  props.anchor = FrameAnchor::kTop;
  props.anchorCenter = false;
  props.direction = TextDirection::kHorizontal;
  props.turn = 0;
  props.columns = 1;
  props.columnSpacing = 0;
  return props;
}

}  // namespace quillmarch::host::deck
