#include "foundation/log/LogNumber.h"

namespace quillmarch {

namespace {

Wide Hex(std::uint64_t value, int digits) {
  Wide text = u"0x";
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
    text += u"0123456789ABCDEF"[(value >> shift) & 0xF];
  }
  return text;
}

}  // namespace

Wide HrText(ResultCode code) {
  return Hex(static_cast<std::uint32_t>(code), 8);
}

Wide PointerText(std::uintptr_t word) {
  return Hex(word, 16);
}

}  // namespace quillmarch
