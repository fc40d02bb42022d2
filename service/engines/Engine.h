// A translation engine behind the service: a list of texts in, as many out, in the same order.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace quillmarch::service {

struct EngineTerm {
  std::string source;
  std::string target;
  std::string note;
};

// All text is UTF-8.
struct EngineRequest {
  std::vector<std::string> texts;
  std::string sourceLang;  // "auto": the engine detects it
  std::string targetLang;
  std::string instruction;
  std::vector<EngineTerm> glossary;
};

struct EngineResult {
  bool ok = false;
  std::vector<std::string> translations;
  int status = 500;     // HTTP status for the client when not ok
  std::string code;     // machine code in snake case, such as "engine_unavailable"
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
  std::string openaiCaFile;   // PEM; trusted beside the system's authorities
  // From the request to the answer's last byte, waits for a busy server included. Below the 90 s
  // that the add-in waits for an answer, so that it hears the reason.
  int openaiTimeLimitMs = 80'000;
  std::string apertiumModes = "/usr/share/apertium/modes";
  int apertiumTimeLimitMs = 20'000;  // without a sign of life from the pipeline
};

// Null and a sentence in `error` when the engine cannot be had.
std::unique_ptr<Engine> MakeEngine(const EngineOptions& options, std::string& error);

// Whether the engine can serve a pair; a sentence on what to do in `advice` when it can't. `source`
// may be "auto", which is then judged per text at translation.
bool EngineServesPair(const EngineOptions& options, const std::string& source,
                      const std::string& target, std::string& advice);

}  // namespace quillmarch::service
