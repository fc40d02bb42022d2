// Which window messages a pane serves itself. The numbers are Windows' own, so that the window
// procedure hands on what it gets.
#pragma once

#include <cstdint>

namespace quillmarch::addin {

struct WindowMessage {
  static constexpr std::uint32_t kCreate = 0x0001;         // WM_CREATE
  static constexpr std::uint32_t kDestroy = 0x0002;        // WM_DESTROY
  static constexpr std::uint32_t kSize = 0x0005;           // WM_SIZE
  static constexpr std::uint32_t kTimer = 0x0113;          // WM_TIMER
  static constexpr std::uint32_t kPosted = 0x8030;         // a call left by PostToPane
  static constexpr std::uint32_t kReflectedBase = 0x2000;  // OCM__BASE

  std::uintptr_t window = 0;
  std::uint32_t message = 0;
  std::uintptr_t wParam = 0;
  std::intptr_t lParam = 0;
  std::uint32_t mapId = 0;
};

enum class MessageRoute {
  kHandled,     // result 0
  kStock,       // the control's stock map next, then RouteAfterStock
  kDefault,     // DefWindowProcW with `message`
  kNotHandled,  // nobody's
};

struct MessageAnswer {
  MessageRoute route = MessageRoute::kNotHandled;
  std::uint32_t message = 0;  // of kDefault
};

// kHandled for the messages that the pane serves itself, in the order of its tests.
MessageAnswer RouteFirst(const WindowMessage& message);

// What becomes of a message that the stock map has not handled: a reflected control message goes to
// the default procedure as what it was before.
MessageAnswer RouteAfterStock(const WindowMessage& message);

}  // namespace quillmarch::addin
