// Text for people's terminals: any bytes in, one harmless line of known width out.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillmarch::host {

// The text as valid UTF-8 on one line: control characters, which could steer a terminal, become
// spaces, bytes that are not UTF-8 the replacement character.
std::string PlainLine(std::string_view bytes);

// Columns that a terminal gives the text: 2 for wide East Asian characters and emoji, 0 for
// combining marks, 1 for the rest.
std::size_t DisplayWidth(std::string_view utf8);

// The text, or as much of its beginning as fits into `columns` with "..." after it.
std::string Shorten(std::string_view utf8, std::size_t columns);
// The same, keeping the end, which tells files apart.
std::string ShortenFront(std::string_view utf8, std::size_t columns);

}  // namespace quillmarch::host
