// An engine that a test scripts.
#pragma once

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "service/engines/Engine.h"

namespace quillmarch::service {

class ScriptedEngine : public Engine {
 public:
  using Answer = std::function<EngineResult(const EngineRequest&, const std::atomic<bool>& stop)>;
  explicit ScriptedEngine(Answer answer) : answer_(std::move(answer)) {}
  const char* name() const override { return "scripted"; }
  EngineResult Translate(const EngineRequest& request, const std::atomic<bool>& stop) override {
    return answer_(request, stop);
  }

 private:
  Answer answer_;
};

inline EngineResult Translated(std::vector<std::string> translations) {
  EngineResult result;
  result.ok = true;
  result.translations = std::move(translations);
  return result;
}

// Gives each text back as it is.
inline EngineResult Echo(const EngineRequest& request, const std::atomic<bool>&) {
  return Translated(request.texts);
}

inline EngineResult Failed(EngineFailure failure, const char* message) {
  EngineResult result;
  result.failure = failure;
  result.message = message;
  return result;
}

}  // namespace quillmarch::service
