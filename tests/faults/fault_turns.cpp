// Runs over any deck, each with one failing call, spread over all calls of a run:
//
//   fault_turns DECK TURNS [late|typed|both]
//
// Prints how many calls a run makes and what went wrong in which turn. Ends with 1 if anything did.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "faults/DeckText.h"
#include "faults/FaultyTurn.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

bool TurnOver(const std::string& deck, test::FaultMode mode, std::int64_t failAt,
              std::int64_t& calls) {
  Host host(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  const Result<void> opened = host.Open(deck, warnings);
  if (!opened.ok()) {
    std::cerr << deck << ": " << opened.error().words << '\n';
    std::exit(2);
  }
  const Turn turn = RunOver(host, mode, failAt);
  calls = turn.calls;
  const std::vector<std::string> wrongs = Wrongs(turn, DeckText(host.application()), failAt);
  for (const std::string& wrong : wrongs) std::cout << "call " << failAt << ": " << wrong << '\n';
  return wrongs.empty();
}

}  // namespace

}  // namespace quillmarch::host

int main(int argc, char** argv) {
  using namespace quillmarch::host;
  if (argc < 3 || argc > 4) {
    std::cerr << "usage: fault_turns DECK TURNS [late|typed|both]\n";
    return 2;
  }
  const std::string deck = argv[1];
  const std::string road = argc == 4 ? argv[3] : "both";
  const std::int64_t turns = std::max(1L, std::strtol(argv[2], nullptr, 10));
  const test::FaultMode mode = road == "late"    ? test::FaultMode::kLateBound
                               : road == "typed" ? test::FaultMode::kTyped
                                                 : test::FaultMode::kBoth;
  std::int64_t calls = 0;
  bool well = TurnOver(deck, mode, 0, calls);
  std::cout << deck << ", " << road << ": " << calls << " calls in a run\n";
  const std::int64_t all = calls;
  const std::int64_t wanted = std::min(turns, all);
  for (std::int64_t i = 0; i < wanted; ++i) {
    // The first and the last call are among them.
    const std::int64_t failAt = wanted == 1 ? 1 : 1 + i * (all - 1) / (wanted - 1);
    well = TurnOver(deck, mode, failAt, calls) && well;
    if (isatty(STDERR_FILENO) != 0) std::cerr << "\r" << i + 1 << " of " << wanted << std::flush;
  }
  if (isatty(STDERR_FILENO) != 0) std::cerr << "\r\033[K";
  std::cout << wanted << " turns, " << (well ? "nothing lost" : "SOMETHING WENT WRONG") << '\n';
  return well ? 0 : 1;
}
