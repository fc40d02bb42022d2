#include "service/engines/OpenAiEngine.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <thread>
#include <utility>

#include "service/Utf8.h"
#include "service/engines/ChatClient.h"
#include "service/engines/ChatTranslation.h"

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kStopCheck{50};
constexpr int kUnnamedRetryWaitMs = 1'000;

// A translation is seldom twice as long as its text, and JSON escapes take at most six times as
// much; the rest is room for a model that reasons aloud.
constexpr std::size_t kAnswerPerByte = 16;
constexpr std::size_t kAnswerAtLeast = 512u << 10;
constexpr std::size_t kAnswerAtMost = 8u << 20;

EngineResult Fail(EngineFailure failure, std::string message) {
  EngineResult result;
  result.failure = failure;
  result.message = std::move(message);
  return result;
}

std::size_t MostOf(const EngineRequest& request) {
  std::size_t bytes = 0;
  for (const std::string& text : request.texts) bytes += text.size();
  return std::clamp(bytes * kAnswerPerByte, kAnswerAtLeast, kAnswerAtMost);
}

bool IsEmptyTranslation(const std::string& text, const std::string& translation) {
  return !TrimBlanks(text).core.empty() && TrimBlanks(translation).core.empty();
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
  EngineResult Ask(const EngineRequest& request, Clock::time_point deadline,
                   const std::atomic<bool>& stop) const;
  // Asks once more for the texts whose translation is empty.
  void FillEmpty(const EngineRequest& request, std::vector<std::string>& translations,
                 Clock::time_point deadline, const std::atomic<bool>& stop) const;
  EngineResult Read(const ChatReply& reply, const EngineRequest& request) const;
  EngineResult NoAnswer(const ChatReply& reply) const;

  const std::string url_;
  const std::string model_;
  const std::string caFile_;
  const std::string key_;
  const milliseconds limit_;
};

// "host:port" of a URL, without what may hold a secret.
std::string ServerOf(const std::string& url) {
  std::size_t begin = url.find("://");
  begin = begin == std::string::npos ? 0 : begin + 3;
  const std::size_t end = std::min(url.find('/', begin), url.size());
  const std::size_t user = url.rfind('@', end);
  if (user != std::string::npos && user > begin) begin = user + 1;
  return url.substr(begin, end - begin);
}

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
  EngineResult result = Ask(request, deadline, stop);
  if (result.ok) FillEmpty(request, result.translations, deadline, stop);
  return result;
}

EngineResult OpenAiEngine::Ask(const EngineRequest& request, Clock::time_point deadline,
                               const std::atomic<bool>& stop) const {
  const auto left = [&] {
    return std::chrono::duration_cast<milliseconds>(deadline - Clock::now());
  };
  const std::string body = ChatRequestBody(request, model_);
  const std::size_t most = MostOf(request);
  ChatReply reply = PostChat(url_, key_, caFile_, body, most, left(), stop);
  if (reply.outcome == ChatReply::Outcome::kAnswered && reply.status == 429) {
    const int named =
        reply.retryAfterSeconds < 0 ? kUnnamedRetryWaitMs : reply.retryAfterSeconds * 1000;
    const Clock::time_point again = Clock::now() + milliseconds(named);
    // A wait that is cut short would only be refused again.
    if (named <= kLongestRetryWaitMs && again < deadline) {
      if (!SleepUntil(again, stop)) {
        return Fail(EngineFailure::kStopping, "The service is stopping.");
      }
      reply = PostChat(url_, key_, caFile_, body, most, left(), stop);
    }
  }
  return Read(reply, request);
}

void OpenAiEngine::FillEmpty(const EngineRequest& request, std::vector<std::string>& translations,
                             Clock::time_point deadline, const std::atomic<bool>& stop) const {
  EngineRequest missing = request;
  missing.texts.clear();
  std::vector<std::size_t> places;
  for (std::size_t i = 0; i < translations.size(); ++i) {
    if (!IsEmptyTranslation(request.texts[i], translations[i])) continue;
    places.push_back(i);
    missing.texts.push_back(request.texts[i]);
  }
  if (places.empty() || Clock::now() >= deadline) return;
  EngineResult again = Ask(missing, deadline, stop);
  for (std::size_t i = 0; again.ok && i < places.size(); ++i) {
    translations[places[i]] = std::move(again.translations[i]);
  }
}

EngineResult OpenAiEngine::NoAnswer(const ChatReply& reply) const {
  const std::string server = "The model's server " + ServerOf(url_);
  switch (reply.outcome) {
    case ChatReply::Outcome::kStopped:
      return Fail(EngineFailure::kStopping, "The service is stopping.");
    case ChatReply::Outcome::kTimedOut:
      return Fail(EngineFailure::kTimeout, server + " did not answer in time.");
    case ChatReply::Outcome::kTooLarge:
      return Fail(EngineFailure::kBadAnswer,
                  server + " sent an answer far larger than the texts ask for.");
    case ChatReply::Outcome::kUntrusted:
      return Fail(EngineFailure::kUnavailable,
                  server + " shows a certificate that is not trusted (" + reply.error +
                      "); name its authority with --openai-ca-file.");
    case ChatReply::Outcome::kUnknownName:
      return Fail(EngineFailure::kUnavailable,
                  server + " can't be reached: there is no host of this name.");
    case ChatReply::Outcome::kRefusedPort:
      return Fail(EngineFailure::kUnavailable,
                  server + " can't be reached: nothing accepts connections there.");
    case ChatReply::Outcome::kNoTls:
      return Fail(EngineFailure::kUnavailable,
                  server + " does not speak TLS on this port; try http:// in --openai-url.");
    case ChatReply::Outcome::kNoConnection:
    case ChatReply::Outcome::kAnswered:
      break;
  }
  return Fail(EngineFailure::kUnavailable, server + " can't be reached: " + reply.error + ".");
}

EngineResult OpenAiEngine::Read(const ChatReply& reply, const EngineRequest& request) const {
  if (reply.outcome != ChatReply::Outcome::kAnswered) return NoAnswer(reply);
  const std::string said = ServersOwnSentence(reply.body);
  const std::string status =
      " (status " + std::to_string(reply.status) + ")" + (said.empty() ? "." : ": " + said);
  switch (reply.status) {
    case 429:
      return Fail(EngineFailure::kRateLimited,
                  "The model's server asks for a pause; try again later" + status);
    case 401:
    case 403:
      return Fail(EngineFailure::kRefused, "The model's server refused the key" + status);
    case 404:
    case 405:
      return Fail(EngineFailure::kRefused,
                  "The model's server knows no such address or model" + status);
    default:
      break;
  }
  if (reply.status < 200 || reply.status >= 300) {
    return Fail(EngineFailure::kFailed, "The model's server failed" + status);
  }
  Result<std::vector<std::string>> read = ReadChatAnswer(reply.body, request.texts);
  if (!read) return Fail(EngineFailure::kBadAnswer, std::move(read).error().words);
  EngineResult result;
  result.ok = true;
  result.translations = std::move(read).value();
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

Result<std::unique_ptr<Engine>> MakeOpenAiEngine(const EngineOptions& options) {
  const auto refuse = [](std::string words) {
    return Error{ErrorCode::kBadArgument, std::move(words)};
  };
  if (options.openaiUrl.empty() || options.openaiModel.empty()) {
    return refuse("The engine openai needs --openai-url and --openai-model.");
  }
  if (options.openaiUrl.rfind("http://", 0) != 0 && options.openaiUrl.rfind("https://", 0) != 0) {
    return refuse("--openai-url must begin with http:// or https://.");
  }
  if (!options.openaiCaFile.empty() && !std::ifstream(options.openaiCaFile)) {
    return refuse("Cannot read the authority file " + options.openaiCaFile + ".");
  }
  std::string key;
  if (!options.openaiKeyFile.empty()) {
    std::ifstream file(options.openaiKeyFile);
    if (!std::getline(file, key) || key.empty()) {
      return refuse("The key file " + options.openaiKeyFile + " can't be read or is empty.");
    }
    while (!key.empty() && (key.back() == '\r' || key.back() == ' ')) key.pop_back();
  }
  return std::unique_ptr<Engine>(std::make_unique<OpenAiEngine>(options, std::move(key)));
}

}  // namespace quillmarch::service
