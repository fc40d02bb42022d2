// The guard that every mutation of the host by a run passes through, one for the process. It is no
// lock between threads: a host call may pump messages, so that a timer or a page message arrives on
// the same thread in the midst of a mutation; the gate is what keeps such re-entry out. It also
// leaves the user quiet times. Host thread only.
//
// Quiet times are on the clock of the HostThread that is handed in: all runs of one process must
// share one clock.
#pragma once

#include <cstdint>

#include "foundation/seams/HostThread.h"
#include "foundation/seams/InputState.h"

namespace quillmarch::addin {

inline constexpr std::uint32_t kQuietAfterMutationMs = 120;
inline constexpr std::uint32_t kQuietAfterInputMs = 500;

bool StaGateHasOwner();

// No mutation may begin for `ms` from now; never shortens a quiet time.
void RaiseQuiet(HostThread& thread, std::uint32_t ms);

// The left button is down, a window has the capture, or new mouse input has arrived.
bool UserIsBusy(InputState& input);

// Tries to take the gate at construction, without waiting. Released at the end of the scope, with
// the quiet time after a mutation.
class GateHold {
 public:
  GateHold(const void* owner, HostThread& thread, std::uint32_t holdMs = kQuietAfterMutationMs);
  ~GateHold();
  GateHold(const GateHold&) = delete;
  GateHold& operator=(const GateHold&) = delete;

  bool held() const { return held_; }

 private:
  HostThread& thread_;
  std::uint32_t holdMs_;
  bool held_;
};

}  // namespace quillmarch::addin
