// The read-only record that a run hands its driver at its end, beside the summary line: what was
// written and what was not, so that no lost text goes unnamed.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The compiler takes a scoped enumerator for one that hides the result code of the same name.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
enum class RunOutcome { kCompleted, kFailed, kCancelled, kAborted };
#pragma GCC diagnostic pop

enum class FailCause {
  kNotReached,    // its write was never begun
  kNotFound,      // no shape or cell at its place any more
  kPlaceChanged,  // the place shows another text than was collected, so it was left alone
  kRefused,       // the host did not take the text
  kUnchanged,     // nothing to write: it came back as it went, or empty
  kNotAnswered,   // the worker ended before it came to it
};

struct FailedUnit {
  std::int32_t slide = 0;  // 1-based, as collected
  Wide label;              // the unit's id, such as shapes[2].p1
  std::int32_t row = 0;    // 1-based table cell, 0 outside tables
  std::int32_t column = 0;
  Wide sourceText;
  Wide shapeName = {};  // as collected; empty when it was not read
  FailCause cause = FailCause::kNotReached;
  ResultCode code = kOk;  // the host's own code of the failed write, where it gave one
};

struct RunRecord {
  RunOutcome outcome = RunOutcome::kCompleted;
  Wide summary;
  Wide errorCode;                  // as the page was told; empty unless the run failed
  ResultCode failure = kOk;        // tells the causes of one errorCode apart, see CollectCodes.h
  std::int32_t units = 0;          // collected
  std::int32_t written = 0;        // as the log's totalApplied
  std::int32_t changed = 0;        // units whose new words are in the deck
  std::int32_t unchanged = 0;      // answered empty or equal to the source, so left as they are
  std::int32_t notAnswered = 0;    // the worker ended before it came to them
  std::int32_t skipped = 0;        // texts without a letter, never sent
  std::vector<FailedUnit> failed;  // translated text that did not reach the deck
  std::vector<FailedUnit> left;    // unchanged or not answered
  std::vector<std::int32_t> slidesNotReached;  // slides whose writes were still owed
};

using RunObserver = std::function<void(const RunRecord&)>;

}  // namespace quillmarch::addin
