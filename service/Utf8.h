// The little the service needs to know of UTF-8.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillmarch::service {

// Decodes the character at `at` and moves `at` after it. What is not UTF-8 (a stray or missing
// continuation byte, an overlong form, a surrogate, a value above U+10FFFF) gives U+FFFD and moves
// on by one byte. `at` must be inside the text.
char32_t NextCharacter(std::string_view text, std::size_t& at);

// Appends one character; `c` is a Unicode scalar value.
void AppendUtf8(std::string& out, char32_t c);

// The same text with U+FFFD in place of each byte that is no UTF-8.
std::string ValidUtf8(std::string_view text);

// Length in UTF-16 units, as the add-in counts.
std::size_t Utf16Length(std::string_view text);

// What ends a line: LF, VT, FF, CR, NEL and the two separators of Unicode.
bool IsLineBreak(char32_t c);

// Spaces, tabs, line breaks of all kinds, no-break and ideographic spaces.
bool IsBlank(char32_t c);

// The text cut into leading white space, core and trailing white space; a text without a core is
// all leading.
struct TrimmedText {
  std::string_view leading;
  std::string_view core;
  std::string_view trailing;
};
TrimmedText TrimBlanks(std::string_view text);

}  // namespace quillmarch::service
