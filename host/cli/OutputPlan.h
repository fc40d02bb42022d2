// Where each deck of a command goes, settled before any work.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/text/Result.h"
#include "host/package/InputFile.h"

namespace quillmarch::host {

// What stands for standard input or output in place of a path.
inline constexpr char kStandardStream[] = "-";

struct OutputRule {
  std::string file;           // --output
  std::string directory;      // --output-dir
  bool inPlace = false;       // --in-place
  bool force = false;         // --force
  bool skipExisting = false;  // --skip-existing
};

struct DeckJob {
  std::string input;
  std::string output;
};

struct OutputPlan {
  std::vector<DeckJob> jobs;
  // Decks that are outputs of other decks of the command, from an earlier run.
  std::vector<std::string> leftOut;
};

// One job for each deck, in order. Without a rule a deck goes beside itself as NAME.LANG.EXT, in
// an output folder under the same name. NAME.LANG.EXT is left out where NAME.EXT is among the
// decks. An error when two decks would become one file, an output is a deck of this command or no
// deck's ending, or its folder is missing.
Result<OutputPlan> PlanOutputs(const std::vector<std::string>& decks, const OutputRule& rule,
                               const std::string& language);

// Where a job's output goes, as it was before the run.
class OutputPlace {
 public:
  // Tries whether the output can be written there, and leaves nothing. An error also when a file is
  // there that the command has not written, or that was edited since, unless `force` is given or
  // the deck itself is replaced.
  static Result<OutputPlace> Check(const DeckJob& job, bool force);

  // Whether nobody has written there since.
  bool Unchanged() const;

 private:
  explicit OutputPlace(std::string path) : path_(std::move(path)), found_(FileStateAt(path_)) {}

  std::string path_;
  std::optional<FileState> found_;
};

}  // namespace quillmarch::host
