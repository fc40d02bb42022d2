// Guesses the language of a text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillmarch::service {

struct DetectedLanguage {
  std::string language;     // ISO 639-3; empty when nothing was recognised
  bool reliable = false;    // the detector's own word for it
  std::size_t letters = 0;  // characters other than white space, without locked pieces
};

// Short texts are rarely reliable.
DetectedLanguage DetectLanguage(std::string_view text);

}  // namespace quillmarch::service
