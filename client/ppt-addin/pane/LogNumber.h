// Numbers as the log shows them. Pure.
#pragma once

#include <cstdint>

#include "foundation/ResultCode.h"
#include "foundation/Wide.h"

Wide HrText(ResultCode code);           // 0x and eight hexadecimal digits in capitals
Wide PointerText(std::uintptr_t word);  // 0x and sixteen
