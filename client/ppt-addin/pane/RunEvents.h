// The events of a run on their way to the page: each becomes the call of one of the page's global
// functions with one JSON object. They reach the page in the order of the calls and never inside
// the call that raised them.
#pragma once

#include <cstdint>

#include "run/document/RunSink.h"

namespace quillmarch::addin {

class CPptPane;

// Host thread, before the run starts; the callables may then be called on any thread. An event
// whose pane has gone by its turn is lost without a word.
void FillRunSink(CPptPane& pane, std::uint64_t runId, RunSink& sink);

}  // namespace quillmarch::addin
