#include "service/AnalyticsEvents.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "service/JsonText.h"

namespace quillmarch::service {

namespace {

using Json = nlohmann::json;

constexpr int kMaxDepth = 8;
constexpr std::size_t kMaxLoggedChars = 80;  // of one value
constexpr std::size_t kMaxLoggedProps = 8;

// A client chooses what stands in an event, so it may hold anything; a log line must stay one
// line, and its fields must stay apart.
std::string Printable(const std::string& text) {
  std::string out;
  for (const char c : text.substr(0, kMaxLoggedChars)) {
    out += c > ' ' && c < '\x7f' && c != '=' ? c : '?';
  }
  return out.empty() ? "-" : out;
}

// Throws a sentence where the value is no string; `required` also where it is missing or empty.
std::string ReadText(const Json& object, const char* key, bool required) {
  const auto found = object.find(key);
  const bool missing = found == object.end() || found->is_null();
  if (!missing && !found->is_string()) {
    throw std::runtime_error(std::string(key) + " must be a string.");
  }
  std::string text = missing ? std::string() : found->get<std::string>();
  if (required && text.empty()) throw std::runtime_error(std::string(key) + " is missing.");
  return text;
}

Json ReadObject(const Json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return Json::object();
  if (!found->is_object()) throw std::runtime_error(std::string(key) + " must be an object.");
  return *found;
}

std::string LineOf(const Json& event) {
  if (!event.is_object()) throw std::runtime_error("events must hold objects only.");
  std::string line = "event " + Printable(ReadText(event, "event", true));
  const auto add = [&line](const std::string& name, const std::string& value) {
    if (!value.empty()) line += " " + name + "=" + Printable(value);
  };
  add("outcome", ReadText(event, "outcome", false));
  add("errorCode", ReadText(event, "errorCode", false));
  const Json context = ReadObject(event, "context");
  for (const char* key : {"clientVersion", "hostApp", "hostVersion", "os"}) {
    add(key, ReadText(context, key, false));
  }
  const Json props = ReadObject(event, "props");
  std::size_t logged = 0;
  for (const auto& [name, value] : props.items()) {
    if (!value.is_string()) throw std::runtime_error("props must hold strings only.");
    if (logged++ < kMaxLoggedProps) add(Printable(name), value.get<std::string>());
  }
  return line;
}

std::vector<std::string> ReadEvents(const std::string& body) {
  const auto shallow = [](int depth, Json::parse_event_t, Json&) {
    if (depth > kMaxDepth) throw std::runtime_error("The body is nested too deeply.");
    return true;
  };
  Json json;
  try {
    json = Json::parse(body, shallow);
  } catch (const Json::exception&) {
    throw std::runtime_error("The body is no valid JSON.");
  }
  const auto events = json.is_object() ? json.find("events") : json.end();
  if (!json.is_object() || events == json.end() || !events->is_array() || events->empty()) {
    throw std::runtime_error("events must be an array with an event.");
  }
  if (events->size() > kMaxEventsOfARequest) {
    throw std::runtime_error("A request may hold " + std::to_string(kMaxEventsOfARequest) +
                             " events at most.");
  }
  std::vector<std::string> lines;
  for (const Json& event : *events) lines.push_back(LineOf(event));
  return lines;
}

}  // namespace

EventsAnswer AnswerEvents(const std::string& body) {
  EventsAnswer answer;
  try {
    answer.lines = ReadEvents(body);
  } catch (const std::runtime_error& e) {
    answer.status = 400;
    answer.body = ErrorJson("bad_request", e.what());
    return answer;
  }
  answer.body = "{\"accepted\":" + std::to_string(answer.lines.size()) + "}";
  return answer;
}

}  // namespace quillmarch::service
