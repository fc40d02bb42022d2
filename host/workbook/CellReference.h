// Cells, ranges and references to them as Excel writes them: "B2", "$A$2:$B$5", "'My data'!$A$1".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::host::workbook {

inline constexpr std::uint32_t kMostRows = 1048576;
inline constexpr std::uint32_t kMostColumns = 16384;

// 1-based; 0 when there is none.
struct CellPosition {
  std::uint32_t row = 0;
  std::uint32_t column = 0;
  bool operator==(const CellPosition&) const = default;
};

// Both corners belong to it; first is the upper left.
struct CellRange {
  CellPosition first;
  CellPosition last;
  bool Has(CellPosition cell) const {
    return cell.row >= first.row && cell.row <= last.row && cell.column >= first.column &&
           cell.column <= last.column;
  }
  std::uint32_t Rows() const { return last.row - first.row + 1; }
  std::uint32_t Columns() const { return last.column - first.column + 1; }
  bool operator==(const CellRange&) const = default;
};

// "B2", "$B$2"; row 0 when it is none.
CellPosition ParseCell(std::string_view text);
// One cell, "A1:B2" in any order of corners, whole columns "A:C" and rows "1:3". Row 0 when none.
CellRange ParseRange(std::string_view text);
// "B2".
std::string CellName(CellPosition cell);

struct SheetRange {
  std::string sheet;  // empty when the reference names none
  CellRange range;
};

// A chart's reference to cells, its areas in order: "Sheet1!$A$2:$A$5", "'It''s'!A1",
// "(Sheet1!$A$2,Sheet1!$A$4)". Empty when it is anything else, such as a formula, a defined name
// or a reference to another workbook.
std::vector<SheetRange> ParseReference(std::string_view text);

}  // namespace quillmarch::host::workbook
