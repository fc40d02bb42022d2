// Letters, spaces and digits as Windows classes UTF-16 units, on every platform and in every
// locale, so that a deck is read alike everywhere. Surrogates are in no class.
#pragma once

namespace quillmarch {

bool IsAlpha(char16_t unit);  // iswalpha
bool IsSpace(char16_t unit);  // iswspace
bool IsDigit(char16_t unit);  // iswdigit
bool IsAlnum(char16_t unit);  // iswalnum: a letter or a digit

}  // namespace quillmarch
