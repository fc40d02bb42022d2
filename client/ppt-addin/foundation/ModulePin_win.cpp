#include "foundation/ModulePin.h"

#include <windows.h>

void PinOwnModule() {
  HMODULE module = nullptr;
  const auto* own = reinterpret_cast<const wchar_t*>(&PinOwnModule);
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, own,
                     &module);
}
