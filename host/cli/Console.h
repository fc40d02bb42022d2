// Where the command's words go: results to standard output, everything else to standard error, with
// the progress line kept out of their way. Host thread only.
#pragma once

#include <chrono>
#include <string>

#include "host/cli/ProgressLine.h"

namespace quillmarch::host {

struct ConsoleOptions {
  bool quiet = false;        // only errors and warnings
  bool outputTaken = false;  // standard output belongs to the events, or to the deck
};

class Console {
 public:
  explicit Console(const ConsoleOptions& options);
  ~Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  // "quillmarch: " and the line, on standard error.
  void Complain(const std::string& line);
  // A line of the outcome; on standard error when standard output is taken.
  void Tell(const std::string& line);
  // As Tell, also when quiet.
  void TellAlways(const std::string& line);
  // One event as one line on standard output.
  void Event(const std::string& json);

  // Draws the bar on a terminal, at most ten times a second; elsewhere a plain line now and then.
  void Show(const RunProgress& progress);
  // Removes the bar. Does nothing elsewhere.
  void ClearProgress();

 private:
  void WriteOutput(const std::string& line);

  const ConsoleOptions options_;
  const bool terminal_;  // standard error can redraw a line
  bool barShown_ = false;
  bool outputLost_ = false;
  std::chrono::steady_clock::time_point lastShown_;
  std::int32_t lastTexts_ = -1;
};

}  // namespace quillmarch::host
