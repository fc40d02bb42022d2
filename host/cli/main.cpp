#include <malloc.h>

#include <csignal>
#include <cstdio>
#include <exception>

#include "host/cli/ExitCode.h"
#include "host/cli/Options.h"
#include "host/cli/StandardStreams.h"
#include "host/cli/TranslateCommand.h"

namespace quillmarch::host {

namespace {

// A deck's parts are loaded and dropped by the thousand; returning their pages to the system and
// asking for them again would cost more than unpacking them.
void KeepFreedPages() {
  constexpr int kLargeBlock = 16 << 20;
  mallopt(M_MMAP_THRESHOLD, kLargeBlock);
  mallopt(M_TRIM_THRESHOLD, kLargeBlock);
}

}  // namespace

}  // namespace quillmarch::host

int main(int argc, char** argv) {
  using namespace quillmarch::host;
  OpenClosedStreams();
  // A reader that went away is a failed write, not the end of the process.
  std::signal(SIGPIPE, SIG_IGN);
  KeepFreedPages();
  try {
    const CommandLine line = ReadCommandLine(argc, argv);
    if (!line.error.empty()) std::fprintf(stderr, "quillmarch: %s\n", line.error.c_str());
    std::fputs(line.output.c_str(), stdout);
    return line.run ? RunTranslate(line.translate) : line.exitCode;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "quillmarch: %s\n", problem.what());
    return kExitBadInput;
  }
}
