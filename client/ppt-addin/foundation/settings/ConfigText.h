// The configuration file's text, read and patched by key so that every other byte stays. A key
// counts at its first occurrence with its quotes, at any depth. All text is UTF-8; no function
// fails loudly. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quillmarch {

// False when the key is absent or no digit follows it. Larger numbers wrap to 32 bits.
bool ReadIntKey(std::string_view text, std::string_view key, std::int32_t& out);
// False when the value is not patchable or the text has no "}" to insert before.
bool PatchIntKey(std::string_view text, std::string_view key, std::int32_t value, std::string& out);

// The same for a string. The value is written unescaped: tags contain no quote.
bool ReadStringKey(std::string_view text, std::string_view key, std::string& out);
bool PatchStringKey(std::string_view text, std::string_view key, std::string_view value,
                    std::string& out);

}  // namespace quillmarch
