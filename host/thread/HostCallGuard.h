// While one lives, debug builds end the process at any call into a host object that is not made on
// the given host thread. One at a time; made and destroyed on the host thread.
#pragma once

#include "foundation/seams/HostThread.h"

namespace quillmarch::host {

class HostCallGuard {
 public:
  explicit HostCallGuard(const HostThread& thread);
  ~HostCallGuard();
  HostCallGuard(const HostCallGuard&) = delete;
  HostCallGuard& operator=(const HostCallGuard&) = delete;
};

}  // namespace quillmarch::host
