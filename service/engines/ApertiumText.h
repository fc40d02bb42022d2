// Plain texts through Apertium's pipeline, with the pieces that must not change guarded.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::service {

// Runs texts in the stream format through a pipeline; false when it could not.
using ApertiumRun =
    std::function<bool(const std::vector<std::string>& streams, std::vector<std::string>& out)>;

// Whether the text holds a letter outside its locked pieces.
bool HasTextToTranslate(std::string_view text);

// As many translations as texts. The blanks around a text stay, and locked pieces travel as words
// that no dictionary knows, so that the sentence around them is translated as one; where such a
// word gets lost on the way, the pieces between are translated one by one.
bool TranslateTexts(const std::vector<std::string>& texts, const ApertiumRun& run,
                    std::vector<std::string>& translations);

}  // namespace quillmarch::service
