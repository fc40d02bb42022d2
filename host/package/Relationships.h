// The relationships part of a source part.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/package/Package.h"

namespace quillmarch::host {

// Reads the well-formed bytes of the relationships of `source` (empty: the package). Targets are
// resolved against the source's folder. Empty when all is well, else why not, as the end of a
// sentence.
std::string ParseRelationships(std::string_view source, std::string_view xml,
                               std::vector<Relationship>& relationships);

}  // namespace quillmarch::host
