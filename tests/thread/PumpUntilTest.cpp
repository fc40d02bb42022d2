#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

#include "host/thread/LoopThread.h"

namespace quillmarch::host {

namespace {

TEST(PumpUntil, LetsPostsAndTimersThroughUntilItIsDone) {
  LoopThread thread(ClockMode::kUnpaced);
  std::string ran;
  thread.Post([&] { ran += "p"; });
  thread.SetTimer(1, 100, [&] { ran += "t"; });
  EXPECT_TRUE(thread.PumpUntil([&] { return ran == "pt"; }, 120000));
  thread.Post([&] { ran += "later"; });
  EXPECT_TRUE(thread.PumpUntil([] { return true; }, 120000));
  EXPECT_EQ(ran, "pt");
}

TEST(PumpUntil, IsOverWhenItsTimeIs) {
  LoopThread thread(ClockMode::kUnpaced);
  const std::uint64_t begin = thread.TickCount();
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 120000));
  EXPECT_GE(thread.TickCount() - begin, 120000U);
}

TEST(PumpUntil, LeapsOverNoTimeWhileOutsideWorkLasts) {
  LoopThread thread(ClockMode::kUnpaced);
  thread.OutsideWorkBegins();
  std::atomic<bool> done{false};
  std::thread worker([&] { thread.Post([&] { done = true; }); });
  EXPECT_TRUE(thread.PumpUntil([&] { return done.load(); }, 120000));
  worker.join();
  thread.OutsideWorkEnds();
}

TEST(PumpUntil, AThreadThatIsClosedStopsWaitingAtOnce) {
  LoopThread thread(ClockMode::kPaced);
  thread.Post([&] { thread.Close(); });
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 120000));
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 120000));
}

TEST(PumpUntil, MayBeEnteredFromWithinItself) {
  LoopThread thread(ClockMode::kUnpaced);
  std::string ran;
  thread.Post([&] {
    thread.Post([&] { ran += "inner"; });
    EXPECT_TRUE(thread.PumpUntil([&] { return !ran.empty(); }, 1000));
    ran += " outer";
  });
  EXPECT_TRUE(thread.PumpUntil([&] { return ran == "inner outer"; }, 1000));
}

}  // namespace

}  // namespace quillmarch::host
