#include "host/deck/text/CharProps.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
// The range that the file format gives a size, in hundredths of a point.
constexpr std::int64_t kLeastSize = 100;
constexpr std::int64_t kMostSize = 400000;

}  // namespace

CharProps ParseCharProps(const XmlNames& names, pugi::xml_node node) {
  CharProps props;
  if (!node) return props;
  const std::int64_t size = WholeAttribute(node, "sz", -1);
  if (size >= kLeastSize && size <= kMostSize) props.size = static_cast<std::int32_t>(size);
  props.bold = static_cast<std::int8_t>(FlagAttribute(node, "b"));
  props.italic = static_cast<std::int8_t>(FlagAttribute(node, "i"));
  if (const pugi::xml_attribute line = node.attribute("u")) {
    props.underline = std::string_view(line.value()) == "none" ? 0 : 1;
  }
  if (!node.first_child()) return props;
  props.color = ParseFill(names, node);
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element) continue;
    const std::string_view local = LocalName(child.name());
    if (local != "latin" && local != "ea" && local != "cs") continue;
    if (names.SpaceOf(child) != kA) continue;
    std::string& target = local == "latin" ? props.latin
                          : local == "ea"  ? props.eastAsian
                                           : props.complexScript;
    target = child.attribute("typeface").value();
  }
  return props;
}

LevelProps ParseLevels(const XmlNames& names, pugi::xml_node node) {
  LevelProps levels;
  CharProps all;
  for (const pugi::xml_node child : node.children()) {
    if (child.type() != pugi::node_element || names.SpaceOf(child) != kA) continue;
    const std::string_view local = LocalName(child.name());
    const pugi::xml_node props = names.Child(child, kA, "defRPr");
    if (local == "defPPr") all = ParseCharProps(names, props);
    if (local.size() == 7 && local.starts_with("lvl") && local.ends_with("pPr") &&
        local[3] >= '1' && local[3] <= '9') {
      levels[static_cast<std::size_t>(local[3] - '1')] = ParseCharProps(names, props);
    }
  }
  for (CharProps& level : levels) Inherit(level, all);
  return levels;
}

void Inherit(CharProps& into, const CharProps& from) {
  if (into.size < 0) into.size = from.size;
  if (into.bold < 0) into.bold = from.bold;
  if (into.italic < 0) into.italic = from.italic;
  if (into.underline < 0) into.underline = from.underline;
  if (into.color.kind == ColorSpec::Kind::kUnset) into.color = from.color;
  if (into.latin.empty()) into.latin = from.latin;
  if (into.eastAsian.empty()) into.eastAsian = from.eastAsian;
  if (into.complexScript.empty()) into.complexScript = from.complexScript;
}

void Inherit(LevelProps& into, const LevelProps& from) {
  for (std::size_t level = 0; level < kLevels; ++level) Inherit(into[level], from[level]);
}

}  // namespace quillmarch::host::deck
