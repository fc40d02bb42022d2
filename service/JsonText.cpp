#include "service/JsonText.h"

#include <cstddef>

#include "service/Utf8.h"

namespace quillmarch::service {

void AppendJsonString(std::string& out, std::string_view text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out += '"';
  const auto plain = [](char c) { return c >= 0x20 && c < 0x7F && c != '"' && c != '\\'; };
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t run = at;
    while (at < text.size() && plain(text[at])) ++at;
    out += text.substr(run, at - run);
    if (at == text.size()) break;
    const char32_t c = NextCharacter(text, at);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c == '\n') {
      out += "\\n";
    } else if (c == '\r') {
      out += "\\r";
    } else if (c == '\t') {
      out += "\\t";
    } else if (c < 0x20) {
      out += "\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 0xF];
    } else {
      AppendUtf8(out, c);
    }
  }
  out += '"';
}

void AppendJsonStrings(std::string& out, const std::vector<std::string>& texts) {
  out += '[';
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i > 0) out += ',';
    AppendJsonString(out, texts[i]);
  }
  out += ']';
}

std::string ErrorJson(std::string_view code, std::string_view message, std::string_view cause) {
  std::string out = "{\"code\":";
  AppendJsonString(out, code);
  out += ",\"message\":";
  AppendJsonString(out, message);
  if (!cause.empty()) {
    out += ",\"cause\":";
    AppendJsonString(out, cause);
  }
  out += '}';
  return out;
}

}  // namespace quillmarch::service
