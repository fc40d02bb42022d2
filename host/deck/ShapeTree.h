// The shapes of one slide or notes page, numbered in document order. The numbers hold as long as
// no shape is added or removed, whatever happens to texts, and so outlive the parsed tree.
#pragma once

#include <cstdint>
#include <optional>
#include <pugixml.hpp>
#include <span>
#include <string>
#include <vector>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

inline constexpr std::uint32_t kNoShape = 0xFFFFFFFF;
// Groups nested deeper than this are not looked into.
inline constexpr std::size_t kMaxGroupDepth = 1000;

enum class ShapeKind : std::uint8_t {
  kShape,
  kPicture,
  kConnector,
  kGroup,
  kChart,
  kTable,
  kDiagram,
  kOleObject,
  kOtherFrame,
  kInk
};

struct ShapeEntry {
  pugi::xml_node node;
  // The file's id; of a later shape with the same one another number, as no two shapes of a page
  // may answer to one id. 0 when the file gives none.
  std::uint32_t id = 0;
  std::uint32_t parent = kNoShape;
  std::uint32_t place = 0;                       // among its siblings, 0-based
  std::uint32_t firstChild = 0, childCount = 0;  // of a group, into Children()
  std::uint32_t firstLeaf = 0, leafCount = 0;    // of a group, into Leaves()
  ShapeKind kind = ShapeKind::kShape;
};

// Points; the centre does not move under rotation, so this is the unrotated frame.
struct ShapeBox {
  double left = 0, top = 0, width = 0, height = 0;
};

struct PlaceholderKey {
  std::string type = "obj";  // as the file format defaults it
  std::uint32_t index = 0;
};

class ShapeTree {
 public:
  ShapeTree() = default;
  // `spTree` may be null: no shapes.
  ShapeTree(const XmlNames& names, pugi::xml_node spTree);

  std::size_t Count() const { return entries_.size(); }
  const ShapeEntry& At(std::uint32_t shape) const { return entries_[shape]; }
  // Shape numbers, in z-order.
  std::span<const std::uint32_t> TopLevel() const { return top_; }
  std::span<const std::uint32_t> Children(const ShapeEntry& group) const {
    return std::span(children_).subspan(group.firstChild, group.childCount);
  }
  // The shapes on all levels below a group that are not groups themselves, depth first.
  std::span<const std::uint32_t> Leaves(const ShapeEntry& group) const {
    return std::span(leaves_).subspan(group.firstLeaf, group.leafCount);
  }

 private:
  void NumberShapes(const XmlNames& names);
  void Collect(const XmlNames& names, pugi::xml_node parent, std::uint32_t group, std::size_t depth,
               std::vector<std::uint32_t>& found);

  std::vector<ShapeEntry> entries_;
  std::vector<std::uint32_t> top_;
  std::vector<std::uint32_t> children_;
  std::vector<std::uint32_t> leaves_;
};

// The p:cNvPr of a shape; null when the file has none.
pugi::xml_node ShapeProperties(const XmlNames& names, pugi::xml_node shape);
// The p:ph of a shape, nothing when it is not a placeholder.
std::optional<PlaceholderKey> PlaceholderOf(const XmlNames& names, pugi::xml_node shape);
// The a:xfrm of a shape (p:xfrm of a frame); null when the file has none.
pugi::xml_node ShapeTransform(const XmlNames& names, pugi::xml_node shape, ShapeKind kind);
// The a:tbl of a table's frame.
pugi::xml_node TableOfFrame(const XmlNames& names, pugi::xml_node frame);
// The p:txBody of a shape; null when there is none.
pugi::xml_node TextBodyOf(const XmlNames& names, pugi::xml_node shape);

}  // namespace quillmarch::host::deck
