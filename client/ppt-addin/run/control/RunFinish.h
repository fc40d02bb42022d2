// The end of a run: what is owed is written, the outcome told, the summary logged. Host thread
// only.
#pragma once

#include <cstdint>

#include "run/control/RunState.h"

namespace quillmarch::addin {

inline constexpr int kFinishTries = 5;
inline constexpr std::uint32_t kFinishSleepMs = 60;
inline constexpr std::uint32_t kAbortLookMs = 20;
inline constexpr std::uint64_t kAbortWaitMs = 2000;

// Does nothing while the worker runs and after the first time.
void FinishRun(RunState& run) noexcept;

// Sets the flags and waits for the worker; true when it has ended.
bool StopWorker(RunState& run);

}  // namespace quillmarch::addin
