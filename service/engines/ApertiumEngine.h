// The offline engine: Debian's Apertium packages, each pair's pipeline kept running.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "service/engines/ApertiumPairs.h"
#include "service/engines/Engine.h"

namespace quillmarch::service {

// `name` is what the engine calls itself. The instruction is not used.
//
// A text already in the target language comes back as it is, and so does one without letters, one
// reliably in a language without a pair, and a word that is too long. The named language holds for
// the texts that the detector does not contradict.
//
// With "auto" the language is judged over all texts of a request together, since a slide's texts
// are short; a single text counts by itself only when it is long enough to be judged reliably.
// A request that can't be judged is taken for the language that was last recognised in the same
// run, then for English, then for the one language that there is a pair from.
//
// A request that is part of no run and whose texts are all in a language without a pair fails.
std::unique_ptr<Engine> MakeApertiumEngine(const EngineOptions& options,
                                           std::vector<ApertiumPair> pairs, const char* name);

}  // namespace quillmarch::service
