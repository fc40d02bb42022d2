// Entity and character references of a document without a document type.
#pragma once

#include <cstdint>
#include <string_view>

namespace quillmarch::host {

// What stands between "&" and ";", such as "amp" or "#x41", as a character; 0 when XML knows no
// such reference or the character may not stand in a document.
std::uint32_t ResolveReference(std::string_view inside);

}  // namespace quillmarch::host
