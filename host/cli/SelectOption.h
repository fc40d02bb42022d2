// What the command's --select names: slides, shapes of one slide, or a piece of one shape's text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/model/Host.h"

namespace quillmarch::host {

struct SelectOption {
  enum class Kind : std::uint8_t { kNothing, kSlides, kShapes, kText };
  Kind kind = Kind::kNothing;
  std::vector<std::int32_t> slides;  // in their order, from 1
  std::int32_t slide = 0;            // of the shapes or the text, from 1
  std::vector<ShapeKey> shapes;      // one with kText
  std::int32_t start = 0;            // from 1, UTF-16 units
  std::int32_t length = 0;
};

// Reads the option's values, each one "2,5-7", "3:Title 1", "3:#2", "3:#2/1" or "3:#2:5+12", or
// several separated by commas. A comma separates only where a slide and a colon follow, or between
// slides; any other belongs to a name. False with a sentence for what no host could select.
bool ReadSelect(const std::vector<std::string>& values, SelectOption& select, std::string& error);

// Selects in the host's active window; an error when the deck has no such thing.
Result<void> SelectIn(Host& host, const SelectOption& select);

}  // namespace quillmarch::host
