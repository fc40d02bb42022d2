#include "host/cli/Interrupts.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "host/cli/ExitCode.h"

namespace quillmarch::host {

namespace {

constexpr int kGraceMs = 2000;
constexpr char kInterrupt = 'i';
constexpr char kStop = 's';
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The end that the signal handler writes to; -1 when nobody watches.
volatile sig_atomic_t writeEnd = -1;

void OnSignal(int) {
  const int saved = errno;
  const char byte = kInterrupt;
  if (writeEnd >= 0) [[maybe_unused]]
    const auto written = write(writeEnd, &byte, 1);
  errno = saved;
}

// The next byte, or 0 when `timeoutMs` (-1: none) has passed.
char NextByte(int file, int timeoutMs) {
  for (;;) {
    pollfd wait = {file, POLLIN, 0};
    const int ready = poll(&wait, 1, timeoutMs);
    if (ready == 0) return 0;
    char byte = 0;
    if (ready > 0 && read(file, &byte, 1) == 1) return byte;
    if (errno != EINTR) return kStop;
  }
}

}  // namespace

Interrupts::Interrupts(std::function<void()> onFirst) : onFirst_(std::move(onFirst)) {
  int ends[2] = {-1, -1};
  if (pipe2(ends, O_CLOEXEC) != 0) return;
  readEnd_ = ends[0];
  writeEnd = ends[1];
  watcher_ = std::thread([this] { Watch(); });
  // A handler and no mask: a mask would be inherited by the engines' processes.
  for (const int number : kSignals) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler == SIG_IGN) continue;
    struct sigaction action = {};
    action.sa_handler = &OnSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
  }
}

Interrupts::~Interrupts() {
  if (readEnd_ < 0) return;
  for (const int number : kSignals) {
    struct sigaction before = {};
    sigaction(number, nullptr, &before);
    if (before.sa_handler == &OnSignal) signal(number, SIG_DFL);
  }
  const int end = writeEnd;
  writeEnd = -1;
  [[maybe_unused]] const auto written = write(end, &kStop, 1);
  watcher_.join();
  close(end);
  close(readEnd_);
}

std::unique_lock<std::mutex> Interrupts::HoldWhileSaving() {
  return std::unique_lock(saving_);
}

void Interrupts::SetLastWords(std::string words) {
  const std::lock_guard lock(wordsMutex_);
  lastWords_ = std::move(words);
}

void Interrupts::Watch() {
  if (NextByte(readEnd_, -1) == kStop) return;
  asked_ = true;
  onFirst_();
  if (NextByte(readEnd_, kGraceMs) == kStop) return;
  LeaveAtOnce();
}

void Interrupts::LeaveAtOnce() {
  const std::lock_guard saved(saving_);
  if (isatty(STDERR_FILENO) == 1) {
    [[maybe_unused]] const auto cleared = write(STDERR_FILENO, "\r\033[K", 4);
  }
  const std::lock_guard words(wordsMutex_);
  const std::string line = "quillmarch: " + lastWords_ + "\n";
  [[maybe_unused]] const auto written = write(STDERR_FILENO, line.data(), line.size());
  _exit(kExitCancelled);
}

}  // namespace quillmarch::host
