// One Apertium pipeline, kept running: texts go in, each ended by a NUL that flushes it through,
// and come out in order. A separate group of processes, started at the first use; it ends with its
// owner, however that one ends.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace quillmarch::service {

class ApertiumProcess {
 public:
  enum class Outcome { kOk, kStopped, kTimedOut, kDied };

  // `silenceLimit` bounds the time in which nothing goes in or comes out.
  ApertiumProcess(std::string modeFile, std::chrono::milliseconds silenceLimit);
  ~ApertiumProcess();  // ends it
  ApertiumProcess(const ApertiumProcess&) = delete;
  ApertiumProcess& operator=(const ApertiumProcess&) = delete;

  // Takes texts in Apertium's stream format, without NUL, and gives as many back. After any
  // outcome other than kOk the pipeline has been ended and the next call starts a new one. One
  // caller at a time.
  Outcome Translate(const std::vector<std::string>& streams, std::vector<std::string>& out,
                    const std::atomic<bool>& stop);

 private:
  Outcome Exchange(const std::string& input, std::size_t count, std::vector<std::string>& out,
                   const std::atomic<bool>& stop);
  bool Start();
  // Asked to end, it finishes by itself at the end of its input; otherwise it is killed.
  void End(bool ask);

  std::string modeFile_;
  std::chrono::milliseconds silenceLimit_;
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int lifeline_ = -1;       // its end, even by our death, ends the group
  std::uint64_t used_ = 0;  // texts sent so far
};

}  // namespace quillmarch::service
