// mc:AlternateContent: which of its branches counts.
#pragma once

#include <pugixml.hpp>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

// The first mc:Choice whose required namespaces the host knows, else mc:Fallback; null when
// neither is there.
pugi::xml_node ChosenBranch(const XmlNames& names, pugi::xml_node alternateContent);

}  // namespace quillmarch::host::deck
