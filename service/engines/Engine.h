// A translation engine of the service: a list of texts in, as many out, in the same order.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "foundation/text/Result.h"

namespace quillmarch::service {

struct EngineTerm {
  std::string source;
  std::string target;  // empty or the source itself: the term is not translated
  std::string note;
};

// All text is UTF-8.
struct EngineRequest {
  std::vector<std::string> texts;
  std::string sourceLang;  // "auto": the engine detects it
  std::string targetLang;
  std::string instruction;
  std::vector<EngineTerm> glossary;
  // Who asks; engines share what they have fairly between clients.
  std::string client;
  // The run that the request is part of, unique among all clients; empty when it is part of none.
  // What an engine learns from one request it may use for later ones of the same run only.
  std::string run;
};

// Why a text came back as it was.
enum class LeftCause {
  kInTargetLanguage,  // there is nothing to translate
  kNoPair,            // the engine has no pair of languages for it
  kTooLongWord,       // it holds a word that no dictionary has and that would block the engine
  kNoTranslation,     // the engine gave back an empty text
};

struct LeftText {
  std::size_t place = 0;  // in the request
  LeftCause cause = LeftCause::kNoPair;
  std::string language;  // ISO 639-3, where it was recognised
};

enum class EngineFailure {
  kUnsupportedPair,  // none of the texts can be served; asking again is of no use
  kUnavailable,      // it can't be reached
  kRefused,          // the model's server refuses us for good: key, address or model are wrong
  kTimeout,
  kFailed,
  kBadAnswer,
  kRateLimited,
  kStopping,
};

struct EngineResult {
  bool ok = false;
  std::vector<std::string> translations;
  std::vector<LeftText> left;  // in order of their places
  // When not ok.
  EngineFailure failure = EngineFailure::kFailed;
  std::string message;  // one sentence for the user
};

class Engine {
 public:
  virtual ~Engine() = default;
  virtual const char* name() const = 0;
  // Blocking; may be called by several threads at once. Returns early when `stop` becomes true.
  virtual EngineResult Translate(const EngineRequest& request, const std::atomic<bool>& stop) = 0;
};

struct EngineOptions {
  std::string name = "auto";  // "auto", "apertium", "openai" or "pseudo"
  double growth = 1.0;        // pseudo: how many times as long a text becomes
  std::string openaiUrl;      // base URL of a server that speaks the chat completions wire
  std::string openaiModel;
  std::string openaiKeyFile;  // first line is the key; empty: no key is sent
  std::string openaiCaFile;   // PEM; trusted in addition to the system's authorities
  // From the request to the answer's last byte, including waits for a busy server. Below the 90 s
  // that the add-in waits for an answer, so that it hears the reason.
  int openaiTimeLimitMs = 80'000;
  std::string apertiumModes = "/usr/share/apertium/modes";
  int apertiumTimeLimitMs = 20'000;  // without a sign of life from the pipeline
};

// Fails with a sentence when there is no such engine or it lacks something.
Result<std::unique_ptr<Engine>> MakeEngine(const EngineOptions& options);

// Whether the engine can serve a pair; the error's words say what to do when it can't. `source` may
// be "auto", which is then judged per text at translation.
Result<void> EngineServesPair(const EngineOptions& options, const std::string& source,
                              const std::string& target);

}  // namespace quillmarch::service
