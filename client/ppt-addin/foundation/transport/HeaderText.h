// What may go into a header of a request.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch {

// Whether a value stays inside its own header line: no control characters. Pure.
bool IsHeaderText(WideView value);

}  // namespace quillmarch
