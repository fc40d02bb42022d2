// How many calls the object model was asked, for measuring. Process-wide; host thread only.
#pragma once

#include <cstdint>

namespace quillmarch::host {

struct CallCount {
  std::uint64_t invokes = 0;
  std::uint64_t nameLookups = 0;
  std::uint64_t jumps = 0;  // of the invokes, those that brought a slide to view
};

CallCount& HostCallCount();

}  // namespace quillmarch::host
