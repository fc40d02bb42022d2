// One bit for each UTF-16 unit: 256 pages, each naming a block of 256 bits. Pages of equal content
// share a block. Constant data, made by scripts/make-char-table.py.
#pragma once

#include <cstdint>

namespace quillmarch {

struct CharClassTable {
  const std::uint8_t* page;          // 256 block numbers
  const std::uint32_t (*blocks)[8];  // 256 bits each, lowest unit in the lowest bit
};

extern const CharClassTable kAlphaTable;
extern const CharClassTable kSpaceTable;
extern const CharClassTable kDigitTable;

}  // namespace quillmarch
