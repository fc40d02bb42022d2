// The start of a run: window and presentation, collection, the worker. Host thread only.
#pragma once

#include "run/control/RunState.h"

namespace quillmarch::addin {

// As PptCtrl::Start.
bool StartRun(RunState& run, const RunParams& params, const RunSink* sink, Wide& outMessage);

// Ends a start that threw, with its event.
bool RejectBrokenStart(RunState& run, Wide& outMessage) noexcept;

}  // namespace quillmarch::addin
