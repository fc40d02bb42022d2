// Where text goes inside shapes that few slides show: arrows with several heads, brackets, signs.
#pragma once

#include <optional>
#include <string_view>

#include "host/geometry/PresetTextRects.h"

namespace quillmarch::host::model {

// Nothing for a word that is none of them.
std::optional<PresetEdges> UncommonTextRect(const PresetGeometry& geometry, std::string_view word);

}  // namespace quillmarch::host::model
