// The panel's pages by name and by address. Pure.
#pragma once

#include "foundation/text/Wide.h"

namespace quillmarch::addin {

inline constexpr WideView kTranslatePage = u"translate";

// The path of a page on the API host.
Wide PanelPath(const Wide& page);

// The page that a path without query names; "translate" for any unknown one.
Wide PageFromPath(WideView path);

// The page that the browser's address names; an address outside the panel leaves `page` as it is.
void PageFromSource(WideView source, Wide& page);

// Equal in any case of ASCII letters, as pages compare.
bool SamePage(WideView left, WideView right);

}  // namespace quillmarch::addin
