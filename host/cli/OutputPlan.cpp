#include "host/cli/OutputPlan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "host/cli/TerminalText.h"

namespace quillmarch::host {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kAnybodyWrites = S_IWUSR | S_IWGRP | S_IWOTH;

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

}  // namespace

bool PlanOutputs(const std::vector<std::string>& decks, const OutputRule& rule,
                 const std::string& language, std::vector<DeckJob>& jobs, std::string& error) {
  std::error_code code;
  if (!rule.file.empty() && decks.size() > 1) {
    error = "--output names one file; use --output-dir for several decks";
    return false;
  }
  if (!rule.directory.empty() && !fs::is_directory(rule.directory, code)) {
    error = PlainLine(rule.directory) + ": there is no such folder to write to";
    return false;
  }

  jobs.clear();
  for (const std::string& deck : decks) {
    fs::path output;
    if (rule.inPlace) {
      // Through a link to the file itself, or saving would put a file in the link's place.
      output = fs::canonical(deck, code);
      if (code) output = deck;
    } else if (!rule.file.empty()) {
      output = rule.file;
    } else if (!rule.directory.empty()) {
      output = fs::path(rule.directory) / TranslatedName(deck, language);
    } else {
      output = fs::path(deck).replace_filename(TranslatedName(deck, language));
    }
    jobs.push_back({deck, output.string()});
  }

  for (std::size_t i = 0; i < jobs.size(); ++i) {
    const std::string& output = jobs[i].output;
    for (std::size_t j = 0; j < i; ++j) {
      if (!SameFile(output, jobs[j].output)) continue;
      error = PlainLine(jobs[j].input) + " and " + PlainLine(jobs[i].input) +
              " would both be written to " + PlainLine(output);
      return false;
    }
    if (rule.inPlace) continue;
    for (const DeckJob& job : jobs) {
      if (!SameFile(output, job.input)) continue;
      error = PlainLine(output) + ": the output would replace the deck; use --in-place for that";
      return false;
    }
    if (fs::is_directory(output, code)) {
      error = PlainLine(output) + ": the output is a folder; use --output-dir for that";
      return false;
    }
    // Beside a deck that is itself missing the deck is the better complaint.
    if (!rule.file.empty() && !fs::is_directory(FolderOf(output), code)) {
      error = PlainLine(FolderOf(output).string()) + ": there is no such folder to write to";
      return false;
    }
  }
  return true;
}

bool OutputWritable(const DeckJob& job, std::string& error) {
  const std::string folder = FolderOf(job.output).string();
  if (access(folder.c_str(), W_OK) != 0) {
    error = "the output can't be written to " + PlainLine(folder) + ": " + std::strerror(errno);
    return false;
  }
  // Renaming would replace a file that its owner has locked, and the superuser may write to it
  // anyway, so its mode is asked.
  struct stat status = {};
  if (stat(job.output.c_str(), &status) == 0 && (status.st_mode & kAnybodyWrites) == 0) {
    error = "the output " + PlainLine(job.output) + " is read-only";
    return false;
  }
  return true;
}

}  // namespace quillmarch::host
