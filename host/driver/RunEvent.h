// One event of a run as the panel's page gets it: a function's name and one JSON object.
#pragma once

#include <cstdint>

#include "foundation/Wide.h"

enum class RunEventKind {
  kOnRunStarted,
  kOnScanProgress,
  kOnReady,
  kOnProgress,
  kOnComplete,
  kOnError,
  kOnCancelled
};

struct RunEvent {
  RunEventKind kind = RunEventKind::kOnRunStarted;
  std::uint64_t runId = 0;
  std::int32_t current = 0;       // scan: slide or shape; progress: the unit's 1-based number
  std::int32_t total = 0;         // scan, ready, progress, complete
  std::int32_t translatable = 0;  // ready
  std::int64_t elapsedMs = 0;     // complete; may be negative
  bool skipped = false;           // progress
  bool bilingualCopy = false;     // complete
  Wide phase{};                   // scan: fixed words without a quote, never escaped
  Wide original{};                // progress
  Wide translated{};              // progress
  Wide code{};                    // error
  Wide message{};                 // error
};

// The page's function, such as "onProgress".
const char16_t* EventName(RunEventKind kind);

// The JSON object that the function is called with, braces included, fields in their fixed order.
Wide EventPayload(const RunEvent& event);
