// UTF-16 text as Windows wants it. Windows sources only.
#pragma once

#include <string>

#include "foundation/text/Wide.h"

namespace quillmarch {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline std::wstring ToWinText(WideView text) {
  return std::wstring(text.begin(), text.end());
}
inline Wide FromWinText(std::wstring_view text) {
  return Wide(text.begin(), text.end());
}

}  // namespace quillmarch
