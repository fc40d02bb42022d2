// The styles part as far as it says how cells show their values.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/workbook/format/NumberFormat.h"

namespace quillmarch::host::workbook {

class CellStyles {
 public:
  // All cells are General.
  CellStyles();
  // `xml` is well-formed.
  explicit CellStyles(std::string_view xml);

  // Of a cell's style number; General for one that the part does not have.
  const NumberFormat& FormatOf(std::uint32_t style) const;

 private:
  std::vector<NumberFormat> formats_;    // each one once, General first
  std::vector<std::uint32_t> formatOf_;  // index in formats_ by style
};

}  // namespace quillmarch::host::workbook
