// What a page answers to the pane's requests.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin::test {

// Every text of a request for translations as "T(text)"; no terms to a request for terms; empty for
// any other message.
Wide AnswerTo(const Wide& message);

}  // namespace quillmarch::addin::test
