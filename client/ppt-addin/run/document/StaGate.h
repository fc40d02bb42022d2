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

// Neither ever shortens a quiet time: no mutation may begin for `ms` from now, and after the user's
// input for kQuietAfterInputMs.
void RaiseQuiet(HostThread& thread, std::uint32_t ms);
void RaiseInputQuiet(HostThread& thread);
// Sleeps until the quiet time after the last mutation is over.
void WaitOutMutationQuiet(HostThread& thread);

// The left button is down, a window has the capture, or new mouse input has arrived.
bool UserIsBusy(InputState& input);

// At a run's end the writes still owed must not be lost to a user who moves the mouse, so they heed
// only the quiet time after mutations.
enum class Heed { kEveryQuiet, kMutationQuiet };

// Tries to take the gate at construction, without waiting. Released at the end of the scope, with
// the quiet time after a mutation.
class GateHold {
 public:
  GateHold(const void* owner, HostThread& thread, Heed heed = Heed::kEveryQuiet);
  ~GateHold();
  GateHold(const GateHold&) = delete;
  GateHold& operator=(const GateHold&) = delete;

  bool held() const { return held_; }

 private:
  HostThread& thread_;
  bool held_ = false;
};

}  // namespace quillmarch::addin
