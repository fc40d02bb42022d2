#include "service/engines/ApertiumProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string_view>
#include <thread>
#include <utility>

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kStopCheck{50};
constexpr milliseconds kEndGrace{200};

// The package's own tool puts the flush option into each program of the pipeline. $1 asks the
// generator for no marks on unknown words, $2 the tagger for nothing. The first line waits for the
// end of the lifeline, which only the owner holds open, and then kills the whole group: a pipeline
// in the midst of a long text would not notice that nobody reads it any more.
constexpr char kScript[] =
    "{ read -r -u 3; kill -KILL 0; } </dev/null >/dev/null &\n"
    "exec 3<&-\n"
    "eval \"$(apertium-wblank-mode -z \"$3\")\"";
constexpr int kLifelineInScript = 3;

// The user's surroundings, with a locale in which the pipeline reads and writes UTF-8.
std::vector<std::string> Environment() {
  std::vector<std::string> out;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (text.substr(0, 3) != "LC_" && text.substr(0, 5) != "LANG=" &&
        text.substr(0, 9) != "BASH_ENV=") {
      out.emplace_back(text);
    }
  }
  out.emplace_back("LC_ALL=C.UTF-8");
  return out;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> out;
  for (std::string& text : texts) out.push_back(text.data());
  out.push_back(nullptr);
  return out;
}

// Travels with a text as a blank after its end and tells which text an answer belongs to: a
// pipeline out of step must never put one text's translation in another's place.
std::string Mark(std::uint64_t number) {
  std::string mark(1, '[');
  mark += std::to_string(number);
  mark += ']';
  return mark;
}

void CloseBoth(int (&pair)[2]) {
  close(pair[0]);
  close(pair[1]);
}

}  // namespace

ApertiumProcess::ApertiumProcess(std::string modeFile, milliseconds silenceLimit)
    : modeFile_(std::move(modeFile)), silenceLimit_(silenceLimit) {}

ApertiumProcess::~ApertiumProcess() {
  End(true);
}

bool ApertiumProcess::Start() {
  // A socket rather than a pipe: writing to a pipeline that died must not raise SIGPIPE.
  int in[2];
  int out[2];
  int life[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, in) != 0) return false;
  if (pipe2(out, O_CLOEXEC) != 0) {
    CloseBoth(in);
    return false;
  }
  if (pipe2(life, O_CLOEXEC) != 0) {
    CloseBoth(in);
    CloseBoth(out);
    return false;
  }
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, in[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, out[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&files, life[0], kLifelineInScript);
  // Somebody's connection, kept open by the pipeline, would never see its end.
  posix_spawn_file_actions_addclosefrom_np(&files, kLifelineInScript + 1);

  // A group of its own: the terminal's Ctrl-C is not meant for it, and it can be killed as one.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setpgroup(&attributes, 0);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  for (const int number : {SIGPIPE, SIGINT, SIGTERM, SIGQUIT, SIGHUP}) sigaddset(&signals, number);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  std::vector<std::string> arguments = {"bash", "-c", kScript, "apertium", "-n", "", modeFile_};
  std::vector<std::string> environment = Environment();
  const int failure = posix_spawn(&pid_, "/bin/bash", &files, &attributes,
                                  Pointers(arguments).data(), Pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  close(in[1]);
  close(out[1]);
  close(life[0]);
  if (failure != 0) {
    pid_ = -1;
    close(in[0]);
    close(out[0]);
    close(life[1]);
    return false;
  }
  input_ = in[0];
  output_ = out[0];
  lifeline_ = life[1];
  fcntl(input_, F_SETFL, O_NONBLOCK);
  fcntl(output_, F_SETFL, O_NONBLOCK);
  return true;
}

void ApertiumProcess::End(bool ask) {
  if (pid_ < 0) return;
  close(input_);
  close(output_);
  bool ended = false;
  for (const auto limit = Clock::now() + kEndGrace; ask && !ended && Clock::now() < limit;) {
    ended = waitpid(pid_, nullptr, WNOHANG) == pid_;
    if (!ended) std::this_thread::sleep_for(milliseconds(1));
  }
  // The group outlives its leader as long as the lifeline is open, so its number is still its own.
  kill(-pid_, SIGKILL);
  if (!ended) waitpid(pid_, nullptr, 0);
  close(lifeline_);
  pid_ = input_ = output_ = lifeline_ = -1;
}

ApertiumProcess::Outcome ApertiumProcess::Translate(const std::vector<std::string>& streams,
                                                    std::vector<std::string>& out,
                                                    const std::atomic<bool>& stop) {
  out.clear();
  if (pid_ < 0 && !Start()) return Outcome::kDied;
  std::string input;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    input += streams[i] + Mark(used_ + i) + '\0';
  }
  Outcome outcome = Exchange(input, streams.size(), out, stop);
  for (std::size_t i = 0; outcome == Outcome::kOk && i < out.size(); ++i) {
    const std::string mark = Mark(used_ + i);
    if (out[i].ends_with(mark)) {
      out[i].resize(out[i].size() - mark.size());
    } else {
      outcome = Outcome::kDied;
    }
  }
  used_ += streams.size();
  if (outcome != Outcome::kOk) End(false);
  return outcome;
}

// Both directions at once: a pipeline that waits for its output to be taken reads no input.
ApertiumProcess::Outcome ApertiumProcess::Exchange(const std::string& input, std::size_t count,
                                                   std::vector<std::string>& out,
                                                   const std::atomic<bool>& stop) {
  std::size_t sent = 0;
  std::string piece;
  Clock::time_point lastSign = Clock::now();
  while (out.size() < count) {
    if (stop) return Outcome::kStopped;
    if (Clock::now() - lastSign > silenceLimit_) return Outcome::kTimedOut;
    pollfd watched[2] = {{output_, POLLIN, 0}, {input_, POLLOUT, 0}};
    poll(watched, sent < input.size() ? 2 : 1, static_cast<int>(kStopCheck.count()));
    if (watched[1].revents != 0) {
      const ssize_t written = send(input_, input.data() + sent, input.size() - sent, MSG_NOSIGNAL);
      if (written > 0) {
        sent += static_cast<std::size_t>(written);
        lastSign = Clock::now();
      } else if (errno != EAGAIN && errno != EINTR) {
        return Outcome::kDied;
      }
    }
    if (watched[0].revents == 0) continue;
    char buffer[16 * 1024];
    const ssize_t got = read(output_, buffer, sizeof buffer);
    if (got == 0) return Outcome::kDied;
    if (got < 0) {
      if (errno == EAGAIN || errno == EINTR) continue;
      return Outcome::kDied;
    }
    lastSign = Clock::now();
    for (const char c : std::string_view(buffer, static_cast<std::size_t>(got))) {
      if (c != '\0') {
        piece += c;
      } else {
        out.push_back(std::move(piece));
        piece.clear();
      }
    }
  }
  // More than was asked for: the pipeline is out of step.
  return out.size() == count && piece.empty() ? Outcome::kOk : Outcome::kDied;
}

}  // namespace quillmarch::service
