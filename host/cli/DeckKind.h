// The kinds of deck there are, by file ending and by the content type of the main part.
#pragma once

#include <string>
#include <string_view>

#include "foundation/text/Result.h"

namespace quillmarch::host {

// The ending of a path with its dot, in lower case; empty when there is none.
std::string EndingOf(std::string_view path);

// Whether decks are written under that ending.
bool IsDeckEnding(std::string_view ending);

// The content type that a deck of the type `current` gets when it is saved under `ending`, as
// PowerPoint does when it saves a deck as another kind. An error where the kinds do not go
// together: a file of a kind without macros cannot hold them.
Result<std::string> ContentTypeUnder(std::string_view ending, std::string_view current);

}  // namespace quillmarch::host
