// The numbers of runs.
#pragma once

#include <cstdint>

namespace quillmarch::addin {

// Grows with each call in the process, never falls below the clock (milliseconds) and is never 0.
// Any thread.
std::uint64_t NewRunId(std::uint64_t tickCount);

}  // namespace quillmarch::addin
