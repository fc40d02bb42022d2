// Text inside the system: UTF-16, on every platform. Lengths are UTF-16 units. Conversion happens
// at the borders only (files, wire, terminal).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarch {

using Wide = std::u16string;
using WideView = std::u16string_view;

// UTF-8 to UTF-16. Bytes that are not UTF-8 become U+FFFD, one for each maximal broken piece; the
// conversion never fails.
Wide ToWide(std::string_view utf8);

// UTF-16 to UTF-8. A lone surrogate becomes U+FFFD (EF BF BD).
std::string ToUtf8(WideView text);

// Plain decimal, with "-" where negative.
Wide Decimal(std::int64_t value);
Wide DecimalUnsigned(std::uint64_t value);

// ASCII letters only; every other unit is copied.
Wide LowerAscii(WideView text);

}  // namespace quillmarch
