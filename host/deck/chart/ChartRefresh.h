// The caches of a chart made anew from its sheet, as edits on its part.
#pragma once

#include <cstdint>
#include <functional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/XmlNames.h"
#include "host/deck/chart/ChartSeries.h"
#include "host/package/xml/Splice.h"

namespace quillmarch::host::deck {

// The cells of a reference, row by row, as a chart takes them.
struct SheetPoint {
  bool present = false;
  bool number = false;
  std::string value;  // of a number as a workbook writes it
  Wide text;          // as the cell shows it
};
struct SheetBlock {
  std::uint32_t rows = 0;
  std::uint32_t columns = 0;
  std::vector<SheetPoint> points;
};
// False when the reference leads to no cells that can be read. `visibleOnly`: without the hidden
// rows and columns.
using SheetReader = std::function<bool(const Wide& formula, bool visibleOnly, SheetBlock& block)>;

// A cache that says what the sheet says is left as it is; where only texts differ, they alone are
// put; otherwise the cache is written anew.
std::vector<Edit> RefreshEdits(const XmlNames& names, std::string_view bytes, pugi::xml_node root,
                               bool visibleOnly, const SheetReader& read);

// What the cells beside the data say for a point's label; empty when they do not.
Wide LabelFromCells(const XmlNames& names, const ChartSeries& series, std::uint32_t point);

}  // namespace quillmarch::host::deck
