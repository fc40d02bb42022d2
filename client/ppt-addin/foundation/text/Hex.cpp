#include "foundation/text/Hex.h"

namespace quillmarch {

Wide HexText(std::uint64_t value, int leastDigits) {
  constexpr int kBitsOfDigit = 4;
  constexpr int kMostDigits = 16;
  Wide text;
  for (int digit = kMostDigits - 1; digit >= 0; --digit) {
    const std::uint64_t rest = value >> (kBitsOfDigit * digit);
    if (rest != 0 || digit < leastDigits) text += u"0123456789ABCDEF"[rest & 0xF];
  }
  return text;
}

}  // namespace quillmarch
