// Hexadecimal digits of a number.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

// Capitals without a prefix, zero-padded to `leastDigits`. Any thread.
Wide HexText(std::uint64_t value, int leastDigits = 1);

}  // namespace quillmarch
