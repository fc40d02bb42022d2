#include "foundation/system/ModulePin.h"

namespace quillmarch {

// The add-in is a part of its program here and never goes before it.
void PinOwnModule() {}

}  // namespace quillmarch
