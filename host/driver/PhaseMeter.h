// What the phases of a run cost: real time, and the calls that the host's objects answered.
#pragma once

#include <chrono>
#include <cstdint>

namespace quillmarch::host {

struct PhaseCost {
  double ms = 0.0;  // by the real clock, also when the host's clock leaps
  std::uint64_t invokes = 0;
  std::uint64_t lookups = 0;  // names looked up
};

// Host thread only.
class PhaseMeter {
 public:
  PhaseMeter();
  // The cost since construction or the last call, and begins the next phase.
  PhaseCost Next();

 private:
  std::chrono::steady_clock::time_point since_;
  std::uint64_t invokes_;
  std::uint64_t lookups_;
};

}  // namespace quillmarch::host
