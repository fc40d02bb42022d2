// POST /v1/translate without its HTTP: a body in, an answer out.
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>

#include "service/TokenTable.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

struct TranslateAnswer {
  int status = 200;
  std::string body;
  // For the request log.
  std::size_t texts = 0;
  std::size_t chars = 0;  // UTF-16 units of the texts
};

// `token` pays, when there is one: the texts' length is taken from its credits and given back when
// the engine fails. Never throws for what a client sends; blocks as long as the engine does.
TranslateAnswer AnswerTranslate(const std::string& body, std::size_t maxTexts, Engine& engine,
                                TokenTable& tokens, std::optional<std::size_t> token,
                                const std::atomic<bool>& stop);

}  // namespace quillmarch::service
