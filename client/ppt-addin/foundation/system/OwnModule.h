// The module that this code lies in, as Windows knows it. Windows only.
#pragma once

#include <windows.h>

namespace quillmarch {

inline HINSTANCE OwnModule() {
  HMODULE module = nullptr;
  static const char inThisModule = 0;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&inThisModule), &module);
  return module;
}

}  // namespace quillmarch
