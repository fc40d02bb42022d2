#include "service/engines/ApertiumStream.h"

#include <algorithm>
#include <cstddef>

#include "service/Utf8.h"

namespace quillmarch::service {

namespace {

constexpr std::string_view kSentenceEnd = ".[]";

bool IsReserved(char32_t c) {
  return c < 0x80 &&
         std::string_view("^$/<>{}[]@\\").find(static_cast<char>(c)) != std::string_view::npos;
}

// White space that isn't a plain space, other controls, and the tilde, which wakes the
// post-generator and disappears.
bool TravelsAsBlank(char32_t c) {
  return (c > 0 && c < 0x20) || c == 0x7F || c == 0x85 || c == 0x2028 || c == 0x2029 || c == U'~';
}

void AppendEscaped(std::string& out, char32_t c) {
  if (c == 0) return;
  if (IsReserved(c)) out += '\\';
  AppendUtf8(out, c);
}

}  // namespace

std::string ToApertium(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 8 + 8);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    std::size_t end = at;
    std::size_t count = 0;
    bool special = false;
    bool breaks = false;
    for (std::size_t next = at; next < text.size(); end = next, ++count) {
      const char32_t c = NextCharacter(text, next);
      if (c != U' ' && !TravelsAsBlank(c)) break;
      special = special || c != U' ';
      breaks = breaks || IsLineBreak(c);
    }
    if (count == 0) {
      AppendEscaped(out, NextCharacter(text, at));
      continue;
    }
    at = end;
    if (count == 1 && !special) {
      out += ' ';
      continue;
    }
    if (breaks) out += kSentenceEnd;
    out += '[';
    for (std::size_t i = begin; i < end;) AppendEscaped(out, NextCharacter(text, i));
    out += ']';
  }
  out += kSentenceEnd;
  return out;
}

std::string FromApertium(std::string_view stream) {
  std::string out;
  out.reserve(stream.size());
  bool inBlank = false;
  bool afterPlain = false;  // `out` ends in a space of the pipeline's own
  bool afterSpace = false;  // or in white space of the text
  const auto append = [&](char c) {
    const bool space = c == ' ' || (c >= '\t' && c <= '\r');
    if (inBlank && space && afterPlain) out.pop_back();
    out += c;
    afterPlain = false;
    afterSpace = inBlank && space;
  };
  for (std::size_t at = 0; at < stream.size(); ++at) {
    const char c = stream[at];
    if (c == '\\' && at + 1 < stream.size()) {
      append(stream[++at]);
    } else if (!inBlank && stream.substr(at, kSentenceEnd.size()) == kSentenceEnd) {
      at += kSentenceEnd.size() - 1;
    } else if (c == '[' || c == ']') {
      inBlank = c == '[';
    } else if (!inBlank && c == ' ') {
      if (afterPlain || afterSpace) continue;
      append(c);
      afterPlain = true;
    } else {
      append(c);
    }
  }
  return out;
}

}  // namespace quillmarch::service
