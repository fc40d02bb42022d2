#include "host/cli/StandardStreams.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "host/cli/OutputPlan.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kPieceBytes = 256 << 10;

bool WriteAll(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t put = write(file, bytes.data(), bytes.size());
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(put));
  }
  return true;
}

Error CannotRead() {
  return {ErrorCode::kInputOutput, std::strerror(errno)};
}

}  // namespace

void OpenClosedStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) >= 0) continue;
    // The lowest free number is given, so each takes the place of the closed one.
    const int mode = stream == STDERR_FILENO ? O_WRONLY : O_RDONLY;
    if (open("/dev/null", mode) < 0) return;
  }
}

bool IsStandardInput(std::string_view deck) {
  return deck == kStandardStream || deck == "/dev/stdin" || deck == "/dev/fd/0" ||
         deck == "/proc/self/fd/0";
}

Result<std::string> SpoolStandardInput() {
  const int file = memfd_create("deck", MFD_CLOEXEC);
  if (file < 0) return CannotRead();
  std::vector<char> piece(kPieceBytes);
  for (;;) {
    const ssize_t got = read(STDIN_FILENO, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return CannotRead();
    if (got == 0) break;
    if (!WriteAll(file, {piece.data(), static_cast<std::size_t>(got)})) return CannotRead();
  }
  return "/proc/self/fd/" + std::to_string(file);
}

bool WriteStandardOutput(std::string_view bytes) {
  return WriteAll(STDOUT_FILENO, bytes);
}

}  // namespace quillmarch::host
