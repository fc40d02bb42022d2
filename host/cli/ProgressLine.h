// The line that shows a run's progress on a terminal.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillmarch::host {

struct RunProgress {
  std::string deck;         // printable name
  std::string place{};      // "[2/5]" when there are several decks
  std::int32_t slides = 0;  // slides looked through
  std::int32_t texts = 0;   // texts to translate; 0 while they are being collected
  std::int32_t textsDone = 0;
  double seconds = 0.0;  // real time since the first text went out
};

// One line of at most `columns` columns: place, name, bar, counts and time left. What does not fit
// is left out, the bar first, then the name; with fewer than 4 columns nothing is left.
std::string FormatProgress(const RunProgress& progress, std::size_t columns);

// "0:07", "12:30", "1:02:03".
std::string FormatDuration(double seconds);

}  // namespace quillmarch::host
