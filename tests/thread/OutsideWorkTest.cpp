// What the clock does while a worker is busy: the rules that make an abort really wait and a
// finish cost nothing.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <ctime>
#include <thread>
#include <vector>

#include "host/thread/LoopThread.h"

namespace quillmarch::host {

namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

std::int64_t ProcessorMs() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return std::int64_t{time.tv_sec} * 1000 + time.tv_nsec / 1000000;
}

TEST(OutsideWork, AnAbortReallyWaitsIts2000MsWhileAWorkerHangs) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  const auto start = Steady::now();
  const std::uint64_t begin = loop.TickCount();
  while (loop.TickCount() - begin < 2000) loop.Sleep(20);
  EXPECT_GE(Steady::now() - start, milliseconds(1999));
  loop.OutsideWorkEnds();
}

TEST(OutsideWork, SleepsAfterItsEndCostNothing) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  loop.OutsideWorkEnds();
  const auto start = Steady::now();
  for (int i = 0; i < 1000; ++i) loop.Sleep(60000);
  // 1000 minutes of the clock.
  EXPECT_LT(Steady::now() - start, std::chrono::minutes(1));
}

TEST(OutsideWork, ItsEndLetsASleepThatRunsLeapTheRest) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  const std::uint64_t before = loop.TickCount();
  std::thread worker([&] {
    std::this_thread::sleep_for(milliseconds(20));
    loop.OutsideWorkEnds();
  });
  loop.Sleep(24 * 3600 * 1000);
  EXPECT_GE(loop.TickCount() - before, 24u * 3600 * 1000);
  worker.join();
}

TEST(OutsideWork, ItsEndWakesTheLoopWhichLeapsToTheNextTimer) {
  LoopThread loop(ClockMode::kUnpaced);
  std::atomic<bool> running{true};
  loop.OutsideWorkBegins();
  std::thread worker([&] {
    std::this_thread::sleep_for(milliseconds(20));
    running = false;
    loop.OutsideWorkEnds();
  });
  bool done = false;
  bool sawItRunning = false;
  loop.SetTimer(3, 24 * 3600 * 1000, [&] {
    sawItRunning = running;
    done = true;
  });
  loop.RunUntil([&] { return done; });
  EXPECT_FALSE(sawItRunning);
  worker.join();
}

TEST(OutsideWork, TimersKeepRealTimeWhileItLasts) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  const auto start = Steady::now();
  int fired = 0;
  loop.SetTimer(3, 30, [&] { ++fired; });
  loop.RunUntil([&] { return fired == 3; });
  EXPECT_GE(Steady::now() - start, milliseconds(89));
  loop.OutsideWorkEnds();
}

TEST(OutsideWork, TwoPiecesNestAndTheClockLeapsAfterTheLast) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  loop.OutsideWorkBegins();
  loop.OutsideWorkEnds();
  const auto start = Steady::now();
  loop.Sleep(50);
  EXPECT_GE(Steady::now() - start, milliseconds(49));
  loop.OutsideWorkEnds();
  loop.Sleep(24 * 3600 * 1000);
  EXPECT_LT(Steady::now() - start, std::chrono::minutes(1));
}

TEST(OutsideWork, AHostThatWaitsForAPausedWorkerBurnsNoProcessor) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  int ticks = 0;
  loop.SetTimer(3, 120, [&] { ++ticks; });
  const auto end = Steady::now() + milliseconds(600);
  const std::int64_t before = ProcessorMs();
  loop.RunUntil([&] { return Steady::now() >= end; });
  // At most one look every 120 ms; a loop that spun would use all of the 600.
  EXPECT_LE(ticks, 5);
  EXPECT_LT(ProcessorMs() - before, 200);
  loop.OutsideWorkEnds();
}

TEST(OutsideWork, APostFromTheWorkerWakesTheLoopAtOnce) {
  LoopThread loop(ClockMode::kUnpaced);
  loop.OutsideWorkBegins();
  std::thread::id ranOn;
  bool done = false;
  std::thread worker([&] {
    std::this_thread::sleep_for(milliseconds(20));
    loop.Post([&] {
      ranOn = std::this_thread::get_id();
      done = true;
    });
  });
  loop.SetTimer(3, 24 * 3600 * 1000, [] {});
  loop.RunUntil([&] { return done; });
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  worker.join();
  loop.OutsideWorkEnds();
}

TEST(OutsideWork, PostsOfManyThreadsAllArriveEachThreadsInItsOrder) {
  constexpr int kThreads = 4;
  constexpr int kPosts = 500;
  LoopThread loop(ClockMode::kUnpaced);
  std::vector<int> last(kThreads, -1);
  bool inOrder = true;
  int seen = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      loop.OutsideWorkBegins();
      for (int i = 0; i < kPosts; ++i) {
        loop.Post([&, t, i] {
          auto& before = last[static_cast<std::size_t>(t)];
          inOrder = inOrder && before == i - 1;
          before = i;
          ++seen;
        });
        loop.TickCount();
      }
      loop.OutsideWorkEnds();
    });
  }
  loop.RunUntil([&] { return seen == kThreads * kPosts; });
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(inOrder);
}

TEST(OutsideWork, TheClockNeverFallsWhileTheHostLeapsAndAWorkerReadsIt) {
  LoopThread loop(ClockMode::kUnpaced);
  std::atomic<bool> stop{false};
  bool fell = false;
  std::thread reader([&] {
    std::uint64_t last = 0;
    while (!stop) {
      const std::uint64_t now = loop.TickCount();
      fell = fell || now < last;
      last = now;
    }
  });
  for (int i = 0; i < 2000; ++i) loop.Sleep(7);
  stop = true;
  reader.join();
  EXPECT_FALSE(fell);
}

}  // namespace

}  // namespace quillmarch::host
