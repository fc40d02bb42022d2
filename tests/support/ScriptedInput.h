// The user's hands as a test moves them.
#pragma once

#include "foundation/seams/InputState.h"

namespace quillmarch::addin::test {

class ScriptedInput final : public InputState {
 public:
  bool LeftButtonDown() override { return leftButton; }
  bool HasCapture() override { return capture; }
  std::uint32_t QueueStatus(std::uint32_t mask) override {
    lastMask = mask;
    return queue;
  }

  bool leftButton = false;
  bool capture = false;
  std::uint32_t queue = 0;
  std::uint32_t lastMask = 0;
};

}  // namespace quillmarch::addin::test
