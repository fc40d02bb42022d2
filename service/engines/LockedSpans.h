// Pieces of a text that no engine may change: locked placeholders ([[QM_REF_12]]), web addresses
// and e-mail addresses.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace quillmarch::service {

struct LockedSpan {
  std::size_t begin = 0;  // bytes
  std::size_t end = 0;    // after the last byte
  bool placeholder = false;
};

// In order, without overlap.
std::vector<LockedSpan> FindLockedSpans(std::string_view text);

// How many locked placeholders the text holds.
std::size_t CountLockedPlaceholders(std::string_view text);

}  // namespace quillmarch::service
