#include "host/deck/TableStyles.h"

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;

// Medium Style 2 - Accent 1, the style of a new table; files that use it often don't bring it.
constexpr const char* kDefaultStyle = "{5C22544A-7EE6-4342-B048-85BDC9FD1C3A}";

CharProps TextProps(const XmlNames& names, pugi::xml_node style) {
  CharProps props;
  props.bold = static_cast<std::int8_t>(FlagAttribute(style, "b"));
  props.italic = static_cast<std::int8_t>(FlagAttribute(style, "i"));
  for (const pugi::xml_node child : style.children()) {
    const ColorSpec color = ParseColor(names, child);
    if (color.kind != ColorSpec::Kind::kUnset) props.color = color;
  }
  return props;
}

CharProps Plain(SchemeSlot slot, int bold) {
  CharProps props;
  props.bold = static_cast<std::int8_t>(bold);
  props.color.kind = ColorSpec::Kind::kScheme;
  props.color.slot = slot;
  return props;
}

}  // namespace

TableStyles::TableStyles(const XmlNames& names, pugi::xml_node root) {
  for (const pugi::xml_node style : root.children()) {
    if (style.type() != pugi::node_element || !names.Is(style, kA, "tblStyle")) continue;
    Style& parts = styles_[style.attribute("styleId").value()];
    for (const pugi::xml_node part : style.children()) {
      const pugi::xml_node text = names.Child(part, kA, "tcTxStyle");
      if (text) parts[LocalName(part.name())] = TextProps(names, text);
    }
  }
  if (styles_.find(kDefaultStyle) != styles_.end()) return;
  Style& medium = styles_[kDefaultStyle];
  medium["wholeTbl"] = Plain(SchemeSlot::kDark1, -1);
  for (const char* part : {"firstRow", "lastRow", "firstCol", "lastCol"}) {
    medium[part] = Plain(SchemeSlot::kLight1, 1);
  }
}

CharProps TableStyles::CellProps(const XmlNames& names, const TableGrid& grid, std::uint32_t row,
                                 std::uint32_t column) const {
  CharProps props;
  const pugi::xml_node table = names.Child(grid.node(), kA, "tblPr");
  const auto found = styles_.find(ElementText(names.Child(table, kA, "tableStyleId")));
  if (found == styles_.end()) return props;
  const Style& style = found->second;
  const auto on = [&](const char* flag) { return FlagAttribute(table, flag) == 1; };
  const auto take = [&](const char* part) {
    if (const auto entry = style.find(part); entry != style.end()) Inherit(props, entry->second);
  };
  const bool top = on("firstRow") && row == 0;
  const bool bottom = on("lastRow") && row + 1 == grid.Rows();
  const bool left = on("firstCol") && column == 0;
  const bool right = on("lastCol") && column + 1 == grid.Columns();
  // The strongest first: corners, then rows, columns, bands, the whole.
  if (top && left) take("nwCell");
  if (top && right) take("neCell");
  if (bottom && left) take("swCell");
  if (bottom && right) take("seCell");
  if (top) take("firstRow");
  if (bottom) take("lastRow");
  if (left) take("firstCol");
  if (right) take("lastCol");
  // Bands are counted from after a header row or column.
  const std::uint32_t bandRow = row - (on("firstRow") && row > 0 ? 1 : 0);
  const std::uint32_t bandColumn = column - (on("firstCol") && column > 0 ? 1 : 0);
  if (on("bandRow") && !top && !bottom) take(bandRow % 2 == 0 ? "band1H" : "band2H");
  if (on("bandCol") && !left && !right) take(bandColumn % 2 == 0 ? "band1V" : "band2V");
  take("wholeTbl");
  return props;
}

}  // namespace quillmarch::host::deck
