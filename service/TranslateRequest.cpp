#include "service/TranslateRequest.h"

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>
#include <vector>

#include "service/JsonText.h"
#include "service/Utf8.h"

namespace quillmarch::service {

namespace {

using Json = nlohmann::json;

// The wire needs three levels; a deeper body only costs memory.
constexpr int kMaxDepth = 16;

struct WireRequest {
  EngineRequest engine;
  std::vector<std::string> unitIds;
};

TranslateAnswer Refuse(int status, const char* code, const std::string& message) {
  TranslateAnswer answer;
  answer.status = status;
  answer.body = ErrorJson(code, message);
  return answer;
}

// Throws a sentence where the value is there and no string.
std::string ReadString(const Json& object, const char* key, const char* fallback = "") {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return fallback;
  if (!found->is_string()) throw std::runtime_error(std::string(key) + " must be a string.");
  return found->get<std::string>();
}

std::vector<std::string> ReadStrings(const Json& object, const char* key) {
  std::vector<std::string> out;
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return out;
  if (!found->is_array()) throw std::runtime_error(std::string(key) + " must be an array.");
  out.reserve(found->size());
  for (const Json& entry : *found) {
    if (!entry.is_string()) {
      throw std::runtime_error(std::string(key) + " must hold strings only.");
    }
    out.push_back(entry.get<std::string>());
  }
  return out;
}

// Counted beforehand: asked to report every value with its depth, the parser takes twice as long.
bool IsDeep(const std::string& body) {
  int depth = 0;
  bool inString = false;
  for (std::size_t i = 0; i < body.size(); ++i) {
    const char c = body[i];
    if (inString && c == '\\') {
      ++i;
    } else if (c == '"') {
      inString = !inString;
    } else if (!inString && (c == '[' || c == '{')) {
      if (++depth > kMaxDepth) return true;
    } else if (!inString && (c == ']' || c == '}')) {
      --depth;
    }
  }
  return false;
}

WireRequest ReadRequest(const std::string& body) {
  if (IsDeep(body)) throw std::runtime_error("The body is nested too deeply.");
  Json json;
  try {
    json = Json::parse(body);
  } catch (const Json::exception&) {
    throw std::runtime_error("The body is no valid JSON.");
  }
  if (!json.is_object()) throw std::runtime_error("The body must be a JSON object.");
  if (!json.contains("texts")) throw std::runtime_error("texts is missing.");

  WireRequest request;
  request.engine.texts = ReadStrings(json, "texts");
  request.unitIds = ReadStrings(json, "unitIds");
  request.engine.sourceLang = ReadString(json, "sourceLang", "auto");
  request.engine.targetLang = ReadString(json, "targetLang");
  request.engine.instruction = ReadString(json, "instruction");
  if (request.engine.sourceLang.empty()) request.engine.sourceLang = "auto";
  if (request.engine.targetLang.empty()) throw std::runtime_error("targetLang is missing.");

  const auto glossary = json.find("glossary");
  if (glossary != json.end() && !glossary->is_null()) {
    if (!glossary->is_array()) throw std::runtime_error("glossary must be an array.");
    for (const Json& entry : *glossary) {
      if (!entry.is_object()) throw std::runtime_error("glossary must hold objects only.");
      request.engine.glossary.push_back(
          {ReadString(entry, "source"), ReadString(entry, "target"), ReadString(entry, "note")});
    }
  }
  return request;
}

// An engine's bug must cost its request and not the service.
EngineResult Run(Engine& engine, const EngineRequest& request, const std::atomic<bool>& stop) {
  EngineResult result;
  try {
    result = engine.Translate(request, stop);
  } catch (const std::exception& e) {
    result = {};
    result.code = "engine_failed";
    result.message = std::string("The engine failed: ") + e.what();
    return result;
  }
  if (result.ok && result.translations.size() != request.texts.size()) {
    result.ok = false;
    result.status = 502;
    result.code = "engine_bad_answer";
    result.message = "The engine gave " + std::to_string(result.translations.size()) +
                     " translations for " + std::to_string(request.texts.size()) + " texts.";
  }
  return result;
}

}  // namespace

TranslateAnswer AnswerTranslate(const std::string& body, std::size_t maxTexts, Engine& engine,
                                TokenTable& tokens, std::optional<std::size_t> token,
                                const std::atomic<bool>& stop) {
  WireRequest request;
  try {
    request = ReadRequest(body);
  } catch (const std::runtime_error& e) {
    return Refuse(400, "bad_request", e.what());
  }

  std::size_t chars = 0;
  for (const std::string& text : request.engine.texts) chars += Utf16Length(text);
  const std::size_t texts = request.engine.texts.size();
  const auto counted = [&](TranslateAnswer answer) {
    answer.texts = texts;
    answer.chars = chars;
    return answer;
  };

  if (texts > maxTexts) {
    return counted(Refuse(413, "too_many_texts",
                          "A request may hold " + std::to_string(maxTexts) + " texts at most."));
  }
  if (token && !tokens.Take(*token, chars)) {
    return counted(
        Refuse(402, "insufficient_credits", "The token has not enough credits left for this."));
  }
  const EngineResult result = Run(engine, request.engine, stop);
  if (!result.ok) {
    if (token) tokens.GiveBack(*token, chars);
    return counted(Refuse(result.status, result.code.c_str(), result.message));
  }

  // The add-in takes the first occurrence of each key for it, so the translations stand in front
  // of everything that holds text.
  TranslateAnswer answer;
  answer.body = "{\"translations\":";
  AppendJsonStrings(answer.body, result.translations);
  if (!request.unitIds.empty()) {
    answer.body += ",\"unitIds\":";
    AppendJsonStrings(answer.body, request.unitIds);
  }
  answer.body += '}';
  return counted(std::move(answer));
}

}  // namespace quillmarch::service
