#include "service/Utf8.h"

namespace quillmarch::service {

namespace {
constexpr char32_t kReplacement = 0xFFFD;
}  // namespace

char32_t NextCharacter(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(at);
  if (first < 0x80) {
    ++at;
    return first;
  }
  std::size_t more = 0;
  char32_t value = 0;
  char32_t smallest = 0;
  if (first >= 0xC2 && first <= 0xDF) {
    more = 1, value = first & 0x1Fu, smallest = 0x80;
  } else if (first >= 0xE0 && first <= 0xEF) {
    more = 2, value = first & 0x0Fu, smallest = 0x800;
  } else if (first >= 0xF0 && first <= 0xF4) {
    more = 3, value = first & 0x07u, smallest = 0x10000;
  }
  bool valid = more > 0 && text.size() - at > more;
  for (std::size_t i = 1; valid && i <= more; ++i) {
    valid = (byte(at + i) & 0xC0u) == 0x80u;
    value = (value << 6) | (byte(at + i) & 0x3Fu);
  }
  if (!valid || value < smallest || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    ++at;
    return kReplacement;
  }
  at += more + 1;
  return value;
}

void AppendUtf8(std::string& out, char32_t c) {
  const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | (c >> 6));
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | (c >> 12));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | (c >> 18));
    put(0x80 | ((c >> 12) & 0x3F));
    put(0x80 | ((c >> 6) & 0x3F));
    put(0x80 | (c & 0x3F));
  }
}

std::string ValidUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) AppendUtf8(out, NextCharacter(text, at));
  return out;
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t length = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      ++at;
      ++length;
    } else {
      length += NextCharacter(text, at) >= 0x10000 ? 2 : 1;
    }
  }
  return length;
}

namespace {

// `begin` is where the leading white space ends.
TrimmedText TrimmedForwards(std::string_view text, std::size_t begin) {
  std::size_t end = begin;
  for (std::size_t at = begin; at < text.size();) {
    if (!IsBlank(NextCharacter(text, at))) end = at;
  }
  return {text.substr(0, begin), text.substr(begin, end - begin), text.substr(end)};
}

}  // namespace

bool IsLineBreak(char32_t c) {
  return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool IsBlank(char32_t c) {
  return c == 0x20 || (c >= 0x09 && c <= 0x0D) || c == 0x85 || c == 0xA0 ||
         (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x3000;
}

TrimmedText TrimBlanks(std::string_view text) {
  std::size_t begin = 0;
  for (std::size_t next = 0; begin < text.size(); begin = next) {
    if (!IsBlank(NextCharacter(text, next))) break;
  }
  if (begin == text.size()) return {text, {}, {}};
  // From the end as long as there is plain ASCII: the rest can only be read forwards.
  std::size_t end = text.size();
  while (end > begin) {
    const std::size_t at = end - 1;
    if (static_cast<unsigned char>(text[at]) >= 0x80) return TrimmedForwards(text, begin);
    if (!IsBlank(static_cast<unsigned char>(text[at]))) break;
    end = at;
  }
  return {text.substr(0, begin), text.substr(begin, end - begin), text.substr(end)};
}

}  // namespace quillmarch::service
