// The record of a run's end. Host thread only, once the worker has ended.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

struct RunEnd {
  RunOutcome outcome = RunOutcome::kCompleted;
  Wide summary;
  Wide errorCode;
  ResultCode failure = kOk;
};

// Names every translated text that did not reach the deck, whether its write failed or was never
// tried, and hands the record to the driver. What the driver throws is swallowed.
void ReportRun(RunState& run, const RunEnd& end) noexcept;

}  // namespace quillmarch::addin
