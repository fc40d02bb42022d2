// A translation as a chat: the question that is put to a model, and what its answer must be.
#pragma once

#include <string>
#include <vector>

#include "foundation/text/Result.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

// What a server says of its own failure ({"error":{"message":"..."}} and its relatives), as one
// printable line of bounded length; empty when it says nothing that can be shown.
std::string ServersOwnSentence(const std::string& body);

// The body of a chat completions request. The texts are numbered from 1, so that an answer in
// another order can be put right.
std::string ChatRequestBody(const EngineRequest& request, const std::string& model);

// Reads the body of a chat completions answer. The message must hold, with or without prose or a
// code fence around it, a JSON object with a string for each number ({"1":"...","2":"..."}), an
// array of objects with "id" and "text", or either of them under "translations". Each number must
// be there once, and each translation must hold as many locked placeholders as its text.
Result<std::vector<std::string>> ReadChatAnswer(const std::string& body,
                                                const std::vector<std::string>& texts);

}  // namespace quillmarch::service
