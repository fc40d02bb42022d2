#include "service/engines/OpenAiEngine.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>
#include <utility>

#include "service/engines/ChatClient.h"
#include "service/engines/ChatTranslation.h"

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kStopCheck{50};
constexpr int kUnnamedRetryWaitMs = 1'000;

EngineResult Fail(int status, const char* code, std::string message) {
  EngineResult result;
  result.status = status;
  result.code = code;
  result.message = std::move(message);
  return result;
}

class OpenAiEngine : public Engine {
 public:
  OpenAiEngine(const EngineOptions& options, std::string key)
      : url_(ChatCompletionsUrl(options.openaiUrl)),
        model_(options.openaiModel),
        caFile_(options.openaiCaFile),
        key_(std::move(key)),
        limit_(options.openaiTimeLimitMs) {}

  const char* name() const override { return "openai"; }
  EngineResult Translate(const EngineRequest& request, const std::atomic<bool>& stop) override;

 private:
  EngineResult Read(const ChatReply& reply, const EngineRequest& request) const;

  const std::string url_;
  const std::string model_;
  const std::string caFile_;
  const std::string key_;
  const milliseconds limit_;
};

// False when the service stops first.
bool SleepUntil(Clock::time_point until, const std::atomic<bool>& stop) {
  while (!stop && Clock::now() < until) {
    std::this_thread::sleep_for(std::min<Clock::duration>(kStopCheck, until - Clock::now()));
  }
  return !stop;
}

EngineResult OpenAiEngine::Translate(const EngineRequest& request, const std::atomic<bool>& stop) {
  EngineResult nothing;
  nothing.ok = true;
  if (request.texts.empty()) return nothing;

  const Clock::time_point deadline = Clock::now() + limit_;
  const auto left = [&] {
    return std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
  };
  const std::string body = ChatRequestBody(request, model_);
  ChatReply reply = PostChat(url_, key_, caFile_, body, left(), stop);
  if (reply.outcome == ChatReply::Outcome::kAnswered && reply.status == 429) {
    const int named =
        reply.retryAfterSeconds < 0 ? kUnnamedRetryWaitMs : reply.retryAfterSeconds * 1000;
    const Clock::time_point again = Clock::now() + milliseconds(named);
    // A wait that is cut short would only be refused again.
    if (named <= kLongestRetryWaitMs && again < deadline) {
      if (!SleepUntil(again, stop)) return Fail(503, "shutting_down", "The service is stopping.");
      reply = PostChat(url_, key_, caFile_, body, left(), stop);
    }
  }
  return Read(reply, request);
}

EngineResult OpenAiEngine::Read(const ChatReply& reply, const EngineRequest& request) const {
  switch (reply.outcome) {
    case ChatReply::Outcome::kStopped:
      return Fail(503, "shutting_down", "The service is stopping.");
    case ChatReply::Outcome::kTimedOut:
      return Fail(504, "engine_timeout", "The model's server did not answer in time.");
    case ChatReply::Outcome::kNoConnection:
      return Fail(502, "engine_unavailable",
                  "The model's server can't be reached: " + reply.error + ".");
    case ChatReply::Outcome::kAnswered:
      break;
  }
  if (reply.status == 429) {
    return Fail(429, "rate_limited", "The model's server asks for a pause; try again later.");
  }
  // Not passed on as 401: the add-in would send the user to sign in at this service.
  if (reply.status == 401 || reply.status == 403) {
    return Fail(
        502, "engine_refused",
        "The model's server refused the key (status " + std::to_string(reply.status) + ").");
  }
  if (reply.status < 200 || reply.status >= 300) {
    return Fail(502, "engine_failed",
                "The model's server answered with status " + std::to_string(reply.status) + ".");
  }
  EngineResult result;
  result.ok = ReadChatAnswer(reply.body, request.texts, result.translations, result.message);
  if (!result.ok) {
    result.status = 502;
    result.code = "engine_bad_answer";
  }
  return result;
}

}  // namespace

std::string ChatCompletionsUrl(const std::string& base) {
  std::string url = base;
  while (!url.empty() && url.back() == '/') url.pop_back();
  const std::size_t host = url.find("://");
  const bool hasPath = host != std::string::npos && url.find('/', host + 3) != std::string::npos;
  return url + (hasPath ? "/chat/completions" : "/v1/chat/completions");
}

std::unique_ptr<Engine> MakeOpenAiEngine(const EngineOptions& options, std::string& error) {
  if (options.openaiUrl.empty() || options.openaiModel.empty()) {
    error = "The engine openai needs --openai-url and --openai-model.";
    return nullptr;
  }
  if (options.openaiUrl.rfind("http://", 0) != 0 && options.openaiUrl.rfind("https://", 0) != 0) {
    error = "--openai-url must begin with http:// or https://.";
    return nullptr;
  }
  std::string key;
  if (!options.openaiKeyFile.empty()) {
    std::ifstream file(options.openaiKeyFile);
    if (!std::getline(file, key) || key.empty()) {
      error = "The key file " + options.openaiKeyFile + " can't be read or is empty.";
      return nullptr;
    }
    while (!key.empty() && (key.back() == '\r' || key.back() == ' ')) key.pop_back();
  }
  return std::make_unique<OpenAiEngine>(options, std::move(key));
}

}  // namespace quillmarch::service
