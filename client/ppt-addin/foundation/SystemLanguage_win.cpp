#include <windows.h>

#include "foundation/SystemLanguage.h"

std::uint32_t SystemLanguageId() {
  return GetUserDefaultUILanguage();
}
