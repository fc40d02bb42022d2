// One table of a sheet: its place, its columns, and their names as edits on its part.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/workbook/CellReference.h"

namespace quillmarch::host::workbook {

class TablePart {
 public:
  // `bytes` is well-formed. Null when it is no table.
  static std::unique_ptr<TablePart> Parse(std::string bytes);

  // As formulas name it, in UTF-8, as are the columns.
  const std::string& Name() const { return name_; }
  CellRange Range() const { return range_; }
  bool HasHeader() const { return headerRows_ > 0; }
  const std::vector<std::string>& Columns() const { return columns_; }
  // The column whose name stands in that cell of the header row, 0-based; -1 when it is no such
  // cell.
  int HeaderColumn(CellPosition at) const;

  // `name`, or with the least number from 2 on after it that no other column's name has: the names
  // of a table's columns differ in more than case.
  std::string FreeName(std::size_t column, const std::string& name) const;
  void Rename(std::size_t column, std::string name);
  // Renames a column of any table in this one's formulas.
  void RenameInFormulas(std::string_view table, std::string_view from, std::string_view to);
  // Lets the label of the totals row say what its cell now shows. False when the cell shows none.
  bool PutTotalsLabel(CellPosition at, std::string_view text);

  bool Edited() const { return edited_; }
  const std::string& Bytes() const { return bytes_; }

 private:
  explicit TablePart(std::string bytes) : bytes_(std::move(bytes)) {}
  bool Read();
  bool PutAttribute(std::size_t column, std::string_view attribute, std::string_view value);

  std::string bytes_;
  std::string name_;
  CellRange range_;
  std::size_t headerRows_ = 1;
  std::size_t totalsRows_ = 0;
  std::vector<std::string> columns_;
  std::vector<std::size_t> offsets_;  // of the columns' "<"
  bool edited_ = false;
};

}  // namespace quillmarch::host::workbook
