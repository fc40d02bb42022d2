// Apertium's stream format: plain text to what its pipeline reads, and back.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::service {

// Escapes what has a meaning in the stream, wraps white space other than a single blank and
// characters that the pipeline would swallow into blanks it carries along, drops NUL (the flush
// mark), and ends with the mark of a sentence's end, so that a text is analysed as a whole
// sentence.
std::string ToApertium(std::string_view text);

// What the pipeline gave for such a text.
std::string FromApertium(std::string_view stream);

}  // namespace quillmarch::service
