#include "service/engines/ApertiumEngine.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <mutex>
#include <utility>

#include "service/Utf8.h"
#include "service/engines/ApertiumProcess.h"
#include "service/engines/ApertiumText.h"
#include "service/engines/LanguageCode.h"
#include "service/engines/LanguageDetector.h"

namespace quillmarch::service {

namespace {

// From this many characters on, one text's own language is believed.
constexpr std::size_t kTrustedText = 20;
// From this many on, a request in a language without a pair is refused rather than guessed at.
constexpr std::size_t kTrustedRequest = 40;

EngineResult Fail(int status, const char* code, std::string message) {
  EngineResult result;
  result.status = status;
  result.code = code;
  result.message = std::move(message);
  return result;
}

bool SameLanguage(const std::string& a, const std::string& b) {
  return MacroLanguage(a) == MacroLanguage(b);
}

class ApertiumEngine : public Engine {
 public:
  ApertiumEngine(const EngineOptions& options, std::vector<ApertiumPair> pairs, const char* name)
      : pairs_(std::move(pairs)), silenceLimit_(options.apertiumTimeLimitMs), name_(name) {}

  const char* name() const override { return name_; }
  EngineResult Translate(const EngineRequest& request, const std::atomic<bool>& stop) override;

 private:
  struct Pipeline {
    Pipeline(const std::string& modeFile, std::chrono::milliseconds limit)
        : process(modeFile, limit) {}
    std::mutex mutex;
    ApertiumProcess process;
  };
  // The texts that go through one pair, by their place in the request.
  using Plan = std::map<const ApertiumPair*, std::vector<std::size_t>>;

  bool MakePlan(const EngineRequest& request, Plan& plan, std::string& advice);
  // Null where the request is in the target language already.
  bool JudgeRequest(const EngineRequest& request, const ApertiumPair*& pair, std::string& advice);
  const ApertiumPair* PairFrom(const std::string& source, const std::string& target) const {
    return ChooseApertiumPair(pairs_, source, target);
  }
  const ApertiumPair* AnyPairTo(const std::string& target) const;
  Pipeline& PipelineOf(const ApertiumPair& pair);
  ApertiumProcess::Outcome RunPair(const ApertiumPair& pair, const std::vector<std::size_t>& places,
                                   const EngineRequest& request, EngineResult& result,
                                   const std::atomic<bool>& stop);

  const std::vector<ApertiumPair> pairs_;
  const std::chrono::milliseconds silenceLimit_;
  const char* const name_;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<Pipeline>> pipelines_;  // by mode file
  std::map<std::string, std::string> lastRecognised_;           // source by target
};

const ApertiumPair* ApertiumEngine::AnyPairTo(const std::string& target) const {
  const ApertiumPair* found = nullptr;
  for (const ApertiumPair& pair : pairs_) {
    const ApertiumPair* chosen = PairFrom(pair.source, target);
    if (chosen != nullptr && found == nullptr) found = chosen;
  }
  return found;
}

bool ApertiumEngine::JudgeRequest(const EngineRequest& request, const ApertiumPair*& pair,
                                  std::string& advice) {
  const std::string target = ReadLanguageCode(request.targetLang).language;
  std::string joined;
  for (const std::string& text : request.texts) joined += text + "\n";
  const DetectedLanguage detected = DetectLanguage(joined);

  const std::lock_guard lock(mutex_);
  if (detected.reliable) {
    if (SameLanguage(detected.language, target)) {
      pair = nullptr;
      return true;
    }
    pair = PairFrom(detected.language, request.targetLang);
    if (pair != nullptr) {
      lastRecognised_[target] = detected.language;
      return true;
    }
  }
  if (const auto last = lastRecognised_.find(target); last != lastRecognised_.end()) {
    pair = PairFrom(last->second, request.targetLang);
    return true;
  }
  if (detected.reliable && detected.letters >= kTrustedRequest) {
    advice = AdviseOnPair(pairs_, detected.language, request.targetLang);
    return false;
  }
  pair = PairFrom("eng", request.targetLang);
  if (pair == nullptr) pair = PairFrom(detected.language, request.targetLang);
  if (pair == nullptr) pair = AnyPairTo(request.targetLang);
  if (pair == nullptr) advice = AdviseOnPair(pairs_, "auto", request.targetLang);
  return pair != nullptr;
}

bool ApertiumEngine::MakePlan(const EngineRequest& request, Plan& plan, std::string& advice) {
  const bool detect = request.sourceLang == "auto";
  const std::string source = detect ? "" : ReadLanguageCode(request.sourceLang).language;
  const std::string target = ReadLanguageCode(request.targetLang).language;
  if (target.empty() || (!detect && source.empty())) {
    advice = AdviseOnPair(pairs_, request.sourceLang, request.targetLang);
    return false;
  }
  const ApertiumPair* common = nullptr;
  if (detect) {
    if (!JudgeRequest(request, common, advice)) return false;
  } else if (!SameLanguage(source, target)) {
    common = PairFrom(request.sourceLang, request.targetLang);
    if (common == nullptr) {
      advice = AdviseOnPair(pairs_, request.sourceLang, request.targetLang);
      return false;
    }
  }
  for (std::size_t i = 0; i < request.texts.size(); ++i) {
    if (!HasTextToTranslate(request.texts[i])) continue;
    const ApertiumPair* pair = common;
    const DetectedLanguage own = DetectLanguage(request.texts[i]);
    if (own.reliable && own.letters >= kTrustedText) {
      if (SameLanguage(own.language, target)) continue;
      const ApertiumPair* better = detect ? PairFrom(own.language, request.targetLang) : nullptr;
      if (better != nullptr) pair = better;
    }
    if (pair != nullptr) plan[pair].push_back(i);
  }
  return true;
}

ApertiumEngine::Pipeline& ApertiumEngine::PipelineOf(const ApertiumPair& pair) {
  const std::lock_guard lock(mutex_);
  std::unique_ptr<Pipeline>& pipeline = pipelines_[pair.modeFile];
  if (!pipeline) pipeline = std::make_unique<Pipeline>(pair.modeFile, silenceLimit_);
  return *pipeline;
}

ApertiumProcess::Outcome ApertiumEngine::RunPair(const ApertiumPair& pair,
                                                 const std::vector<std::size_t>& places,
                                                 const EngineRequest& request, EngineResult& result,
                                                 const std::atomic<bool>& stop) {
  Pipeline& pipeline = PipelineOf(pair);
  const std::lock_guard lock(pipeline.mutex);
  ApertiumProcess::Outcome outcome = ApertiumProcess::Outcome::kOk;
  const ApertiumRun run = [&](const std::vector<std::string>& streams,
                              std::vector<std::string>& out) {
    outcome = pipeline.process.Translate(streams, out, stop);
    // It may have died since the last request; what these texts do to it shows only in a fresh one.
    if (outcome == ApertiumProcess::Outcome::kDied) {
      outcome = pipeline.process.Translate(streams, out, stop);
    }
    return outcome == ApertiumProcess::Outcome::kOk;
  };
  std::vector<std::string> texts;
  for (const std::size_t place : places) texts.push_back(request.texts[place]);
  std::vector<std::string> translations;
  if (!TranslateTexts(texts, run, translations)) return outcome;
  for (std::size_t i = 0; i < places.size(); ++i) {
    result.translations[places[i]] = std::move(translations[i]);
  }
  return outcome;
}

EngineResult ApertiumEngine::Translate(const EngineRequest& request,
                                       const std::atomic<bool>& stop) {
  Plan plan;
  std::string advice;
  if (!MakePlan(request, plan, advice)) {
    return Fail(400, "unsupported_language_pair", std::move(advice));
  }
  EngineResult result;
  result.translations = request.texts;
  for (const auto& [pair, places] : plan) {
    switch (RunPair(*pair, places, request, result, stop)) {
      case ApertiumProcess::Outcome::kOk:
        break;
      case ApertiumProcess::Outcome::kStopped:
        return Fail(503, "shutting_down", "The service is stopping.");
      case ApertiumProcess::Outcome::kTimedOut:
        return Fail(504, "engine_timeout", "The offline engine did not answer in time.");
      case ApertiumProcess::Outcome::kDied:
        return Fail(502, "engine_failed",
                    "The offline engine ended unexpectedly; check that the packages apertium and "
                    "lttoolbox are complete.");
    }
  }
  result.ok = true;
  return result;
}

}  // namespace

std::unique_ptr<Engine> MakeApertiumEngine(const EngineOptions& options,
                                           std::vector<ApertiumPair> pairs, const char* name) {
  return std::make_unique<ApertiumEngine>(options, std::move(pairs), name);
}

}  // namespace quillmarch::service
