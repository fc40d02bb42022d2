#include "run/document/ShouldSkip.h"

#include <algorithm>

#include "foundation/text/CharClass.h"

namespace quillmarch::addin {

bool IsHanUnit(char16_t unit) {
  return unit >= 0x4E00 && unit <= 0x9FFF;
}

bool IsCjkUnit(char16_t unit) {
  return IsHanUnit(unit) || (unit >= 0x3040 && unit <= 0x30FF) ||
         (unit >= 0xAC00 && unit <= 0xD7AF);
}

bool ShouldSkip(WideView text) {
  return std::none_of(text.begin(), text.end(), [](char16_t unit) {
    return !IsSpace(unit) && (IsCjkUnit(unit) || IsAlpha(unit));
  });
}

}  // namespace quillmarch::addin
