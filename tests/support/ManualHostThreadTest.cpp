#include "support/ManualHostThread.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmarch::addin {

namespace {

using test::ManualHostThread;

TEST(ManualHostThread, ALeapFiresTheNextTimerAndNoLaterOne) {
  ManualHostThread thread;
  const std::uint64_t begin = thread.TickCount();
  std::string fired;
  thread.SetTimer(1, 300, [&] { fired += "a"; });
  thread.SetTimer(2, 120, [&] { fired += "b"; });
  EXPECT_TRUE(thread.Leap());
  EXPECT_EQ(fired, "b");
  EXPECT_EQ(thread.TickCount() - begin, 120U);
  EXPECT_TRUE(thread.Leap());
  EXPECT_TRUE(thread.Leap());
  EXPECT_EQ(fired, "bba");
  thread.KillTimer(1);
  thread.KillTimer(2);
  EXPECT_FALSE(thread.Leap());
}

TEST(ManualHostThread, WithOutsideWorkNothingLeaps) {
  ManualHostThread thread;
  int fired = 0;
  thread.SetTimer(1, 120, [&] { ++fired; });
  thread.OutsideWorkBegins();
  EXPECT_FALSE(thread.Leap());
  thread.OutsideWorkEnds();
  EXPECT_TRUE(thread.Leap());
  EXPECT_EQ(fired, 1);
}

TEST(ManualHostThread, ATimerMayKillItself) {
  ManualHostThread thread;
  int fired = 0;
  thread.SetTimer(1, 120, [&] {
    ++fired;
    thread.KillTimer(1);
  });
  thread.Advance(500);
  thread.FireDueTimers();
  thread.FireDueTimers();
  EXPECT_EQ(fired, 1);
}

TEST(ManualHostThread, PostsRunInTheirOrderWhenTheTestSaysSo) {
  ManualHostThread thread;
  std::string order;
  thread.Post([&] { order += "a"; });
  thread.Post([&] { order += "b"; });
  EXPECT_EQ(order, "");
  thread.RunPosts();
  EXPECT_EQ(order, "ab");
}

TEST(ManualHostThread, ClocksOfOneProcessNeverOverlap) {
  std::uint64_t end = 0;
  {
    ManualHostThread thread;
    thread.Sleep(5000);
    end = thread.TickCount();
  }
  EXPECT_GT(ManualHostThread().TickCount(), end);
}

}  // namespace

}  // namespace quillmarch::addin
