// Titles in capitals: they stay in capitals when they are translated.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::service {

// Latin, Greek and Cyrillic letters in capitals; everything else as it is.
std::string InCapitals(std::string_view text);

// Whether the text holds two capital letters or more and no small one.
bool IsInCapitals(std::string_view text);

// `translation` with those of its lines in capitals whose line in `source` is. As it is when the
// two have different numbers of lines.
std::string KeepCapitals(std::string_view source, std::string_view translation);

}  // namespace quillmarch::service
