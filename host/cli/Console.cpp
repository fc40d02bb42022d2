#include "host/cli/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/cli/Sentences.h"

namespace quillmarch::host {

namespace {

constexpr std::chrono::milliseconds kRedrawInterval{100};
constexpr std::chrono::seconds kPlainInterval{5};
constexpr std::size_t kUsualColumns = 80;

bool IsRedrawable(int file) {
  const char* const kind = std::getenv("TERM");
  return isatty(file) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

std::size_t Columns() {
  winsize size = {};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualColumns;
  return size.ws_col;
}

void WriteError(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

Console::Console(const ConsoleOptions& options)
    : options_(options), terminal_(IsRedrawable(STDERR_FILENO)) {}

Console::~Console() {
  ClearProgress();
}

void Console::Complain(const std::string& line) {
  ClearProgress();
  WriteError(std::string("quillmarch: ").append(line).append("\n"));
}

void Console::Tell(const std::string& line) {
  if (!options_.quiet) TellAlways(line);
}

void Console::TellAlways(const std::string& line) {
  ClearProgress();
  if (options_.outputTaken) {
    WriteError(line + "\n");
  } else {
    WriteOutput(line + "\n");
  }
}

void Console::Event(const std::string& json) {
  if (isatty(STDOUT_FILENO) == 1) ClearProgress();
  WriteOutput(json + "\n");
}

void Console::WriteOutput(const std::string& line) {
  if (outputLost_) return;
  // Flushed line by line, so that a reader of the pipe can follow the run.
  const bool written =
      std::fwrite(line.data(), 1, line.size(), stdout) == line.size() && std::fflush(stdout) == 0;
  if (written) return;
  outputLost_ = true;
  if (errno != EPIPE) {
    Complain(CannotSentence("write to standard output", std::strerror(errno)));
  }
}

void Console::Show(const RunProgress& progress) {
  if (options_.quiet) return;
  const auto now = std::chrono::steady_clock::now();
  const bool another = progress.texts != lastTexts_;
  const auto interval = terminal_ ? std::chrono::milliseconds(kRedrawInterval)
                                  : std::chrono::milliseconds(kPlainInterval);
  if (!another && now - lastShown_ < interval) return;
  lastTexts_ = progress.texts;
  lastShown_ = now;

  if (terminal_) {
    // The last column stays free: a terminal may wrap when it is written.
    WriteError(std::string("\r").append(FormatProgress(progress, Columns() - 1)).append("\033[K"));
    barShown_ = true;
    return;
  }
  if (progress.texts == 0) return;
  WriteError((progress.place.empty() ? "" : progress.place + " ") + progress.deck + ": " +
             std::to_string(progress.textsDone) + " of " + Counted(progress.texts, "text") +
             " translated, on " + Counted(progress.slides, "slide") + "\n");
}

void Console::ClearProgress() {
  lastTexts_ = -1;
  if (!barShown_) return;
  barShown_ = false;
  WriteError("\r\033[K");
}

}  // namespace quillmarch::host
