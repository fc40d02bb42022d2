#include "foundation/system/ModulePin.h"

#include <windows.h>

namespace quillmarch {

void PinOwnModule() {
  HMODULE module = nullptr;
  const auto* own = reinterpret_cast<const wchar_t*>(&PinOwnModule);
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, own,
                     &module);
}

}  // namespace quillmarch
