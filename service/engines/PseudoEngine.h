// The engine for tests and layout checks: marks each text and makes it longer on request.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "service/engines/Engine.h"

namespace quillmarch::service {

// The text between U+27E6 and U+27E7. With a growth above 1 the text, without the white space
// around it, is first made that many times as long, in characters (code points, rounded to the
// nearest): its own words follow again from the first on, the last one cut where the length is
// reached. Words that hold a locked piece are not repeated. A text without spaces in a script that
// writes without them repeats its characters; no line break is added.
std::string PseudoTranslate(std::string_view text, double growth);

std::unique_ptr<Engine> MakePseudoEngine(double growth);

}  // namespace quillmarch::service
