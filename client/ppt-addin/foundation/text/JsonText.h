// The JSON text readers and the escaper. There is no parser in this system: documents are small
// and come from known partners, and every reader searches the text for the first quoted key,
// wherever it is, nested or inside a string, and picks up what follows. Odd documents give odd
// results, which the callers' checks rely on. No reader fails. All functions are pure; any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/text/Wide.h"

namespace quillmarch {

// The text as it goes between the quotes of a JSON string: the quote, the backslash and everything
// below U+0020 escaped, the rest unchanged, lone surrogates too.
Wide JsonEscape(WideView text);

// The next string after the first key that a colon follows. Absent key: empty. A value that is not
// a string gives the next string of the document; one whose quote is never closed runs to the end.
Wide JsonGetString(WideView json, WideView key);

// As JsonGetString, but after the first occurrence of the quoted key, with or without a colon.
Wide JsonFindString(WideView json, WideView key);

// True for a value that begins with `true` or 1. Absent key or any other value: false.
bool JsonGetBool(WideView json, WideView key);

// False only for a value that begins with `false`. Absent key or any other value: true.
bool JsonGetFlag(WideView json, WideView key);

// Absent key or no number: 0. Reads as far as the text is a number; too large ones are infinite.
double JsonGetNumber(WideView json, WideView key);

// The strings of the next array after the key; other elements are skipped. Absent key or no "[":
// empty. An empty array reads on to the next strings of the document; an unclosed one gives what
// there is.
std::vector<Wide> JsonGetStringArray(WideView json, WideView key);

// The raw text of the next object after the key, braces included; braces in strings do not count.
// Absent key, no object or an unclosed one: empty.
Wide JsonGetObject(WideView json, WideView key);

// Whether the quoted key occurs in the text, anywhere.
bool JsonHasKey(WideView json, WideView key);

// Reads "#RRGGBB" into red + 256 * green + 65536 * blue. False for any other text, and `value` is
// then unchanged.
bool ParseHexColor(WideView text, std::int32_t& value);

}  // namespace quillmarch
