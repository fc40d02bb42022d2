#include "pane/MessageMap.h"

namespace quillmarch::addin {

namespace {

// Messages of a window class's own begin at WM_USER: none of them is ever reflected.
constexpr std::uint32_t kReflectedEnd = WindowMessage::kReflectedBase + 0x0400;

}  // namespace

MessageAnswer RouteFirst(const WindowMessage& message) {
  if (message.mapId != 0) return {MessageRoute::kNotHandled, message.message};
  switch (message.message) {
    case WindowMessage::kCreate:
    case WindowMessage::kSize:
    case WindowMessage::kTimer:
    case WindowMessage::kDestroy:
    case WindowMessage::kPosted:
      return {MessageRoute::kHandled, message.message};
    default:
      return {MessageRoute::kStock, message.message};
  }
}

MessageAnswer RouteAfterStock(const WindowMessage& message) {
  if (message.message < WindowMessage::kReflectedBase || message.message >= kReflectedEnd) {
    return {MessageRoute::kNotHandled, message.message};
  }
  return {MessageRoute::kDefault, message.message - WindowMessage::kReflectedBase};
}

}  // namespace quillmarch::addin
