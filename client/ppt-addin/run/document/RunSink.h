// The events of a run. Each callable may be empty and is then skipped; both the host thread and
// the worker call them.
#pragma once

#include <cstdint>
#include <functional>

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

struct RunSink {
  std::function<void()> onRunStarted;
  std::function<void(std::int32_t current, std::int32_t total, const Wide& phase)> onScanProgress;
  std::function<void(std::int32_t total, std::int32_t translatable)> onReady;
  std::function<void(std::int32_t unit, std::int32_t total, bool skipped, const Wide& original,
                     const Wide& translated)>
      onProgress;
  std::function<void(std::int64_t elapsedMs, std::int32_t total, bool bilingualCopy)> onComplete;
  std::function<void(const Wide& code, const Wide& message)> onError;
  std::function<void()> onCancelled;
};

}  // namespace quillmarch::addin
