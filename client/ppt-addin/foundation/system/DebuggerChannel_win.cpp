#include <windows.h>

#include "foundation/system/DebuggerChannel.h"

namespace quillmarch {

void WriteToDebugger(const char16_t* text) {
  static_assert(sizeof(wchar_t) == sizeof(char16_t));
  OutputDebugStringW(reinterpret_cast<const wchar_t*>(text));
}

}  // namespace quillmarch
