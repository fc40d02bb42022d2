// The panel's pages by name and by address. Pure.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

// The path of a page on the API host.
Wide PanelPath(const Wide& page);

// The page that a path without query names; "translate" for any that it does not know.
Wide PageFromPath(WideView path);

// Equal in any case of ASCII letters, as pages compare.
bool SamePage(WideView left, WideView right);

}  // namespace quillmarch::addin
