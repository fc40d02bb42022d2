#include "foundation/log/DebugOutput.h"

#include <memory>
#include <utility>

#include "foundation/system/DebuggerChannel.h"

namespace quillmarch {

namespace {

using DebugListener = std::function<void(WideView)>;

DebugListener& Listener() {
  // Never destroyed, as a detached thread may log while the process ends.
  static DebugListener& listener = *std::make_unique<DebugListener>().release();
  return listener;
}

}  // namespace

void DebugOutput(const char16_t* text) {
  if (Listener()) Listener()(text);
  WriteToDebugger(text);
}

void SetDebugListener(std::function<void(WideView)> listener) {
  Listener() = std::move(listener);
}

}  // namespace quillmarch
