// Standard input and output as decks, and the three streams as a caller may have left them.
#pragma once

#include <string>
#include <string_view>

#include "foundation/text/Result.h"

namespace quillmarch::host {

// Opens those of the three standard streams that are closed, so that no file of ours takes their
// numbers and gets what was meant for them. Writing to a standard output opened here fails.
void OpenClosedStreams();

// Whether the deck is to be read from standard input.
bool IsStandardInput(std::string_view deck);

// Reads standard input to its end; the path of what came, good for the life of the process.
Result<std::string> SpoolStandardInput();

// False with the system's reason in errno.
bool WriteStandardOutput(std::string_view bytes);

}  // namespace quillmarch::host
