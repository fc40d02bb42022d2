#include "service/engines/ApertiumEngine.h"

#include <chrono>
#include <map>
#include <mutex>
#include <utility>

#include "service/engines/ApertiumPool.h"
#include "service/engines/ApertiumText.h"
#include "service/engines/LanguageCode.h"
#include "service/engines/LanguageDetector.h"
#include "service/engines/RunMemory.h"

namespace quillmarch::service {

namespace {

// From this many letters on, one text's own language is believed.
constexpr std::size_t kTrustedText = 20;
// From this many on, a request in a language without a pair is left alone rather than guessed at.
constexpr std::size_t kTrustedRequest = 40;
// A client gives its pipeline back to those who wait after so much text.
constexpr std::size_t kTurnBytes = 4'000;

EngineResult Fail(EngineFailure failure, std::string message) {
  EngineResult result;
  result.failure = failure;
  result.message = std::move(message);
  return result;
}

bool SameLanguage(const std::string& a, const std::string& b) {
  return MacroLanguage(a) == MacroLanguage(b);
}

// What the texts of a request are taken for that say nothing by themselves.
struct Judgement {
  const ApertiumPair* pair = nullptr;
  LeftCause cause = LeftCause::kInTargetLanguage;  // without a pair
  std::string language;                            // without a pair
};

struct Plan {
  // The texts that go through one pair, by their place in the request.
  std::map<const ApertiumPair*, std::vector<std::size_t>> places;
  std::vector<LeftText> left;
};

class ApertiumEngine : public Engine {
 public:
  ApertiumEngine(const EngineOptions& options, std::vector<ApertiumPair> pairs, const char* name)
      : pairs_(std::move(pairs)), silenceLimit_(options.apertiumTimeLimitMs), name_(name) {}

  const char* name() const override { return name_; }
  EngineResult Translate(const EngineRequest& request, const std::atomic<bool>& stop) override;

 private:
  Result<Plan> MakePlan(const EngineRequest& request);
  Result<Judgement> JudgeRequest(const EngineRequest& request);
  const ApertiumPair* PairFrom(const std::string& source, const std::string& target) const {
    return ChooseApertiumPair(pairs_, source, target);
  }
  const ApertiumPair* AnyPairTo(const std::string& target) const;
  ApertiumPool& PoolOf(const ApertiumPair& pair);
  ApertiumProcess::Outcome RunPair(const ApertiumPair& pair, const std::vector<std::size_t>& places,
                                   const EngineRequest& request, EngineResult& result,
                                   const std::atomic<bool>& stop);
  ApertiumProcess::Outcome RunTurn(ApertiumPool& pool, const std::vector<std::size_t>& places,
                                   const EngineRequest& request, EngineResult& result,
                                   const std::atomic<bool>& stop);

  const std::vector<ApertiumPair> pairs_;
  const std::chrono::milliseconds silenceLimit_;
  const char* const name_;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<ApertiumPool>> pools_;  // by mode file
  RunMemory recognised_;
};

const ApertiumPair* ApertiumEngine::AnyPairTo(const std::string& target) const {
  for (const ApertiumPair& pair : pairs_) {
    if (const ApertiumPair* chosen = PairFrom(pair.source, target)) return chosen;
  }
  return nullptr;
}

Result<Judgement> ApertiumEngine::JudgeRequest(const EngineRequest& request) {
  const std::string target = ReadLanguageCode(request.targetLang).language;
  std::string joined;
  for (const std::string& text : request.texts) joined += text + "\n";
  const DetectedLanguage detected = DetectLanguage(joined);
  const std::string run = request.run.empty() ? "" : request.run + "\n" + target;

  if (detected.reliable) {
    if (SameLanguage(detected.language, target)) return Judgement{};
    if (const ApertiumPair* pair = PairFrom(detected.language, request.targetLang)) {
      recognised_.Note(run, detected.language, true);
      return Judgement{pair, {}, {}};
    }
    if (detected.letters >= kTrustedRequest) {
      recognised_.Note(run, detected.language, false);
      return Judgement{nullptr, LeftCause::kNoPair, detected.language};
    }
  }
  if (const RunMemory::Recognised last = recognised_.Last(run); !last.language.empty()) {
    if (!last.hasPair) return Judgement{nullptr, LeftCause::kNoPair, last.language};
    return Judgement{PairFrom(last.language, request.targetLang), {}, {}};
  }
  const ApertiumPair* pair = PairFrom("eng", request.targetLang);
  if (pair == nullptr) pair = PairFrom(detected.language, request.targetLang);
  if (pair == nullptr) pair = AnyPairTo(request.targetLang);
  if (pair != nullptr) return Judgement{pair, {}, {}};
  return Error{ErrorCode::kUnsupported, AdviseOnPair(pairs_, "auto", request.targetLang)};
}

Result<Plan> ApertiumEngine::MakePlan(const EngineRequest& request) {
  const auto refuse = [&](const std::string& source) {
    return Error{ErrorCode::kUnsupported, AdviseOnPair(pairs_, source, request.targetLang)};
  };
  const bool detect = request.sourceLang == "auto";
  const std::string source = detect ? "" : ReadLanguageCode(request.sourceLang).language;
  const std::string target = ReadLanguageCode(request.targetLang).language;
  if (target.empty() || (!detect && source.empty())) return refuse(request.sourceLang);

  Judgement common;
  if (detect) {
    Result<Judgement> judged = JudgeRequest(request);
    if (!judged) return std::move(judged).error();
    common = std::move(judged).value();
  } else if (!SameLanguage(source, target)) {
    common.pair = PairFrom(request.sourceLang, request.targetLang);
    if (common.pair == nullptr) return refuse(request.sourceLang);
  }
  const bool nothingToDo = !detect && common.pair == nullptr;

  Plan plan;
  for (std::size_t i = 0; i < request.texts.size(); ++i) {
    if (!HasTextToTranslate(request.texts[i])) continue;
    Judgement own = common;
    const DetectedLanguage detected = DetectLanguage(request.texts[i]);
    if (detected.reliable && detected.letters >= kTrustedText && !nothingToDo) {
      own.language = detected.language;
      if (SameLanguage(detected.language, target)) {
        own = {nullptr, LeftCause::kInTargetLanguage, detected.language};
      } else if (detect || !SameLanguage(detected.language, source)) {
        own = {PairFrom(detected.language, request.targetLang), LeftCause::kNoPair,
               detected.language};
      }
    }
    if (own.pair != nullptr) {
      plan.places[own.pair].push_back(i);
      if (HasTooLongWord(request.texts[i])) {
        plan.left.push_back({i, LeftCause::kTooLongWord, own.language});
      }
    } else {
      plan.left.push_back({i, own.cause, own.language.empty() ? target : own.language});
    }
  }
  const bool foreign =
      plan.places.empty() && !plan.left.empty() && plan.left[0].cause == LeftCause::kNoPair;
  if (foreign && request.run.empty()) return refuse(plan.left[0].language);
  return plan;
}

ApertiumPool& ApertiumEngine::PoolOf(const ApertiumPair& pair) {
  const std::lock_guard lock(mutex_);
  std::unique_ptr<ApertiumPool>& pool = pools_[pair.modeFile];
  if (!pool) pool = std::make_unique<ApertiumPool>(pair.modeFile, silenceLimit_);
  return *pool;
}

ApertiumProcess::Outcome ApertiumEngine::RunPair(const ApertiumPair& pair,
                                                 const std::vector<std::size_t>& places,
                                                 const EngineRequest& request, EngineResult& result,
                                                 const std::atomic<bool>& stop) {
  ApertiumPool& pool = PoolOf(pair);
  std::vector<std::size_t> turn;
  std::size_t bytes = 0;
  for (const std::size_t place : places) {
    const std::size_t size = request.texts[place].size();
    if (!turn.empty() && bytes + size > kTurnBytes) {
      const auto outcome = RunTurn(pool, turn, request, result, stop);
      if (outcome != ApertiumProcess::Outcome::kOk) return outcome;
      turn.clear();
      bytes = 0;
    }
    turn.push_back(place);
    bytes += size;
  }
  return RunTurn(pool, turn, request, result, stop);
}

ApertiumProcess::Outcome ApertiumEngine::RunTurn(ApertiumPool& pool,
                                                 const std::vector<std::size_t>& places,
                                                 const EngineRequest& request, EngineResult& result,
                                                 const std::atomic<bool>& stop) {
  const ApertiumPool::Lease lease = pool.Acquire(request.client, stop);
  if (!lease) return ApertiumProcess::Outcome::kStopped;
  ApertiumProcess::Outcome outcome = ApertiumProcess::Outcome::kOk;
  const ApertiumRun run = [&](const std::vector<std::string>& streams,
                              std::vector<std::string>& out) {
    outcome = lease->Translate(streams, out, stop);
    // It may have died since the last request; what these texts do to it shows only in a fresh one.
    if (outcome == ApertiumProcess::Outcome::kDied) outcome = lease->Translate(streams, out, stop);
    return outcome == ApertiumProcess::Outcome::kOk;
  };
  std::vector<std::string> texts;
  for (const std::size_t place : places) texts.push_back(request.texts[place]);
  std::vector<std::string> translations;
  if (!TranslateTexts(texts, request.glossary, run, translations)) return outcome;
  for (std::size_t i = 0; i < places.size(); ++i) {
    result.translations[places[i]] = std::move(translations[i]);
  }
  return outcome;
}

EngineResult ApertiumEngine::Translate(const EngineRequest& request,
                                       const std::atomic<bool>& stop) {
  Result<Plan> plan = MakePlan(request);
  if (!plan) return Fail(EngineFailure::kUnsupportedPair, std::move(plan).error().words);
  EngineResult result;
  result.translations = request.texts;
  result.left = std::move(plan->left);
  for (const auto& [pair, places] : plan->places) {
    switch (RunPair(*pair, places, request, result, stop)) {
      case ApertiumProcess::Outcome::kOk:
        break;
      case ApertiumProcess::Outcome::kStopped:
        return Fail(EngineFailure::kStopping, "The service is stopping.");
      case ApertiumProcess::Outcome::kTimedOut:
        return Fail(EngineFailure::kTimeout, "The offline engine did not answer in time.");
      case ApertiumProcess::Outcome::kDied:
        return Fail(EngineFailure::kFailed,
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
