// What a pane lives in where nothing happens but what is put there: for benchmarks and fuzzing.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "foundation/seams/FontList.h"
#include "foundation/seams/HostThread.h"
#include "host/driver/UnattendedInput.h"

namespace quillmarch::addin::test {

// Runs what was posted when it is told to or waits. Its timers never fire.
class IdleThread final : public HostThread {
 public:
  std::uint64_t TickCount() override { return ++ticks_; }
  void Sleep(std::uint32_t) override {}
  bool PumpUntil(const std::function<bool()>& done, std::uint32_t) override {
    RunPosts();
    return done();
  }
  bool Post(Callable call) override {
    posts_.push_back(std::move(call));
    return true;
  }
  bool SetTimer(TimerId, std::uint32_t, Callable) override { return true; }
  void KillTimer(TimerId) override {}
  void OutsideWorkBegins() override {}
  void OutsideWorkEnds() override {}
  bool OnHostThread() const override { return true; }

  void RunPosts() {
    while (!posts_.empty()) {
      const Callable call = std::move(posts_.front());
      posts_.pop_front();
      call();
    }
  }

 private:
  std::uint64_t ticks_ = 0;
  std::deque<Callable> posts_;
};

class TwoFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override { return {u"Arial", u"@Mincho"}; }
};

}  // namespace quillmarch::addin::test
