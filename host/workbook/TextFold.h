// Texts compared without regard to case, as Excel compares the names of sheets and columns.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host::workbook {

// UTF-8 in and out; every character by Unicode's simple case folding.
std::string FoldCase(std::string_view text);

}  // namespace quillmarch::host::workbook
