// What a finished run's record says to a person, line by line, and to a program.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/cli/OutputPlan.h"
#include "host/driver/RunDriver.h"

namespace quillmarch::host {

// Whether all translated text reached the deck.
bool ReachedTheDeck(const addin::RunRecord& record);

// The line of a completed run: what was translated, what stayed as it was, what was not written,
// and where the deck is now.
std::string OutcomeLine(const DeckJob& job, const addin::RunRecord& record, double seconds);

// One line for each text, and each slide, that the writes did not reach.
std::vector<std::string> LostTextLines(const addin::RunRecord& record);

// One line for each text that the translation left as it was.
std::vector<std::string> LeftTextLines(const addin::RunRecord& record);

// Calls into the deck for each text, time by phase and the process's peak memory.
struct DeckTimes {
  double openMs = 0.0;
  double saveMs = 0.0;
};
std::vector<std::string> StatsLines(const DrivenRun& run, const DeckTimes& times);

// How one deck ended, for --json.
struct DeckEnd {
  int exitCode = 0;
  double seconds = 0.0;
  bool saved = false;
  std::string error;  // why nothing was saved; empty when the deck was saved or left out
  addin::RunRecord record;
};

// One line each: the objects that begin and end a deck.
std::string DeckJson(const DeckJob& job, std::size_t number, std::size_t count);
std::string ResultJson(const DeckJob& job, const DeckEnd& end);

}  // namespace quillmarch::host
