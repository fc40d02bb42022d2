// POST /v1/translate without its HTTP: a body in, an answer out.
#pragma once

#include <atomic>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "service/TokenTable.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

// Glossaries have no more terms than the add-in asks a resolve for, five times over.
inline constexpr std::size_t kMaxTerms = 1'000;

struct TranslateAnswer {
  int status = 200;
  std::string body;
  // For the request log.
  std::size_t texts = 0;
  std::size_t chars = 0;  // UTF-16 units of the texts
  std::string cause;      // what kept it from being translated, in snake case
  // For the report of the program around the service.
  struct Left {
    LeftCause cause = LeftCause::kNoPair;
    std::string language;
    std::string text;
  };
  std::vector<Left> left;
  std::optional<EngineFailure> failure;
  std::string failureMessage;
};

// Who asks, and what may be used for it.
struct TranslateSetting {
  Engine& engine;
  TokenTable& tokens;
  // Pays, when there is one: the texts' length is taken from its credits and given back when the
  // engine fails.
  TokenHandle token;
  std::string client;
  std::size_t maxTexts = 100;
  const std::atomic<bool>& stop;
};

// Never throws for what a client sends; blocks as long as the engine does. Every body is read
// within fixed bounds on depth and on the number of values.
TranslateAnswer AnswerTranslate(const std::string& body, const TranslateSetting& setting);

}  // namespace quillmarch::service
