#include "host/deck/ShapeTree.h"

#include <optional>
#include <unordered_set>

#include "host/deck/AlternateContent.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
// Beyond what programs number their shapes by.
constexpr std::uint32_t kFirstFreeId = 0x40000000;

pugi::xml_node GraphicData(const XmlNames& names, pugi::xml_node frame) {
  return names.Child(names.Child(frame, kA, "graphic"), kA, "graphicData");
}

ShapeKind FrameKind(const XmlNames& names, pugi::xml_node frame) {
  const std::string_view uri = GraphicData(names, frame).attribute("uri").value();
  switch (NamespaceOf(uri)) {
    case XmlNamespace::kChart:
      return ShapeKind::kChart;
    case XmlNamespace::kDiagram:
      return ShapeKind::kDiagram;
    default:
      break;
  }
  if (uri.ends_with("/table")) return ShapeKind::kTable;
  if (uri.ends_with("/ole")) return ShapeKind::kOleObject;
  if (uri.ends_with("/chartex")) return ShapeKind::kChart;
  return ShapeKind::kOtherFrame;
}

std::optional<ShapeKind> KindOf(const XmlNames& names, pugi::xml_node node) {
  const std::string_view local = LocalName(node.name());
  if (local == "contentPart") {
    const XmlNamespace space = names.SpaceOf(node);
    if (space == kP || space == XmlNamespace::kPowerPoint2010) return ShapeKind::kInk;
    return std::nullopt;
  }
  if (local != "sp" && local != "pic" && local != "cxnSp" && local != "grpSp" &&
      local != "graphicFrame") {
    return std::nullopt;
  }
  if (names.SpaceOf(node) != kP) return std::nullopt;
  if (local == "sp") return ShapeKind::kShape;
  if (local == "pic") return ShapeKind::kPicture;
  if (local == "cxnSp") return ShapeKind::kConnector;
  if (local == "grpSp") return ShapeKind::kGroup;
  return FrameKind(names, node);
}

// The one shape that an mc:AlternateContent stands for, looking through nested ones.
pugi::xml_node ShapeOfAlternative(const XmlNames& names, pugi::xml_node node) {
  for (std::size_t depth = 0; depth < kMaxGroupDepth; ++depth) {
    pugi::xml_node inner;
    for (const pugi::xml_node child : ChosenBranch(names, node).children()) {
      if (child.type() != pugi::node_element) continue;
      if (KindOf(names, child)) return child;
      if (names.Is(child, XmlNamespace::kMarkupCompatibility, "AlternateContent")) {
        inner = child;
        break;
      }
    }
    if (!inner) return {};
    node = inner;
  }
  return {};
}

}  // namespace

ShapeTree::ShapeTree(const XmlNames& names, pugi::xml_node spTree) {
  Collect(names, spTree, kNoShape, 0, top_);
  NumberShapes(names);
}

void ShapeTree::NumberShapes(const XmlNames& names) {
  std::unordered_set<std::uint32_t> taken;
  std::vector<ShapeEntry*> doubles;
  for (ShapeEntry& entry : entries_) {
    entry.id =
        static_cast<std::uint32_t>(WholeAttribute(ShapeProperties(names, entry.node), "id", 0));
    if (entry.id != 0 && !taken.insert(entry.id).second) doubles.push_back(&entry);
  }
  std::uint32_t next = kFirstFreeId;
  for (ShapeEntry* const entry : doubles) {
    while (!taken.insert(next).second) ++next;
    entry->id = next;
  }
}

void ShapeTree::Collect(const XmlNames& names, pugi::xml_node parent, std::uint32_t group,
                        std::size_t depth, std::vector<std::uint32_t>& found) {
  for (pugi::xml_node child : parent.children()) {
    if (child.type() != pugi::node_element) continue;
    if (names.Is(child, XmlNamespace::kMarkupCompatibility, "AlternateContent")) {
      child = ShapeOfAlternative(names, child);
    }
    const std::optional<ShapeKind> kind = KindOf(names, child);
    if (!kind) continue;
    const auto shape = static_cast<std::uint32_t>(entries_.size());
    ShapeEntry entry;
    entry.node = child;
    entry.parent = group;
    entry.place = static_cast<std::uint32_t>(found.size());
    entry.kind = *kind;
    entries_.push_back(entry);
    found.push_back(shape);
    if (*kind != ShapeKind::kGroup) {
      leaves_.push_back(shape);
      continue;
    }
    std::vector<std::uint32_t> inner;
    const auto firstLeaf = static_cast<std::uint32_t>(leaves_.size());
    if (depth < kMaxGroupDepth) Collect(names, child, shape, depth + 1, inner);
    ShapeEntry& made = entries_[shape];
    made.firstLeaf = firstLeaf;
    made.leafCount = static_cast<std::uint32_t>(leaves_.size()) - firstLeaf;
    made.firstChild = static_cast<std::uint32_t>(children_.size());
    made.childCount = static_cast<std::uint32_t>(inner.size());
    children_.insert(children_.end(), inner.begin(), inner.end());
  }
}

pugi::xml_node ShapeProperties(const XmlNames& names, pugi::xml_node shape) {
  for (const pugi::xml_node child : shape.children()) {
    if (child.type() != pugi::node_element) continue;
    if (const pugi::xml_node found = names.Child(child, kP, "cNvPr")) return found;
    // Ink has the same properties under its own namespace.
    if (const pugi::xml_node found = names.Child(child, XmlNamespace::kPowerPoint2010, "cNvPr")) {
      return found;
    }
    return {};
  }
  return {};
}

std::optional<PlaceholderKey> PlaceholderOf(const XmlNames& names, pugi::xml_node shape) {
  for (const pugi::xml_node child : shape.children()) {
    if (child.type() != pugi::node_element) continue;
    const pugi::xml_node ph = names.Child(names.Child(child, kP, "nvPr"), kP, "ph");
    if (!ph) return std::nullopt;
    PlaceholderKey key;
    if (const pugi::xml_attribute type = ph.attribute("type")) key.type = type.value();
    const std::int64_t index = WholeAttribute(ph, "idx", 0);
    key.index = index >= 0 && index <= 0xFFFFFFFFll ? static_cast<std::uint32_t>(index) : 0;
    return key;
  }
  return std::nullopt;
}

pugi::xml_node ShapeTransform(const XmlNames& names, pugi::xml_node shape, ShapeKind kind) {
  switch (kind) {
    case ShapeKind::kShape:
    case ShapeKind::kPicture:
    case ShapeKind::kConnector:
      return names.Child(names.Child(shape, kP, "spPr"), kA, "xfrm");
    case ShapeKind::kGroup:
      return names.Child(names.Child(shape, kP, "grpSpPr"), kA, "xfrm");
    case ShapeKind::kInk:
      return names.Child(shape, XmlNamespace::kPowerPoint2010, "xfrm");
    default:
      return names.Child(shape, kP, "xfrm");
  }
}

pugi::xml_node TableOfFrame(const XmlNames& names, pugi::xml_node frame) {
  return names.Child(GraphicData(names, frame), kA, "tbl");
}

pugi::xml_node TextBodyOf(const XmlNames& names, pugi::xml_node shape) {
  return names.Child(shape, kP, "txBody");
}

}  // namespace quillmarch::host::deck
