// Plain texts through Apertium's pipeline, with the pieces that must not change guarded.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "service/engines/Engine.h"

namespace quillmarch::service {

// Runs texts in the stream format through a pipeline; false when it could not.
using ApertiumRun =
    std::function<bool(const std::vector<std::string>& streams, std::vector<std::string>& out)>;

// The pipeline takes time in proportion to the square of a word's length, and no dictionary holds
// words near this one.
inline constexpr std::size_t kLongestWord = 256;  // bytes

bool HasTooLongWord(std::string_view text);

// Whether the text holds a letter outside its locked pieces.
bool HasTextToTranslate(std::string_view text);

// As many translations as texts. The white space around a text stays, and a line in capitals comes
// back in capitals. Locked pieces, glossary terms and words that are too long travel as words that
// no dictionary knows, so that the sentence around them is translated as one; where such a word
// gets lost on the way, the pieces between are translated one by one. A term is found in its own
// case and as a whole word, the longest one first.
bool TranslateTexts(const std::vector<std::string>& texts, const std::vector<EngineTerm>& glossary,
                    const ApertiumRun& run, std::vector<std::string>& translations);

}  // namespace quillmarch::service
