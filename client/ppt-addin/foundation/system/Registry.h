// The user's registry (HKEY_CURRENT_USER). On platforms without one it is a small text file in the
// user's data folder, replaced as a whole. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

// The text of a value, as it is stored. False, and `text` empty, when there is none, when it is of
// another type than text, or when it takes more than `maxBytes` with its terminator.
bool ReadUserText(WideView key, WideView name, std::size_t maxBytes, Wide& text);

// Makes the key when it is missing.
bool WriteUserText(WideView key, WideView name, WideView text);
bool WriteUserNumber(WideView key, WideView name, std::uint32_t number);

}  // namespace quillmarch
