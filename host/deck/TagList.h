// Tags: named texts that programs leave on a presentation, a slide or a shape.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/Deck.h"

namespace quillmarch::host::deck {

struct Tag {
  Wide name;  // as the file has it; hosts show and compare it in upper case
  Wide value;
};

// Where tags hang: on the presentation, on a slide, or on one of its shapes.
struct TagOwner {
  enum class Kind : std::uint8_t { kPresentation, kSlide, kShape };
  Kind kind = Kind::kPresentation;
  PageAddress page;
  std::uint32_t shape = 0;
};

// None when the owner has no tags or they cannot be read.
std::vector<Tag> ReadTags(Deck& deck, const TagOwner& owner);

// Adds a tag or gives an existing one (names compare without regard to ASCII case) another value.
// False when the owner has no tags part yet: one is not made.
bool PutTag(Deck& deck, const TagOwner& owner, WideView name, WideView value);

}  // namespace quillmarch::host::deck
