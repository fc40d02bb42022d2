// quillmarch translate: several decks, one after the other.
#pragma once

#include "host/cli/Options.h"

namespace quillmarch::host {

// The process's exit code. Once for each process: it settles the endpoint.
int RunTranslate(const TranslateOptions& options);

}  // namespace quillmarch::host
