// Which presentations a run is under way on, so that two panes of one deck do not run at once.
// Host thread only.
#pragma once

#include <cstdint>

namespace quillmarch::addin {

// False when a run is already entered for the presentation, whoever owns it.
bool EnterBusy(std::uintptr_t presentation, const void* owner);
// Takes the pair away, matching both words.
void LeaveBusy(std::uintptr_t presentation, const void* owner);

}  // namespace quillmarch::addin
