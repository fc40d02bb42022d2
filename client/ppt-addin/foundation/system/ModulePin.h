// Keeps the add-in's module in the process for good, so that a thread's code stays where it is.
#pragma once

namespace quillmarch {

void PinOwnModule();

}  // namespace quillmarch
