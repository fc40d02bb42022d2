// The command's English for what a run says by code.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch::host {

// One sentence without its full stop for a failed run: by `failure`, which tells the causes of one
// code apart, else by its code. The service's own `message` follows in brackets where it is plain
// English text and says more.
std::string FailureSentence(WideView code, WideView message, ResultCode failure = kOk);

// "Cannot open talk.pptx: no such file." `action` is "open talk.pptx"; `reason` may be a clause or
// a sentence.
std::string CannotSentence(std::string_view action, std::string_view reason);

// A deck or an output as a person calls it.
std::string ShownDeck(const std::string& deck);
std::string ShownOutput(const std::string& output);

// "1 text", "2 texts".
std::string Counted(std::int64_t count, const char* noun);

}  // namespace quillmarch::host
