// What a finished run's record says to a person, line by line.
#pragma once

#include <string>
#include <vector>

#include "host/cli/OutputPlan.h"
#include "host/driver/RunDriver.h"

namespace quillmarch::host {

// Whether all translated text reached the deck.
bool ReachedTheDeck(const addin::RunRecord& record);

// The line of a completed run: what was translated, what stayed as it was, what failed, and where
// the deck is now.
std::string OutcomeLine(const DeckJob& job, const addin::RunRecord& record, double seconds);

// One line for each text, and each slide, that the writes did not reach.
std::vector<std::string> LostTextLines(const addin::RunRecord& record);

// Host calls for each unit, time by phase and the process's peak memory.
struct DeckTimes {
  double openMs = 0.0;
  double saveMs = 0.0;
};
std::vector<std::string> StatsLines(const RunReport& report, const DeckTimes& times);

}  // namespace quillmarch::host
