#include "host/driver/EventSink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "host/driver/RunId.h"
#include "host/thread/LoopThread.h"

namespace {

TEST(EventSink, EventsArriveInCallOrderAndNeverInsideTheCall) {
  LoopThread loop(ClockMode::kUnpaced);
  std::vector<std::string> seen;
  const RunSink sink = MakeEventSink(loop, 42, [&seen](const RunEvent& event) {
    seen.push_back(ToUtf8(EventName(event.kind)) + ToUtf8(EventPayload(event)));
  });
  sink.onRunStarted();
  sink.onScanProgress(1, 2, u"slides");
  sink.onReady(3, 3);
  sink.onProgress(1, 3, false, u"a", u"b");
  sink.onError(u"code", u"message");
  sink.onCancelled();
  sink.onComplete(9, 3, false);
  EXPECT_TRUE(seen.empty());
  loop.PumpPending();
  const std::vector<std::string> expected = {
      R"(onRunStarted{"runId":42})",
      R"(onScanProgress{"runId":42,"current":1,"total":2,"phase":"slides"})",
      R"(onReady{"runId":42,"total":3,"translatable":3})",
      R"(onProgress{"runId":42,"wordIndex":1,"total":3,"skipped":false,"original":"a","translated":"b"})",
      R"(onError{"runId":42,"code":"code","message":"message"})",
      R"(onCancelled{"runId":42})",
      R"(onComplete{"runId":42,"elapsed":9,"total":3,"bilingualCopy":false})",
  };
  EXPECT_EQ(seen, expected);
}

TEST(EventSink, AWorkersEventsAreToldOnTheHostThread) {
  LoopThread loop(ClockMode::kUnpaced);
  std::vector<std::int32_t> units;
  bool allOnHost = true;
  const RunSink sink = MakeEventSink(loop, 1, [&](const RunEvent& event) {
    units.push_back(event.current);
    allOnHost = allOnHost && loop.OnHostThread();
  });
  std::thread worker([&sink] {
    for (std::int32_t i = 1; i <= 200; ++i) sink.onProgress(i, 200, false, u"text", u"texto");
  });
  loop.RunUntil([&units] { return units.size() == 200; });
  worker.join();
  EXPECT_TRUE(allOnHost);
  for (std::size_t i = 0; i < units.size(); ++i) {
    EXPECT_EQ(units[i], static_cast<std::int32_t>(i) + 1);
  }
}

TEST(EventSink, AnEventBehindTheLoopsEndIsLostWithoutAWord) {
  LoopThread loop(ClockMode::kUnpaced);
  int seen = 0;
  const RunSink sink = MakeEventSink(loop, 1, [&seen](const RunEvent&) { ++seen; });
  sink.onRunStarted();
  loop.Close();
  sink.onCancelled();
  loop.PumpPending();
  EXPECT_EQ(seen, 0);
}

TEST(EventSink, WithoutAListenerEventsAreDropped) {
  LoopThread loop(ClockMode::kUnpaced);
  const RunSink sink = MakeEventSink(loop, 1, nullptr);
  sink.onRunStarted();
  loop.PumpPending();
}

TEST(RunId, IdsGrowAlsoWhenTheClockStandsOrFalls) {
  const std::uint64_t first = NextRunId(1000);
  const std::uint64_t second = NextRunId(1000);
  const std::uint64_t third = NextRunId(5);
  EXPECT_GT(first, 1000u);
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(third, second + 1);
}

TEST(RunId, AnIdLiesOneAboveTheTickCountWhenThatIsAhead) {
  const std::uint64_t ahead = NextRunId(0) + 100000;
  EXPECT_EQ(NextRunId(ahead), ahead + 1);
}

TEST(RunId, AClockThatStartsAtZeroGivesNoZero) {
  EXPECT_NE(NextRunId(0), 0u);
}

TEST(RunId, NoTwoThreadsGetTheSame) {
  std::vector<std::vector<std::uint64_t>> ids(4);
  std::vector<std::thread> threads;
  for (auto& mine : ids) {
    threads.emplace_back([&mine] {
      for (std::uint64_t i = 0; i < 1000; ++i) mine.push_back(NextRunId(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::vector<std::uint64_t> all;
  for (const auto& mine : ids) {
    EXPECT_TRUE(std::is_sorted(mine.begin(), mine.end()));
    all.insert(all.end(), mine.begin(), mine.end());
  }
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
}

}  // namespace
