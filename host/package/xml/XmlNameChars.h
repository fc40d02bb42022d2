// Which characters may stand in XML names, the colon left out: names here are namespace-aware.
#pragma once

#include <cstdint>

namespace quillmarch::host {

inline bool IsNameStartChar(std::uint32_t c) {
  if (c < 0x80) return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
  return (c >= 0xC0 && c <= 0x2FF && c != 0xD7 && c != 0xF7) ||
         (c >= 0x370 && c <= 0x1FFF && c != 0x37E) || c == 0x200C || c == 0x200D ||
         (c >= 0x2070 && c <= 0x218F) || (c >= 0x2C00 && c <= 0x2FEF) ||
         (c >= 0x3001 && c <= 0xD7FF) || (c >= 0xF900 && c <= 0xFDCF) ||
         (c >= 0xFDF0 && c <= 0xFFFD) || (c >= 0x10000 && c <= 0xEFFFF);
}

inline bool IsNameChar(std::uint32_t c) {
  if (c < 0x80) return IsNameStartChar(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
  return IsNameStartChar(c) || c == 0xB7 || (c >= 0x300 && c <= 0x36F) ||
         (c >= 0x203F && c <= 0x2040);
}

}  // namespace quillmarch::host
