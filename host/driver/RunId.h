// Run ids: unique and growing within the process, and above the machine's uptime in milliseconds.
#pragma once

#include <cstdint>

// Raises the process's counter to `tickCount` when it is below, then adds 1; the result is the id,
// so 0 never occurs. Any thread.
std::uint64_t NextRunId(std::uint64_t tickCount);
