// The user's hands as Windows sees them. Windows only.
#pragma once

#include "foundation/seams/InputState.h"

namespace quillmarch {

class SystemInput final : public InputState {
 public:
  bool LeftButtonDown() override;
  bool HasCapture() override;
  std::uint32_t QueueStatus(std::uint32_t mask) override;
};

}  // namespace quillmarch
