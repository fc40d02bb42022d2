// UTF-8, one code point at a time and strictly: no overlong forms, no surrogates, nothing above
// U+10FFFF. Pure; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillmarch {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

struct Utf8Char {
  char32_t code = kReplacementCharacter;
  std::size_t length = 0;  // bytes of the character; 0 when they are not UTF-8
  std::size_t skip = 0;    // as `length`, or the bytes of the broken piece; 0 for empty text
};

// The character at the front of `text`. A broken piece is as long as it could still have become a
// character, so a reader that puts U+FFFD for each piece agrees with every other reader.
inline Utf8Char DecodeUtf8(std::string_view text) {
  if (text.empty()) return {};
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1, 1};
  std::size_t length = 0;
  char32_t code = 0;
  // The second byte's range rules out overlong forms, surrogates and what is above U+10FFFF.
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    code = lead & 0x1Fu;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    code = lead & 0x0Fu;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    code = lead & 0x07u;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return {kReplacementCharacter, 0, 1};
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (i == text.size() || byte(i) < low || byte(i) > high) {
      return {kReplacementCharacter, 0, i};
    }
    code = code << 6 | (byte(i) & 0x3Fu);
    low = 0x80;
    high = 0xBF;
  }
  return {code, length, length};
}

// `code` is a Unicode scalar value.
inline void AppendUtf8(std::string& out, char32_t code) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0u | code >> 6);
    put(0x80u | (code & 0x3Fu));
  } else if (code < 0x10000) {
    put(0xE0u | code >> 12);
    put(0x80u | (code >> 6 & 0x3Fu));
    put(0x80u | (code & 0x3Fu));
  } else {
    put(0xF0u | code >> 18);
    put(0x80u | (code >> 12 & 0x3Fu));
    put(0x80u | (code >> 6 & 0x3Fu));
    put(0x80u | (code & 0x3Fu));
  }
}

inline bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = DecodeUtf8(text).length;
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace quillmarch
