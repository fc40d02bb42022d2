#include "host/thread/LoopThread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace quillmarch::host {

namespace {

std::function<bool()> Until(const bool& flag) {
  return [&flag] { return flag; };
}

TEST(LoopThread, PostsRunInTheirOrderAndBeforeDueTimers) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  bool done = false;
  loop.SetTimer(1, 10, [&] {
    order += 't';
    done = true;
  });
  loop.Sleep(20);
  for (const char letter : {'a', 'b', 'c'}) loop.Post([&order, letter] { order += letter; });
  loop.RunUntil(Until(done));
  EXPECT_EQ(order, "abct");
}

TEST(LoopThread, APostMadeWithinAPostRunsAfterTheTimersThatAreDue) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  bool done = false;
  loop.SetTimer(1, 10, [&] { order += 't'; });
  loop.Sleep(10);
  loop.Post([&] {
    order += 'a';
    loop.Post([&] {
      order += 'b';
      done = true;
    });
  });
  loop.RunUntil(Until(done));
  EXPECT_EQ(order, "atb");
}

TEST(LoopThread, TimersOfOneMomentFireInTheOrderOfSetting) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  loop.SetTimer(9, 100, [&] { order += '9'; });
  loop.SetTimer(2, 100, [&] { order += '2'; });
  loop.SetTimer(5, 100, [&] { order += '5'; });
  // All three are long due, whatever a slow machine put between the settings.
  loop.Sleep(200);
  loop.PumpPending();
  EXPECT_EQ(order, "925");
}

TEST(LoopThread, AnEarlierTimerFiresFirstWhateverItsId) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  loop.SetTimer(1, 5000, [&] { order += 'l'; });
  loop.SetTimer(2, 1000, [&] { order += 'e'; });
  loop.Sleep(6000);
  loop.PumpPending();
  EXPECT_EQ(order, "el");
}

TEST(LoopThread, ALateTimerFiresOnceAPassAndCatchesNothingUp) {
  LoopThread loop(ClockMode::kUnpaced);
  int fired = 0;
  loop.SetTimer(1, 100, [&] { ++fired; });
  loop.Sleep(100000);
  loop.PumpPending();
  EXPECT_EQ(fired, 1);
  loop.PumpPending();
  EXPECT_EQ(fired, 1);
}

TEST(LoopThread, ATimerFiresEveryPeriodOfTheClock) {
  LoopThread loop(ClockMode::kUnpaced);
  std::vector<std::uint64_t> ticks{loop.TickCount()};
  bool done = false;
  loop.SetTimer(1, 60000, [&] {
    ticks.push_back(loop.TickCount());
    done = ticks.size() == 4;
  });
  loop.RunUntil(Until(done));
  for (std::size_t i = 1; i < ticks.size(); ++i) EXPECT_GE(ticks[i] - ticks[i - 1], 60000u);
  // Three minutes of the clock cost no real ones: this test would run into its limit.
  EXPECT_LT(ticks.back() - ticks.front(), 240000u);
}

TEST(LoopThread, SettingARunningTimerReplacesIt) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  loop.SetTimer(1, 100, [&] { order += 'o'; });
  loop.SetTimer(1, 500, [&] { order += 'n'; });
  loop.Sleep(10000);
  loop.PumpPending();
  EXPECT_EQ(order, "n");
}

TEST(LoopThread, AKilledTimerNeverFiresNotEvenInTheSamePass) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  loop.SetTimer(1, 100, [&] {
    order += 'a';
    loop.KillTimer(2);
  });
  loop.SetTimer(2, 100, [&] { order += 'b'; });
  loop.Sleep(1000);
  loop.PumpPending();
  loop.KillTimer(77);
  EXPECT_EQ(order, "a");
}

TEST(LoopThread, ATimerMayKillItselfAndKeepsWhatItCapturedUntilItReturns) {
  LoopThread loop(ClockMode::kUnpaced);
  const auto held = std::make_shared<int>(7);
  int seen = 0;
  loop.SetTimer(1, 10, [&, held] {
    loop.KillTimer(1);
    seen = *held;
  });
  loop.Sleep(1000);
  loop.PumpPending();
  EXPECT_EQ(seen, 7);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(LoopThread, ATimerReplacedFromWithinAPassWaitsItsOwnPeriod) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  loop.SetTimer(1, 100, [&] {
    order += 'a';
    loop.SetTimer(2, 100000, [&] { order += 'n'; });
  });
  loop.SetTimer(2, 100, [&] { order += 'b'; });
  loop.Sleep(1000);
  loop.PumpPending();
  EXPECT_EQ(order, "a");
}

TEST(LoopThread, AZeroPeriodStillLetsTheClockGetAhead) {
  LoopThread loop(ClockMode::kUnpaced);
  const std::uint64_t start = loop.TickCount();
  int fired = 0;
  loop.SetTimer(1, 0, [&] { ++fired; });
  loop.RunUntil([&] { return fired == 100; });
  EXPECT_GE(loop.TickCount() - start, 1000u);
}

TEST(LoopThread, SleepLeapsExactlyAsFarAsAskedAndRunsNothing) {
  LoopThread loop(ClockMode::kUnpaced);
  bool ran = false;
  loop.Post([&] { ran = true; });
  loop.SetTimer(1, 10, [&] { ran = true; });
  const std::uint64_t before = loop.TickCount();
  for (int i = 0; i < 100; ++i) loop.Sleep(60000);
  const std::uint64_t passed = loop.TickCount() - before;
  EXPECT_GE(passed, 6000000u);
  EXPECT_LT(passed, 6060000u);
  EXPECT_FALSE(ran);
}

TEST(LoopThread, APacedClockKeepsRealTimeInSleepAndTimers) {
  LoopThread loop(ClockMode::kPaced);
  const auto start = std::chrono::steady_clock::now();
  loop.Sleep(30);
  bool done = false;
  loop.SetTimer(1, 30, [&] { done = true; });
  loop.RunUntil(Until(done));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(59));
}

TEST(LoopThread, APumpWithinAPostRunsTheLaterPostsOnceAndInOrder) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  bool done = false;
  loop.Post([&] {
    order += '(';
    loop.PumpPending();
    order += ')';
  });
  loop.Post([&] { order += 'a'; });
  loop.Post([&] {
    order += 'b';
    loop.Post([&] {
      order += 'c';
      done = true;
    });
  });
  loop.RunUntil(Until(done));
  EXPECT_EQ(order, "(ab)c");
}

TEST(LoopThread, ATimerFiresAgainWithinItsOwnCallWhenTheHostPumps) {
  LoopThread loop(ClockMode::kUnpaced);
  std::string order;
  int depth = 0;
  loop.SetTimer(1, 100, [&] {
    order += '(';
    if (++depth < 3) {
      loop.Sleep(100);
      loop.PumpPending();
    }
    order += ')';
  });
  loop.Sleep(100);
  loop.PumpPending();
  EXPECT_EQ(order, "((()))");
}

TEST(LoopThread, APumpNeitherWaitsNorLeaps) {
  LoopThread loop(ClockMode::kUnpaced);
  bool fired = false;
  loop.SetTimer(1, 3600000, [&] { fired = true; });
  loop.PumpPending();
  EXPECT_FALSE(fired);
}

TEST(LoopThread, RunUntilAsksBeforeTheFirstCallAndStopsBetweenTwo) {
  LoopThread loop(ClockMode::kUnpaced);
  int ran = 0;
  loop.Post([&] { ++ran; });
  loop.RunUntil([] { return true; });
  EXPECT_EQ(ran, 0);
  loop.Post([&] { ++ran; });
  loop.RunUntil([&] { return ran == 1; });
  EXPECT_EQ(ran, 1);
  loop.RunUntil([&] { return ran == 2; });
  EXPECT_EQ(ran, 2);
}

TEST(LoopThread, APostAfterTheEndIsRefusedAndDestroyedUnrun) {
  LoopThread loop(ClockMode::kUnpaced);
  const auto held = std::make_shared<int>(0);
  bool ran = false;
  EXPECT_TRUE(loop.Post([&ran, held] { ran = true; }));
  EXPECT_TRUE(loop.SetTimer(1, 10, [&ran, held] { ran = true; }));
  loop.Close();
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_FALSE(loop.Post([&ran, held] { ran = true; }));
  EXPECT_FALSE(loop.SetTimer(1, 10, [&ran, held] { ran = true; }));
  EXPECT_EQ(held.use_count(), 1);
  loop.PumpPending();
  EXPECT_FALSE(ran);
}

TEST(LoopThread, AnEmptyCallableIsPassedOver) {
  LoopThread loop(ClockMode::kUnpaced);
  bool done = false;
  loop.Post(nullptr);
  loop.SetTimer(1, 10, nullptr);
  loop.SetTimer(2, 20, [&] { done = true; });
  loop.RunUntil(Until(done));
  EXPECT_TRUE(done);
}

TEST(LoopThread, TheNextLoopsClockGoesOnWhereTheLastOneStood) {
  std::uint64_t end = 0;
  {
    LoopThread loop(ClockMode::kUnpaced);
    loop.Sleep(3600000);
    end = loop.TickCount();
  }
  EXPECT_GE(LoopThread(ClockMode::kUnpaced).TickCount(), end);
  EXPECT_GE(LoopThread(ClockMode::kPaced).TickCount(), end);
}

TEST(LoopThread, OnlyTheConstructingThreadIsTheHostThread) {
  LoopThread loop(ClockMode::kUnpaced);
  EXPECT_TRUE(loop.OnHostThread());
  bool onOther = true;
  std::thread([&] { onOther = loop.OnHostThread(); }).join();
  EXPECT_FALSE(onOther);
}

}  // namespace

}  // namespace quillmarch::host
