#include "foundation/seams/SystemInput.h"

#include <windows.h>

namespace quillmarch {

bool SystemInput::LeftButtonDown() {
  return GetAsyncKeyState(VK_LBUTTON) < 0;  // the high bit says that it is down now
}

bool SystemInput::HasCapture() {
  return GetCapture() != nullptr;
}

std::uint32_t SystemInput::QueueStatus(std::uint32_t mask) {
  return GetQueueStatus(mask);
}

}  // namespace quillmarch
