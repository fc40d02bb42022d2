// The input state of a host at which nobody sits.
#pragma once

#include "foundation/seams/InputState.h"

namespace quillmarch::host {

class UnattendedInput final : public InputState {
 public:
  bool LeftButtonDown() override { return false; }
  bool HasCapture() override { return false; }
  std::uint32_t QueueStatus(std::uint32_t) override { return 0; }
};

}  // namespace quillmarch::host
