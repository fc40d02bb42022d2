#include "foundation/ModulePin.h"

// The add-in is a part of its program here and never goes before it.
void PinOwnModule() {}
