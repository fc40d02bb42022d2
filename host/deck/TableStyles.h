// What a table's style gives the text of its cells: bold, italic and colour by banding.
#pragma once

#include <cstdint>
#include <map>
#include <pugixml.hpp>
#include <string>

#include "host/deck/TableGrid.h"
#include "host/deck/text/CharProps.h"

namespace quillmarch::host::deck {

class TableStyles {
 public:
  TableStyles() = default;
  // `root` is a:tblStyleLst; null gives no styles but the built-in default one.
  TableStyles(const XmlNames& names, pugi::xml_node root);

  // The character properties for a 0-based grid position, the rest unset. `names` belongs to the
  // slide's part.
  CharProps CellProps(const XmlNames& names, const TableGrid& grid, std::uint32_t row,
                      std::uint32_t column) const;

 private:
  // By the element's name: "wholeTbl", "band1H", "firstRow" and so on.
  using Style = std::map<std::string, CharProps, std::less<>>;
  std::map<std::string, Style, std::less<>> styles_;
};

}  // namespace quillmarch::host::deck
