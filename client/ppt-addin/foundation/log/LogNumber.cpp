#include "foundation/log/LogNumber.h"

#include "foundation/text/Hex.h"

namespace quillmarch {

Wide HrText(ResultCode code) {
  return u"0x" + HexText(static_cast<std::uint32_t>(code), 8);
}

Wide PointerText(std::uintptr_t word) {
  return u"0x" + HexText(word, 16);
}

}  // namespace quillmarch
