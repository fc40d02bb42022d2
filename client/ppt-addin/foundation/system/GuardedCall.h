// Calls into code of other makers, whose exceptions no handler of ours would see: the compiler's
// own catch clauses know only the exceptions of its own programs. Windows sources only.
#pragma once

namespace quillmarch {

// Runs `call(argument)`. False when it was left by an exception that a program raised in another
// language's way. Our own exceptions pass through; a fault of the processor ends the process as it
// would without this. `call` must own nothing that has to be destroyed.
bool GuardedCall(void (*call)(void*), void* argument);

}  // namespace quillmarch
