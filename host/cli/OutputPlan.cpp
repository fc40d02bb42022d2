#include "host/cli/OutputPlan.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/cli/DeckKind.h"
#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"
#include "host/cli/WrittenOutputs.h"
#include "host/package/OutputFile.h"

namespace quillmarch::host {

namespace fs = std::filesystem;

namespace {

fs::path FolderOf(const fs::path& file) {
  return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

fs::path TranslatedName(const fs::path& deck, const std::string& language) {
  fs::path name = deck.stem();
  name += "." + language;
  name += deck.extension();
  return name;
}

// A name that is equal for two ways of writing one file, whether it exists or not.
fs::path PlaceOf(const fs::path& file) {
  std::error_code code;
  if (fs::exists(file, code)) {
    const fs::path place = fs::canonical(file, code);
    if (!code) return place;
  }
  const fs::path folder = fs::weakly_canonical(FolderOf(file), code);
  return (code ? FolderOf(file) : folder) / file.filename();
}

bool SameFile(const std::string& first, const std::string& second) {
  std::error_code code;
  if (fs::equivalent(first, second, code) && !code) return true;
  return PlaceOf(first) == PlaceOf(second);
}

Error CannotWrite(const std::string& output, const std::string& reason,
                  ErrorCode code = ErrorCode::kBadArgument) {
  return {code, CannotSentence("write " + PlainLine(output), reason)};
}

// Whether the deck is NAME.LANG.EXT beside a NAME.EXT of the same command.
bool IsOutputOfAnother(const std::string& deck, const std::vector<std::string>& decks,
                       const std::string& language) {
  return std::any_of(decks.begin(), decks.end(), [&](const std::string& other) {
    const fs::path output = fs::path(other).replace_filename(TranslatedName(other, language));
    return output == fs::path(deck) ||
           (output.filename() == fs::path(deck).filename() && SameFile(output.string(), deck));
  });
}

fs::path OutputOf(const std::string& deck, const OutputRule& rule, const std::string& language) {
  if (rule.inPlace) {
    // Through a link to the file itself, or saving would put a file in the link's place.
    std::error_code failed;
    fs::path output = fs::canonical(deck, failed);
    return failed ? fs::path(deck) : output;
  }
  if (!rule.file.empty()) return rule.file;
  if (!rule.directory.empty()) return fs::path(rule.directory) / TranslatedName(deck, language);
  return fs::path(deck).replace_filename(TranslatedName(deck, language));
}

// What is wrong with one output on its own.
Result<void> CheckOutput(const std::string& output, const std::string& input,
                         const OutputRule& rule) {
  std::error_code failed;
  if (fs::is_symlink(output, failed)) {
    const std::string target = fs::read_symlink(output, failed).string();
    return CannotWrite(output, "it is a link to " + PlainLine(target) + "; name that file itself");
  }
  if (fs::is_directory(output, failed)) {
    return CannotWrite(output, "it is a folder; use --output-dir for that");
  }
  if (rule.file.empty()) return {};
  const std::string ending = EndingOf(output);
  if (!IsDeckEnding(ending) && ending != EndingOf(input)) {
    return CannotWrite(output,
                       (ending.empty() ? "it has no ending" : ending + " is another format") +
                           "; decks are written as .pptx, .pptm, .potx, .potm, .ppsx or .ppsm",
                       ErrorCode::kUnsupported);
  }
  // Beside a deck that is itself missing the deck is the better complaint.
  if (!fs::is_directory(FolderOf(output), failed)) {
    return CannotWrite(output, "there is no folder " + PlainLine(FolderOf(output).string()),
                       ErrorCode::kNotFound);
  }
  return {};
}

}  // namespace

Result<OutputPlan> PlanOutputs(const std::vector<std::string>& decks, const OutputRule& rule,
                               const std::string& language) {
  std::error_code failed;
  OutputPlan plan;
  for (const std::string& deck : decks) {
    if (IsOutputOfAnother(deck, decks, language)) {
      plan.leftOut.push_back(deck);
    } else {
      plan.jobs.push_back({deck, OutputOf(deck, rule, language).string()});
    }
  }
  if (!rule.file.empty() && plan.jobs.size() > 1) {
    return Error{ErrorCode::kBadArgument,
                 "--output names one file; use --output-dir for several decks"};
  }
  if (!rule.directory.empty() && !fs::is_directory(rule.directory, failed)) {
    return CannotWrite(rule.directory, "there is no such folder", ErrorCode::kNotFound);
  }
  if (rule.file == kStandardStream) return plan;

  for (std::size_t i = 0; i < plan.jobs.size(); ++i) {
    const DeckJob& job = plan.jobs[i];
    for (std::size_t j = 0; j < i; ++j) {
      if (!SameFile(job.output, plan.jobs[j].output)) continue;
      return CannotWrite(job.output, "both " + PlainLine(plan.jobs[j].input) + " and " +
                                         PlainLine(job.input) + " would go there");
    }
    if (rule.inPlace) continue;
    for (const DeckJob& other : plan.jobs) {
      if (!SameFile(job.output, other.input)) continue;
      return CannotWrite(job.output, std::string("it is a deck of this command; to replace decks "
                                                 "use --in-place and no other output"));
    }
    Result<void> sound = CheckOutput(job.output, job.input, rule);
    if (!sound) return std::move(sound).error();
  }
  return plan;
}

Result<OutputPlace> OutputPlace::Check(const DeckJob& job, bool force) {
  OutputPlace place(job.output);
  {
    OutputFile trial;
    const std::string fault = trial.Open(job.output);
    if (!fault.empty()) return CannotWrite(job.output, fault, ErrorCode::kDenied);
  }
  if (force || !place.found_ || SameFile(job.input, job.output)) return place;
  switch (OriginOf(job.output)) {
    case OutputOrigin::kOurs:
      return place;
    case OutputOrigin::kEdited:
      return CannotWrite(job.output,
                         "it was edited after quillmarch wrote it; use --force to replace it",
                         ErrorCode::kExists);
    default:
      return CannotWrite(job.output, "it exists already; use --force to replace it",
                         ErrorCode::kExists);
  }
}

bool OutputPlace::Unchanged() const {
  return FileStateAt(path_) == found_;
}

}  // namespace quillmarch::host
