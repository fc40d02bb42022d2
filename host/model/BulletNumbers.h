// The numbers in front of a text's paragraphs.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "host/deck/text/ParagraphProps.h"

namespace quillmarch::host::model {

// Counts the paragraphs of one text, level by level.
class BulletNumbers {
 public:
  // The bullet of the next paragraph with text, as shown; empty for none.
  std::u16string Next(const deck::BulletMark& bullet, std::size_t level);

 private:
  struct Count {
    std::string type;  // empty while nothing is counted
    std::int32_t start = 0;
    std::int32_t number = 0;
  };
  std::array<Count, deck::kLevels> counts_;
};

}  // namespace quillmarch::host::model
