// The readers of foundation/JsonText.h once more, in the plainest way, unit by unit: a reader that
// is made fast must still give what these give.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// What every reader gives for one text and key, in one text that can be compared.
Wide GivenByReaders(WideView json, WideView key);
Wide GivenPlainly(WideView json, WideView key);

}  // namespace quillmarch::addin
