// Where each deck of a command goes, settled before any work.
#pragma once

#include <string>
#include <vector>

namespace quillmarch::host {

struct OutputRule {
  std::string file;       // --output
  std::string directory;  // --output-dir
  bool inPlace = false;   // --in-place
};

struct DeckJob {
  std::string input;
  std::string output;
};

// One job for each deck, in order. Without a rule a deck goes beside itself as NAME.LANG.EXT, in
// an output folder under the same name. False with a sentence in `error` when two decks would
// become one file, an output is a deck of this command, or its folder is missing.
bool PlanOutputs(const std::vector<std::string>& decks, const OutputRule& rule,
                 const std::string& language, std::vector<DeckJob>& jobs, std::string& error);

// Whether the job's output may be written as far as can be told beforehand; a sentence without the
// file's name in `error`.
bool OutputWritable(const DeckJob& job, std::string& error);

}  // namespace quillmarch::host
