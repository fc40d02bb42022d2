#include "shell/PaneMap.h"

namespace quillmarch::addin {

namespace {

constexpr std::int64_t kNoWindow = -1;  // all bits set
constexpr int kPointerDigits = 16;

Wide Hex(std::uint64_t value, int leastDigits) {
  Wide text;
  for (int digit = 15; digit >= 0; --digit) {
    const std::uint64_t rest = value >> (4 * digit);
    if (rest != 0 || digit < leastDigits) text += u"0123456789ABCDEF"[rest & 0xF];
  }
  return text;
}

}  // namespace

std::int64_t PaneMapKey(const WindowContext& context) {
  if (context.hwnd != 0) return static_cast<std::uint32_t>(context.hwnd);
  if (context.id != 0) return -static_cast<std::int64_t>(context.id);
  return kNoWindow;
}

Wide ContextText(const WindowContext& context) {
  return u"hwnd=0x" + Hex(static_cast<std::uint32_t>(context.hwnd), 1) + u" id=" +
         Hex(context.id, kPointerDigits);
}

}  // namespace quillmarch::addin
