#include "shell/PaneMap.h"

#include "foundation/text/Hex.h"

namespace quillmarch::addin {

namespace {

constexpr std::int64_t kNoWindow = -1;  // all bits set
constexpr int kPointerDigits = 16;

}  // namespace

std::int64_t PaneMapKey(const WindowContext& context) {
  if (context.hwnd != 0) return static_cast<std::uint32_t>(context.hwnd);
  // Negated unsigned, as one identity has no signed negative.
  if (context.id != 0) return static_cast<std::int64_t>(0 - std::uint64_t{context.id});
  return kNoWindow;
}

Wide ContextText(const WindowContext& context) {
  return u"hwnd=0x" + HexText(static_cast<std::uint32_t>(context.hwnd)) + u" id=" +
         HexText(context.id, kPointerDigits);
}

}  // namespace quillmarch::addin
