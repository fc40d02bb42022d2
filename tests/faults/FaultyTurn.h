// One run over the headless host, driven through a pane, in which one call fails; and whether it
// did what it must.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/model/Host.h"
#include "run/document/RunRecord.h"
#include "support/FaultyHost.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

struct Turn {
  std::int64_t calls = 0;  // that the mode looks at
  bool failed = false;
  std::vector<std::string> events;
  std::vector<RunRecord> records;
  std::set<Wide> sources;  // every text that was sent
};

// A run over the active deck. `failAt` as FaultyHost takes it. Every text is answered as "T(text)".
Turn RunOver(Host& host, test::FaultMode mode, std::int64_t failAt);

// A sentence for each thing that is wrong: not exactly one ending, not exactly one record, a call
// that should have failed and did not, a text that is neither translated in the deck nor named, or
// that is nowhere. `deck` is DeckText() after the run.
std::vector<std::string> Wrongs(const Turn& turn, const Wide& deck, std::int64_t failAt);

}  // namespace quillmarch::host
