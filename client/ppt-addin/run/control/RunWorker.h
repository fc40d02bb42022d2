// The worker of a run: a loop over strings that never sees a host object.
#pragma once

#include <cstddef>

#include "run/control/RunState.h"

namespace quillmarch::addin {

inline constexpr std::size_t kMaxBatch = 20;              // texts in one request
inline constexpr std::size_t kMaxTerminologyTexts = 200;  // texts that pick the run's terms

// Fills the job and starts the thread; host thread only. False when no thread could be had, and
// nothing is then under way.
bool StartWorker(RunState& run);

// The worker's whole work, on its own thread. Never throws; ends in the job's result.
void RunWorkerLoop(WorkerJob& job) noexcept;

}  // namespace quillmarch::addin
