#include "service/TranslateRequest.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "service/BoundedJson.h"
#include "service/JsonText.h"
#include "service/Utf8.h"

namespace quillmarch::service {

namespace {

using Json = nlohmann::json;

// The wire needs three levels; a deeper body only costs memory.
constexpr std::size_t kMaxDepth = 16;
constexpr std::size_t kValuesOfATerm = 8;
constexpr std::size_t kValuesAround = 1'000;

struct WireRequest {
  EngineRequest engine;
  std::vector<std::string> unitIds;
};

struct FailureOnTheWire {
  EngineFailure failure;
  int status;
  const char* code;
  // The add-in asks again, and then for each half, after any code but a few. What will be refused
  // each time goes out under one of those few; the cause has a field of its own.
  bool permanent = false;
};

constexpr FailureOnTheWire kFailures[] = {
    {EngineFailure::kUnsupportedPair, 400, "unsupported_language_pair", true},
    {EngineFailure::kRefused, 502, "engine_refused", true},
    {EngineFailure::kUnavailable, 502, "engine_unavailable"},
    {EngineFailure::kTimeout, 504, "engine_timeout"},
    {EngineFailure::kFailed, 502, "engine_failed"},
    {EngineFailure::kBadAnswer, 502, "engine_bad_answer"},
    {EngineFailure::kRateLimited, 429, "rate_limited"},
    {EngineFailure::kStopping, 503, "shutting_down"},
};
constexpr char kEndsTheLadder[] = "unauthorized";

TranslateAnswer Refuse(int status, const char* code, const std::string& message) {
  TranslateAnswer answer;
  answer.status = status;
  answer.cause = code;
  answer.body = ErrorJson(code, message);
  return answer;
}

TranslateAnswer Refuse(const EngineResult& result) {
  const auto* wire =
      std::find_if(std::begin(kFailures), std::end(kFailures),
                   [&](const FailureOnTheWire& known) { return known.failure == result.failure; });
  TranslateAnswer answer = Refuse(wire->status, wire->code, result.message);
  if (wire->permanent) answer.body = ErrorJson(kEndsTheLadder, result.message, wire->code);
  answer.failure = result.failure;
  answer.failureMessage = result.message;
  return answer;
}

Error Malformed(std::string words) {
  return {ErrorCode::kDamaged, std::move(words)};
}

// Reads members of one object; the first one of a wrong type is the error.
class Members {
 public:
  explicit Members(const Json& object) : object_(object) {}

  std::string Text(const char* key, const char* fallback = "") {
    const Json* value = Find(key);
    if (value == nullptr) return fallback;
    if (value->is_string()) return value->get<std::string>();
    Fail(std::string(key) + " must be a string.");
    return {};
  }

  std::vector<std::string> Texts(const char* key) {
    std::vector<std::string> out;
    const Json* value = Find(key);
    if (value == nullptr) return out;
    if (!value->is_array()) Fail(std::string(key) + " must be an array.");
    for (const Json& entry : *value) {
      if (!entry.is_string()) {
        Fail(std::string(key) + " must hold only strings.");
        break;
      }
      out.push_back(entry.get<std::string>());
    }
    return out;
  }

  // Null where it is missing or null.
  const Json* Find(const char* key) const {
    const auto found = object_.find(key);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }

  void Fail(std::string words) {
    if (!error_) error_ = Malformed(std::move(words));
  }
  const std::optional<Error>& error() const { return error_; }

 private:
  const Json& object_;
  std::optional<Error> error_;
};

Result<std::vector<EngineTerm>> ReadGlossary(const Json& glossary) {
  if (!glossary.is_array()) return Malformed("glossary must be an array.");
  if (glossary.size() > kMaxTerms) {
    return Error{ErrorCode::kTooLarge,
                 "A request may hold at most " + std::to_string(kMaxTerms) + " glossary terms."};
  }
  std::vector<EngineTerm> terms;
  for (const Json& entry : glossary) {
    if (!entry.is_object()) return Malformed("glossary must hold only objects.");
    Members members(entry);
    EngineTerm term{members.Text("source"), members.Text("target"), members.Text("note")};
    if (members.error()) return *members.error();
    terms.push_back(std::move(term));
  }
  return terms;
}

// "client\ntrace\nrun"; empty when the body names no run.
std::string ReadRun(const Json* trace, const std::string& client) {
  if (trace == nullptr || !trace->is_object()) return {};
  Members members(*trace);
  const std::string id = members.Text("clientTraceId");
  const std::string number = members.Text("runId");
  return id.empty() && number.empty() ? "" : client + "\n" + id + "\n" + number;
}

Result<WireRequest> ReadRequest(const std::string& body, const TranslateSetting& setting) {
  const JsonBounds bounds{kMaxDepth,
                          2 * setting.maxTexts + kMaxTerms * kValuesOfATerm + kValuesAround};
  const Result<Json> json = ParseJson(body, bounds);
  if (!json && json.error().code == ErrorCode::kTooLarge) {
    return Error{ErrorCode::kTooLarge, "The body holds too many values."};
  }
  if (!json) return Malformed("The body cannot be read: " + json.error().words + ".");
  if (!json->is_object()) return Malformed("The body must be a JSON object.");
  if (!json->contains("texts")) return Malformed("texts is missing.");

  Members members(*json);
  WireRequest request;
  request.engine.texts = members.Texts("texts");
  request.unitIds = members.Texts("unitIds");
  request.engine.sourceLang = members.Text("sourceLang", "auto");
  request.engine.targetLang = members.Text("targetLang");
  request.engine.instruction = members.Text("instruction");
  if (members.error()) return *members.error();
  if (request.engine.sourceLang.empty()) request.engine.sourceLang = "auto";
  if (request.engine.targetLang.empty()) return Malformed("targetLang is missing.");
  request.engine.client = setting.client;
  request.engine.run = ReadRun(members.Find("trace"), setting.client);
  if (const Json* glossary = members.Find("glossary")) {
    Result<std::vector<EngineTerm>> terms = ReadGlossary(*glossary);
    if (!terms) return std::move(terms).error();
    request.engine.glossary = std::move(terms).value();
  }
  return request;
}

// A text that an engine answers with nothing keeps its words.
void KeepEmptyOnes(const EngineRequest& request, EngineResult& result) {
  for (std::size_t i = 0; i < request.texts.size(); ++i) {
    if (TrimBlanks(request.texts[i]).core.empty()) continue;
    if (!TrimBlanks(result.translations[i]).core.empty()) continue;
    result.translations[i] = request.texts[i];
    result.left.push_back({i, LeftCause::kNoTranslation, {}});
  }
}

// An engine's bug must cost its request and not the service.
EngineResult Run(Engine& engine, const EngineRequest& request, const std::atomic<bool>& stop) {
  EngineResult result;
  try {
    result = engine.Translate(request, stop);
  } catch (const std::exception& e) {
    result = {};
    result.message = std::string("The engine failed: ") + e.what();
    return result;
  }
  if (!result.ok) return result;
  if (result.translations.size() != request.texts.size()) {
    result.ok = false;
    result.failure = EngineFailure::kBadAnswer;
    result.message = "The engine gave " + std::to_string(result.translations.size()) +
                     " translations for " + std::to_string(request.texts.size()) + " texts.";
    return result;
  }
  KeepEmptyOnes(request, result);
  return result;
}

}  // namespace

TranslateAnswer AnswerTranslate(const std::string& body, const TranslateSetting& setting) {
  Result<WireRequest> read = ReadRequest(body, setting);
  if (!read) {
    const bool tooLarge = read.error().code == ErrorCode::kTooLarge;
    return Refuse(tooLarge ? 413 : 400, tooLarge ? "payload_too_large" : "bad_request",
                  read.error().words);
  }
  const WireRequest& request = *read;
  std::size_t chars = 0;
  for (const std::string& text : request.engine.texts) chars += Utf16Length(text);
  const std::size_t texts = request.engine.texts.size();
  const auto counted = [&](TranslateAnswer answer) {
    answer.texts = texts;
    answer.chars = chars;
    return answer;
  };

  if (texts > setting.maxTexts) {
    return counted(
        Refuse(413, "too_many_texts",
               "A request may hold at most " + std::to_string(setting.maxTexts) + " texts."));
  }
  if (setting.token && !setting.tokens.Take(*setting.token, chars)) {
    return counted(
        Refuse(402, "insufficient_credits", "The token has not enough credits left for this."));
  }
  const EngineResult result = Run(setting.engine, request.engine, setting.stop);
  if (!result.ok) {
    if (setting.token) setting.tokens.GiveBack(*setting.token, chars);
    return counted(Refuse(result));
  }

  // The add-in takes the first occurrence of each key for it, so the translations come before
  // everything that holds text.
  TranslateAnswer answer;
  answer.body = "{\"translations\":";
  AppendJsonStrings(answer.body, result.translations);
  if (!request.unitIds.empty()) {
    answer.body += ",\"unitIds\":";
    AppendJsonStrings(answer.body, request.unitIds);
  }
  answer.body += '}';
  for (const LeftText& left : result.left) {
    answer.left.push_back({left.cause, left.language, request.engine.texts[left.place]});
  }
  return counted(std::move(answer));
}

}  // namespace quillmarch::service
