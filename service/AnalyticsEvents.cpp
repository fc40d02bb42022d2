#include "service/AnalyticsEvents.h"

#include <optional>
#include <utility>

#include "service/BoundedJson.h"
#include "service/JsonText.h"

namespace quillmarch::service {

namespace {

using Json = nlohmann::json;

constexpr JsonBounds kBounds{8, 4'096};
constexpr std::size_t kMaxLoggedChars = 80;  // of one value
constexpr std::size_t kMaxLoggedProps = 8;

// A client chooses what an event says, so it may hold anything; a log line must stay one
// line, and its fields must stay apart.
std::string Printable(const std::string& text) {
  std::string out;
  for (const char c : text.substr(0, kMaxLoggedChars)) {
    out += c > ' ' && c < '\x7f' && c != '=' ? c : '?';
  }
  return out.empty() ? "-" : out;
}

Error Malformed(std::string words) {
  return {ErrorCode::kDamaged, std::move(words)};
}

// Empty where it is missing; an error where the value is not a string.
Result<std::string> ReadText(const Json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return std::string();
  if (!found->is_string()) return Malformed(std::string(key) + " must be a string.");
  return found->get<std::string>();
}

Result<Json> ReadObject(const Json& object, const char* key) {
  const auto found = object.find(key);
  if (found == object.end() || found->is_null()) return Json::object();
  if (!found->is_object()) return Malformed(std::string(key) + " must be an object.");
  return *found;
}

Result<std::string> LineOf(const Json& event) {
  if (!event.is_object()) return Malformed("events must hold only objects.");
  std::optional<Error> error;
  const auto read = [&](const Json& object, const char* key) {
    Result<std::string> text = ReadText(object, key);
    if (text) return std::move(text).value();
    if (!error) error = text.error();
    return std::string();
  };
  const std::string name = read(event, "event");
  if (!error && name.empty()) return Malformed("event is missing.");
  std::string line = "event " + Printable(name);
  const auto add = [&line](const std::string& key, const std::string& value) {
    if (!value.empty()) line += " " + key + "=" + Printable(value);
  };
  add("outcome", read(event, "outcome"));
  add("errorCode", read(event, "errorCode"));
  const Result<Json> context = ReadObject(event, "context");
  if (!context) return context.error();
  for (const char* key : {"clientVersion", "hostApp", "hostVersion", "os"}) {
    add(key, read(*context, key));
  }
  const Result<Json> props = ReadObject(event, "props");
  if (!props) return props.error();
  std::size_t logged = 0;
  for (const auto& [key, value] : props->items()) {
    if (!value.is_string()) return Malformed("props must hold only strings.");
    if (logged++ < kMaxLoggedProps) add(Printable(key), value.get<std::string>());
  }
  if (error) return *error;
  return line;
}

Result<std::vector<std::string>> ReadEvents(const std::string& body) {
  const Result<Json> json = ParseJson(body, kBounds);
  if (!json) return Malformed("The body cannot be read: " + json.error().words + ".");
  const auto events = json->is_object() ? json->find("events") : json->end();
  if (!json->is_object() || events == json->end() || !events->is_array() || events->empty()) {
    return Malformed("events must be an array with an event.");
  }
  if (events->size() > kMaxEventsOfARequest) {
    return Malformed("A request may hold at most " + std::to_string(kMaxEventsOfARequest) +
                     " events.");
  }
  std::vector<std::string> lines;
  for (const Json& event : *events) {
    Result<std::string> line = LineOf(event);
    if (!line) return std::move(line).error();
    lines.push_back(std::move(line).value());
  }
  return lines;
}

}  // namespace

EventsAnswer AnswerEvents(const std::string& body) {
  EventsAnswer answer;
  Result<std::vector<std::string>> lines = ReadEvents(body);
  if (!lines) {
    answer.status = 400;
    answer.body = ErrorJson("bad_request", lines.error().words);
    return answer;
  }
  answer.lines = std::move(lines).value();
  answer.body = "{\"accepted\":" + std::to_string(answer.lines.size()) + "}";
  return answer;
}

}  // namespace quillmarch::service
