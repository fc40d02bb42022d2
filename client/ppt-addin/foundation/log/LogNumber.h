// Numbers as the log shows them. Pure.
#pragma once

#include <cstdint>

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

Wide HrText(ResultCode code);           // 0x and eight hexadecimal digits in capitals
Wide PointerText(std::uintptr_t word);  // 0x and sixteen

}  // namespace quillmarch
