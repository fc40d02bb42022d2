// Apertium's stream format: plain text to what its pipeline reads, and back.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::service {

// Escapes what has a meaning in the stream, wraps white space other than a single space and
// characters that the pipeline would swallow into blanks it carries along, drops NUL (the flush
// mark), and marks the end of each line and of the text as a sentence's end, so that a line is
// analysed as a whole sentence and no word moves from one to the next.
std::string ToApertium(std::string_view text);

// What the pipeline gave for such a text, without the spaces that it puts next to others.
std::string FromApertium(std::string_view stream);

}  // namespace quillmarch::service
