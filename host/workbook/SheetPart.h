// One worksheet's part: its cells as the file has them, and edits on single cells that keep every
// byte around them. Memory is needed for the cells that are there, whatever the size of the sheet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/workbook/CellReference.h"

namespace quillmarch::host::workbook {

// What a cell's own markup says it holds.
enum class CellContent : std::uint8_t {
  kEmpty,
  kNumber,
  kShared,  // `number` is the index of a shared string
  kText,    // inline, or a formula's cached text
  kBoolean,
  kError,
};

struct SheetCell {
  std::uint32_t row = 0;  // 1-based, as is the column
  std::uint32_t column = 0;
  std::uint32_t style = 0;
  std::uint32_t offset = 0;  // of its "<" in the part
  double number = 0;
  CellContent content = CellContent::kEmpty;
  bool formula = false;
};

class SheetPart {
 public:
  // `bytes` is well-formed. Null, and `fault` is the end of a sentence, when it is no worksheet or
  // has more than `maxCells` cells.
  static std::unique_ptr<SheetPart> Parse(std::string bytes, bool date1904, std::size_t maxCells,
                                          std::string& fault);

  // In the order of rows and columns, as the file has them.
  const std::vector<SheetCell>& Cells() const { return cells_; }
  // Null when the file has none there.
  const SheetCell* Find(CellPosition at) const;
  // Around all cells that are there, formatted empty ones too; A1 for a sheet without any.
  CellRange UsedRange() const { return used_; }

  // The text of a kText or kError cell of the file, in UTF-8.
  std::string Text(const SheetCell& cell) const;
  // The formula without "=", empty for a cell that only takes part in another cell's formula.
  std::string Formula(const SheetCell& cell) const;
  // Whether a formula stands in the cell or an array formula covers it.
  bool HasFormula(CellPosition at) const;

  bool RowHidden(std::uint32_t row) const;
  bool ColumnHidden(std::uint32_t column) const;
  const std::vector<CellRange>& Merged() const { return merged_; }
  // Relationships of the sheet's tables, in order.
  const std::vector<std::string>& TableIds() const { return tableIds_; }

  // The text that was put into a cell; null when none was.
  const std::string* Written(CellPosition at) const;
  // `cell` is one of this sheet's. UTF-8; an empty text leaves the cell empty, with its format.
  void PutText(const SheetCell& cell, std::string text);
  // Renames a column of a table in all formulas of the sheet.
  void RenameColumn(std::string_view table, std::string_view from, std::string_view to);
  bool Edited() const { return !written_.empty() || !formulas_.empty(); }
  // The part with all edits in place.
  std::string EditedBytes() const;

 private:
  explicit SheetPart(std::string bytes) : bytes_(std::move(bytes)) {}
  std::string Read(bool date1904, std::size_t maxCells);
  std::string CellXml(const SheetCell& cell, const std::string& text) const;

  std::string bytes_;
  std::vector<SheetCell> cells_;
  CellRange used_{{1, 1}, {1, 1}};
  std::vector<std::pair<std::uint32_t, std::uint32_t>> hiddenColumns_;  // first and last
  std::vector<std::uint32_t> hiddenRows_;                               // in order
  std::vector<CellRange> merged_;
  std::vector<CellRange> arrays_;
  std::vector<std::string> tableIds_;
  std::map<std::size_t, std::string> written_;  // by index in cells_
  std::map<std::size_t, std::pair<std::size_t, std::string>>
      formulas_;  // by offset: length, new text
};

}  // namespace quillmarch::host::workbook
