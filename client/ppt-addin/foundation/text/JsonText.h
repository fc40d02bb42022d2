// The JSON text readers and the escaper. There is no parser in this system: documents are small
// and come from known partners, and every reader searches the text for the first quoted key and
// picks up what follows. The odd results for odd documents are what the callers' checks count on.
// All functions are pure; any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch {

Wide JsonEscape(WideView text);
Wide JsonGetString(WideView json, WideView key);
Wide JsonFindString(WideView json, WideView key);
bool JsonGetBool(WideView json, WideView key);
bool JsonGetFlag(WideView json, WideView key);
double JsonGetNumber(WideView json, WideView key);
std::vector<Wide> JsonGetStringArray(WideView json, WideView key);
Wide JsonGetObject(WideView json, WideView key);
// Whether the key stands in the text with its quotes around it, anywhere.
bool JsonHasKey(WideView json, WideView key);
bool ParseHexColor(WideView text, std::int32_t& value);

}  // namespace quillmarch
