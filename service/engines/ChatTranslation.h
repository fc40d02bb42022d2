// A translation as a chat: the question that is put to a model, and what its answer must be.
#pragma once

#include <string>
#include <vector>

#include "service/engines/Engine.h"

namespace quillmarch::service {

// The body of a chat completions request. The texts are numbered from 1, so that an answer in
// another order can be put right.
std::string ChatRequestBody(const EngineRequest& request, const std::string& model);

// Reads the body of a chat completions answer. The message must hold, with or without prose or a
// code fence around it, a JSON object with a string for each number ({"1":"...","2":"..."}), an
// array of objects with "id" and "text", or either of them under "translations". Each number must
// be there once, and each translation must hold as many locked placeholders as its text. False
// and a sentence otherwise.
bool ReadChatAnswer(const std::string& body, const std::vector<std::string>& texts,
                    std::vector<std::string>& translations, std::string& error);

}  // namespace quillmarch::service
