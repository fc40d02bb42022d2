// quillmarch translate: several decks, one after the other.
#pragma once

#include "host/cli/Options.h"

// The process's exit code. Once for each process: it settles the endpoint.
int RunTranslate(const TranslateOptions& options);
