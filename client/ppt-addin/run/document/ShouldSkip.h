// Whether a text has nothing worth sending: no letter of any script. Pure; any thread.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// U+4E00 to U+9FFF, U+3040 to U+30FF, U+AC00 to U+D7AF.
bool IsCjkUnit(char16_t unit);
bool IsHanUnit(char16_t unit);  // U+4E00 to U+9FFF

bool ShouldSkip(WideView text);

}  // namespace quillmarch::addin
