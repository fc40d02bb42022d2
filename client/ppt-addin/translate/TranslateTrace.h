// The lines of the translate trace, one per attempt. They are 8-bit text of bounded length:
// wide text goes in as UTF-8, and what a line's buffer cannot hold is cut off its end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "foundation/system/Clock.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// Buffers, with the terminator that printf puts after a text.
inline constexpr std::size_t kAttemptTextBuffer = 512;
inline constexpr std::size_t kTraceLineBuffer = 1536;

// The facts of one attempt.
struct TranslateAttempt {
  Wide clientTraceId;
  std::uint64_t runId = 0;
  std::uint32_t batchSeq = 0;
  std::size_t segs = 0;   // texts
  std::size_t chars = 0;  // UTF-16 units of all texts
  long long httpMs = 0;
  bool ok = false;
  Wide code;
};

// At most 511 bytes.
std::string AttemptText(const TranslateAttempt& attempt);

// The whole line with its line feed, at most 1535 bytes; a longer one loses its end, the line feed
// with it.
std::string TraceLine(const LocalTime& now, const char* text);

}  // namespace quillmarch::addin
