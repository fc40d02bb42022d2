// The command's English for what a run says by code.
#pragma once

#include <cstdint>
#include <string>

#include "foundation/text/Wide.h"

namespace quillmarch::host {

// One sentence without its full stop for the code of a failed run. The service's own `message`
// follows in brackets where it is plain English text and says more.
std::string FailureSentence(WideView code, WideView message);

// "1 text", "2 texts".
std::string Counted(std::int64_t count, const char* noun);

}  // namespace quillmarch::host
