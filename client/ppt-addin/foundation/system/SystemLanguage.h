// The language of the system's own user interface.
#pragma once

#include <cstdint>

namespace quillmarch {

// A Windows language id; 0 when the system names none that we have words in.
std::uint32_t SystemLanguageId();

}  // namespace quillmarch
