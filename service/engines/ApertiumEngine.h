// The offline engine: Debian's Apertium packages, each pair's pipeline kept running.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "service/engines/ApertiumPairs.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

// `name` is what the engine calls itself. Glossary and instruction are not used.
//
// A text already in the target language comes back as it is, and so does one without letters.
// With "auto" the language is judged over all texts of a request together, since a slide's texts
// are short; a single text counts by itself only when it is long enough to be judged reliably.
// A request that can't be judged is taken for the language that this engine last recognised for
// the target, then for English, then for the one language that there is a pair from.
std::unique_ptr<Engine> MakeApertiumEngine(const EngineOptions& options,
                                           std::vector<ApertiumPair> pairs, const char* name);

}  // namespace quillmarch::service
