#include <windows.h>

#include "foundation/system/SystemLanguage.h"

namespace quillmarch {

std::uint32_t SystemLanguageId() {
  return GetUserDefaultUILanguage();
}

}  // namespace quillmarch
