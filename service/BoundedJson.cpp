#include "service/BoundedJson.h"

namespace quillmarch::service {

namespace {

// Brackets, commas and colons outside strings bound the values of any text, valid or not.
Result<void> Measure(std::string_view text, JsonBounds bounds) {
  std::size_t depth = 0;
  std::size_t values = 1;
  bool inString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (inString) {
      if (c == '\\') ++i;
      if (c == '"') inString = false;
      continue;
    }
    switch (c) {
      case '"':
        inString = true;
        break;
      case '[':
      case '{':
        ++values;
        if (++depth > bounds.depth) return Error{ErrorCode::kDamaged, "it is nested too deeply"};
        break;
      case ']':
      case '}':
        if (depth > 0) --depth;
        break;
      case ',':
      case ':':
        ++values;
        break;
      default:
        break;
    }
    if (values > bounds.values) return Error{ErrorCode::kTooLarge, "it holds too many values"};
  }
  return {};
}

}  // namespace

Result<nlohmann::json> ParseJson(std::string_view text, JsonBounds bounds) {
  if (Result<void> measured = Measure(text, bounds); !measured) return std::move(measured).error();
  nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
  if (json.is_discarded()) return Error{ErrorCode::kDamaged, "it is not valid JSON"};
  return json;
}

}  // namespace quillmarch::service
