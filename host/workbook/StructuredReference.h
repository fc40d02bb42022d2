// References to a table's columns inside of formulas: "Sales[Region]", "Sales[[#This
// Row],[Region]]".
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host::workbook {

// The formula with the column's new name wherever it names that column of that table; unchanged
// when it never does. Names compare without regard to ASCII case. UTF-8.
std::string RenameTableColumn(std::string_view formula, std::string_view table,
                              std::string_view from, std::string_view to);

}  // namespace quillmarch::host::workbook
