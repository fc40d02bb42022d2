// Edits on a part's own bytes: everything that no edit names stays as it was, to the byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::host {

struct Edit {
  std::size_t offset = 0;  // in the part's bytes, 0-based
  std::size_t length = 0;  // bytes replaced, may be 0
  std::string text;        // what stands there instead
};

// Applies the edits in one pass. They may come in any order and must not overlap; two insertions
// at one offset keep the order in which they came.
std::string ApplyEdits(std::string_view original, std::vector<Edit> edits);

}  // namespace quillmarch::host
