// Which engine a name means, and what it can serve.
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

Result<std::unique_ptr<Engine>> MakeEngine(const EngineOptions& options) {
  if (options.name == "pseudo") {
    // Written so that NaN fails as well.
    if (!(options.growth >= 1 && options.growth <= kLargestGrowth)) {
      return Error{ErrorCode::kBadArgument, "The growth must be between 1 and 20."};
    }
    return MakePseudoEngine(options.growth);
  }
  if (options.name == "openai") return MakeOpenAiEngine(options);
  if (IsOffline(options.name)) {
    std::vector<ApertiumPair> pairs = FindApertiumPairs(options.apertiumModes);
    if (pairs.empty()) return Error{ErrorCode::kNotFound, kNoApertium};
    return MakeApertiumEngine(options, std::move(pairs),
                              options.name == "auto" ? "auto" : "apertium");
  }
  return Error{ErrorCode::kBadArgument, "There is no engine \"" + options.name +
                                            "\"; choose auto, apertium, openai or pseudo."};
}

Result<void> EngineServesPair(const EngineOptions& options, const std::string& source,
                              const std::string& target) {
  if (!IsOffline(options.name)) {
    Result<std::unique_ptr<Engine>> engine = MakeEngine(options);
    if (!engine) return std::move(engine).error();
    return {};
  }
  const std::vector<ApertiumPair> pairs = FindApertiumPairs(options.apertiumModes);
  if (source != "auto") {
    const std::string from = ReadLanguageCode(source).language;
    if (!from.empty() && from == ReadLanguageCode(target).language) return {};
    if (ChooseApertiumPair(pairs, source, target) != nullptr) return {};
  } else {
    for (const ApertiumPair& pair : pairs) {
      if (ChooseApertiumPair(pairs, pair.source, target) != nullptr) return {};
    }
  }
  return Error{ErrorCode::kUnsupported, AdviseOnPair(pairs, source, target)};
}

}  // namespace quillmarch::service
