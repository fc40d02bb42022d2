// Ctrl-C and its kin, taken on a thread of their own: the first asks the command to end by itself,
// the second ends the process at once with 130, and so does a command that has not ended two
// seconds after the first.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace quillmarch::host {

class Interrupts {
 public:
  // `onFirst` runs on the watching thread. A signal that the command was started to ignore stays
  // ignored. One object at a time.
  explicit Interrupts(std::function<void()> onFirst);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

  bool Asked() const { return asked_; }

  // What is said when the process ends at once, one line.
  void SetLastWords(std::string words);

  // Hold it while a deck is being saved: the process does not end at once meanwhile.
  [[nodiscard]] std::unique_lock<std::mutex> HoldWhileSaving();

 private:
  void Watch();
  [[noreturn]] void LeaveAtOnce();

  std::function<void()> onFirst_;
  std::atomic<bool> asked_{false};
  std::mutex saving_;
  std::mutex wordsMutex_;
  std::string lastWords_;
  int readEnd_ = -1;
  std::thread watcher_;
};

}  // namespace quillmarch::host
