// Fills a run's sink so that every event, from whichever thread, reaches one listener on the host
// thread: in the order of the calls, and never inside the call that raised it.
#pragma once

#include <cstdint>
#include <functional>

#include "foundation/HostThread.h"
#include "host/driver/RunEvent.h"
#include "run/RunSink.h"

using RunEventListener = std::function<void(const RunEvent&)>;

// `thread` outlives the sink. The listener is shared with the events on their way; an event that
// can no longer be posted is lost without a word.
RunSink MakeEventSink(HostThread& thread, std::uint64_t runId, RunEventListener listener);
