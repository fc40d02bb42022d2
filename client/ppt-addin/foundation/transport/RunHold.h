// How a worker waits while its run is paused.
#pragma once

#include "foundation/transport/HttpTransport.h"

namespace quillmarch {

// Blocks while `pause` is set and `cancel` is not, looking every 50 ms. True when the work may go
// on, false when the run is cancelled. A null flag counts as not set. Any thread but the host's.
bool HoldWhilePaused(const RunFlag* cancel, const RunFlag* pause);

bool IsSet(const RunFlag* flag);

}  // namespace quillmarch
