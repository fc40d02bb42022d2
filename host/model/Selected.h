// What is selected in a window of the model.
#pragma once

#include <cstdint>
#include <vector>

#include "host/deck/Deck.h"

namespace quillmarch::host::model {

// The host's numbers.
enum class SelectionType : std::int32_t { kNone = 0, kSlides = 1, kShapes = 2, kText = 3 };

// Only the fields of the type count.
struct Selected {
  SelectionType type = SelectionType::kNone;
  std::vector<std::uint32_t> slides;     // 0-based, in the order of selection
  deck::PageAddress page;                // of the shapes or the text
  std::vector<std::uint32_t> shapes;     // numbers on the page, in the order of selection
  std::uint32_t group = deck::kNoShape;  // when set, the shapes are members of this group
  deck::TextSpan text;                   // in the one shape of `shapes`
};

}  // namespace quillmarch::host::model
