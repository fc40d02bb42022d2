#include "foundation/transport/HeaderText.h"

#include <algorithm>

namespace quillmarch {

bool IsHeaderText(WideView value) {
  constexpr char16_t kFirstPrintable = 0x20;
  constexpr char16_t kDelete = 0x7F;
  return std::all_of(value.begin(), value.end(),
                     [](char16_t unit) { return unit >= kFirstPrintable && unit != kDelete; });
}

}  // namespace quillmarch
