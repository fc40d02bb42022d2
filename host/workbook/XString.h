// Text in a workbook's parts: what XML cannot hold is written as "_x000D_", a code unit in four
// hexadecimal digits.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host::workbook {

// Both in UTF-8. A pair of escaped surrogates becomes one character, a lone one U+FFFD.
std::string DecodeXString(std::string_view text);
// The reverse: what would read as an escape is escaped itself. A line feed stays one.
std::string EncodeXString(std::string_view text);

}  // namespace quillmarch::host::workbook
