// What the user's hands are doing. Asked before a slide is written, so that the mouse wins over a
// run.
#pragma once

#include <cstdint>

namespace quillmarch {

class InputState {
 public:
  virtual ~InputState() = default;
  virtual bool LeftButtonDown() = 0;
  virtual bool HasCapture() = 0;
  // The low word holds the kinds of input that arrived since the last look, as GetQueueStatus
  // numbers them: bit 1 mouse moved, bit 2 a mouse button.
  virtual std::uint32_t QueueStatus(std::uint32_t mask) = 0;
};

}  // namespace quillmarch
