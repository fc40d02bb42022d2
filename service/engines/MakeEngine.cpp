// Which engine a name stands for, and what it can serve.
#include <string>
#include <utility>
#include <vector>

#include "service/engines/ApertiumEngine.h"
#include "service/engines/ApertiumPairs.h"
#include "service/engines/Engine.h"
#include "service/engines/LanguageCode.h"
#include "service/engines/OpenAiEngine.h"
#include "service/engines/PseudoEngine.h"

namespace quillmarch::service {

namespace {

constexpr double kLargestGrowth = 20;

constexpr char kNoApertium[] =
    "No offline translation is installed: run \"sudo apt-get install apertium "
    "apertium-eng-spa\" (or another pair), or use --engine openai with --openai-url URL and "
    "--openai-model NAME.";

bool IsOffline(const std::string& name) {
  return name == "apertium" || name == "auto";
}

}  // namespace

std::unique_ptr<Engine> MakeEngine(const EngineOptions& options, std::string& error) {
  if (options.name == "pseudo") {
    // Written so that a value that is no number fails as well.
    if (!(options.growth >= 1 && options.growth <= kLargestGrowth)) {
      error = "The growth must be between 1 and 20.";
      return nullptr;
    }
    return MakePseudoEngine(options.growth);
  }
  if (options.name == "openai") return MakeOpenAiEngine(options, error);
  if (IsOffline(options.name)) {
    std::vector<ApertiumPair> pairs = FindApertiumPairs(options.apertiumModes);
    if (pairs.empty()) {
      error = kNoApertium;
      return nullptr;
    }
    return MakeApertiumEngine(options, std::move(pairs),
                              options.name == "auto" ? "auto" : "apertium");
  }
  error =
      "There is no engine \"" + options.name + "\"; there are auto, apertium, openai and pseudo.";
  return nullptr;
}

bool EngineServesPair(const EngineOptions& options, const std::string& source,
                      const std::string& target, std::string& advice) {
  if (!IsOffline(options.name)) return MakeEngine(options, advice) != nullptr;
  const std::vector<ApertiumPair> pairs = FindApertiumPairs(options.apertiumModes);
  if (source != "auto") {
    const std::string from = ReadLanguageCode(source).language;
    if (!from.empty() && from == ReadLanguageCode(target).language) return true;
    if (ChooseApertiumPair(pairs, source, target) != nullptr) return true;
  } else {
    for (const ApertiumPair& pair : pairs) {
      if (ChooseApertiumPair(pairs, pair.source, target) != nullptr) return true;
    }
  }
  advice = AdviseOnPair(pairs, source, target);
  return false;
}

}  // namespace quillmarch::service
