// The numbers of runs.
#pragma once

#include <cstdint>

// Grows with each call in the process, never falls below the clock (milliseconds) and is never 0.
// Any thread.
std::uint64_t NewRunId(std::uint64_t tickCount);
