// UTF-8 one character at a time, strictly: no overlong forms, no surrogates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarch::host {

struct Utf8Char {
  std::uint32_t code = 0;
  std::size_t length = 0;  // in bytes; 0 when the bytes are not UTF-8 or there are none
};

// The character at the front of `text`.
inline Utf8Char DecodeUtf8(std::string_view text) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
  };
  const auto tail = [&](std::size_t i) { return (byte(i) & 0xC0u) == 0x80u; };
  if (text.empty()) return {};
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4 || !tail(1)) return {};
  if (lead < 0xE0) return {(lead & 0x1Fu) << 6 | (byte(1) & 0x3Fu), 2};
  if (!tail(2)) return {};
  if (lead < 0xF0) {
    const std::uint32_t code = (lead & 0x0Fu) << 12 | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
    if (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF)) return {};
    return {code, 3};
  }
  if (!tail(3)) return {};
  const std::uint32_t code =
      (lead & 0x07u) << 18 | (byte(1) & 0x3Fu) << 12 | (byte(2) & 0x3Fu) << 6 | (byte(3) & 0x3Fu);
  if (code < 0x10000 || code > 0x10FFFF) return {};
  return {code, 4};
}

// Whether XML 1.0 lets the character stand in a document at all.
inline bool IsXmlChar(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xD800 || (code >= 0xE000 && code < 0xFFFE) ||
         (code >= 0x10000 && code <= 0x10FFFF);
}

// `code` is a Unicode scalar value.
inline void AppendUtf8(std::string& out, std::uint32_t code) {
  const auto put = [&](std::uint32_t value) { out += static_cast<char>(value); };
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

}  // namespace quillmarch::host
