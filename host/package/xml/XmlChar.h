// Which characters XML takes, one character of UTF-8 at a time.
#pragma once

#include <cstdint>

#include "foundation/text/Utf8.h"

namespace quillmarch::host {

// Whether XML 1.0 lets the character appear in a document at all.
inline bool IsXmlChar(std::uint32_t code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  return code < 0xD800 || (code >= 0xE000 && code < 0xFFFE) ||
         (code >= 0x10000 && code <= 0x10FFFF);
}

}  // namespace quillmarch::host
