// The engine for any server that speaks the chat completions wire.
#pragma once

#include <memory>
#include <string>

#include "service/engines/Engine.h"

namespace quillmarch::service {

// The address that requests go to: the base with "/chat/completions", and with "/v1" before it
// where the base has no path of its own.
std::string ChatCompletionsUrl(const std::string& base);

// Fails when URL or model is missing or the key file can't be read.
//
// A server that answers 429 is asked once more, after the time it names, at most
// kLongestRetryWaitMs. Sources and targets may be any languages.
Result<std::unique_ptr<Engine>> MakeOpenAiEngine(const EngineOptions& options);

inline constexpr int kLongestRetryWaitMs = 20'000;

}  // namespace quillmarch::service
