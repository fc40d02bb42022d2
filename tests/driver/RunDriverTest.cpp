#include "host/driver/RunDriver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "driver/DriverBench.h"
#include "foundation/automation/HostId.h"
#include "support/LogCapture.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

using test::DriverBench;
using test::TextShape;
using testing::ElementsAre;
using testing::HasSubstr;

std::string RunIdOf(const std::string& event) {
  const std::size_t begin = event.find(':') + 1;
  return event.substr(begin, event.find_first_of(",}", begin) - begin);
}

TEST(RunDriver, IdentifiesTheHostBeforeAnyRun) {
  DriverBench bench;
  EXPECT_EQ(HostWord(), u"ppt");
  EXPECT_EQ(HostName(), u"Microsoft PowerPoint");
}

TEST(RunDriver, AWholeDeckIsTranslatedAndReported) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello"), TextShape(u"World")});
  bench.deck().AddSlide({TextShape(u"Again")});
  bench.RunToEnd();

  EXPECT_EQ(bench.deck().slides[0]->shapes()[0]->Text(), u"T(Hello)");
  EXPECT_EQ(bench.deck().slides[0]->shapes()[1]->Text(), u"T(World)");
  EXPECT_EQ(bench.deck().slides[1]->shapes()[0]->Text(), u"T(Again)");
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onComplete"));
  ASSERT_EQ(bench.reports.size(), 1u);
  const DrivenRun& report = bench.reports[0];
  EXPECT_EQ(report.record.outcome, RunOutcome::kCompleted);
  EXPECT_EQ(report.record.units, 3);
  EXPECT_TRUE(report.record.failed.empty());
  EXPECT_TRUE(report.errorCode.empty());
  EXPECT_FALSE(bench.driver->running());
}

TEST(RunDriver, EventsComeInOrderEachWithTheRunsIdAndBehindTheStart) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  ASSERT_TRUE(bench.driver->Start(bench.Request(), bench.Listener()));
  EXPECT_TRUE(bench.events.empty());
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  ASSERT_EQ(bench.events.size(), 5u);
  const std::string id = RunIdOf(bench.events[0]);
  EXPECT_EQ(bench.events[0], "onRunStarted{\"runId\":" + id + "}");
  EXPECT_EQ(bench.events[1],
            "onScanProgress{\"runId\":" + id + ",\"current\":1,\"total\":1,\"phase\":\"slides\"}");
  EXPECT_EQ(bench.events[2], "onReady{\"runId\":" + id + ",\"total\":1,\"translatable\":1}");
  EXPECT_EQ(bench.events[3], "onProgress{\"runId\":" + id +
                                 ",\"wordIndex\":1,\"total\":1,\"skipped\":false,\"original\":"
                                 "\"Hello\",\"translated\":\"T(Hello)\"}");
  EXPECT_THAT(bench.events[4], HasSubstr("onComplete{\"runId\":" + id + ",\"elapsed\":"));
}

TEST(RunDriver, TheEndingComesBehindTheLastEventAndTheDriverIsThenFree) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  std::size_t eventsAtEnd = 0;
  bool wasRunning = true;
  bool startedAgain = false;
  RunListener listener = bench.Listener();
  listener.onEnded = [&](const DrivenRun&) {
    eventsAtEnd = bench.events.size();
    wasRunning = bench.driver->running();
    startedAgain = bench.driver->Start(bench.Request(), bench.Listener());
  };
  bench.driver->Start(bench.Request(), listener);
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_EQ(eventsAtEnd, 5u);
  EXPECT_FALSE(wasRunning);
  EXPECT_TRUE(startedAgain);
  EXPECT_EQ(bench.deck().slides[0]->shapes()[0]->Text(), u"T(T(Hello))");
}

TEST(RunDriver, RunsHaveGrowingIds) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  bench.RunToEnd();
  const std::string first = RunIdOf(bench.events.front());
  bench.events.clear();
  bench.RunToEnd();
  EXPECT_GT(std::stoull(RunIdOf(bench.events.front())), std::stoull(first));
}

TEST(RunDriver, ASecondStartIsIgnoredWhileOneRuns) {
  DriverBench bench;
  const test::LogCapture log;
  bench.deck().AddSlide({TextShape(u"Hello")});
  ASSERT_TRUE(bench.driver->Start(bench.Request(), bench.Listener()));
  EXPECT_FALSE(bench.driver->Start(bench.Request(), bench.Listener()));
  EXPECT_EQ(log.CountContaining("PptPane start action="), 1);
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_EQ(bench.reports.size(), 1u);
}

TEST(RunDriver, TheLogTellsARunsLifeAsAPanesDoes) {
  DriverBench bench;
  const test::LogCapture log;
  bench.deck().AddSlide({TextShape(u"Hello")});
  bench.RunToEnd();
  EXPECT_TRUE(log.Has("PptPane StartRun begin scope=0"));
  EXPECT_TRUE(log.Has("PptPane StartRun end (async)"));
  EXPECT_TRUE(log.Has("PptPane run finished"));
}

TEST(RunDriver, ADeckWithoutTextEndsCleanlyWithoutAWorker) {
  DriverBench bench;
  const test::LogCapture log;
  bench.deck().AddSlide({TextShape(u"12 %")});
  bench.RunToEnd();
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onComplete"));
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCompleted);
  EXPECT_EQ(bench.reports[0].record.units, 0);
  EXPECT_EQ(bench.engine->asked, 0);
  EXPECT_EQ(log.CountContaining("PptPane run end runId="), 1);
}

TEST(RunDriver, WithoutAWindowTheRunIsTurnedAwayWithItsCode) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  bench.host.windows.clear();
  bench.host.activeWindow = nullptr;
  bench.RunToEnd();
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onError"));
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kFailed);
  EXPECT_EQ(bench.reports[0].errorCode, u"pane_window_unavailable");
}

TEST(RunDriver, TheWindowThatWasActiveAtFirstIsTranslated) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"First")});
  test::FakePresentation& second = bench.host.AddPresentation();
  second.AddSlide({TextShape(u"Second")});
  bench.host.activeWindow = bench.host.windows[1];
  bench.driver = std::make_unique<RunDriver>(bench.host.Application(), bench.loop);
  bench.host.activeWindow = bench.host.windows[0];
  bench.RunToEnd();
  EXPECT_EQ(bench.deck().slides[0]->shapes()[0]->Text(), u"First");
  EXPECT_EQ(second.slides[0]->shapes()[0]->Text(), u"T(Second)");
}

TEST(RunDriver, OneSlideIsTheWindowsCurrentOne) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  bench.deck().AddSlide({TextShape(u"Two")});
  bench.host.activeWindow->viewSlide = 2;
  RunRequest request = bench.Request();
  request.scope = Scope::kCurrentSlide;
  bench.RunToEnd(request);
  EXPECT_EQ(bench.deck().slides[0]->shapes()[0]->Text(), u"One");
  EXPECT_EQ(bench.deck().slides[1]->shapes()[0]->Text(), u"T(Two)");
}

TEST(RunDriver, LanguagesReachTheService) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  RunRequest request = bench.Request();
  request.sourceLang = u"en";
  bench.RunToEnd(request);
  ASSERT_EQ(bench.engine->requests.size(), 1u);
  EXPECT_EQ(bench.engine->requests[0].targetLang, "es");
  EXPECT_EQ(bench.engine->requests[0].sourceLang, "en");
}

TEST(RunDriver, AWrongTokenEndsTheRunAsUnauthorized) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  RunRequest request = bench.Request();
  request.accessToken = u"wrong";
  bench.RunToEnd(request);
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kFailed);
  EXPECT_EQ(bench.reports[0].errorCode, u"unauthorized");
  EXPECT_EQ(bench.deck().slides[0]->shapes()[0]->Text(), u"Hello");
}

TEST(RunDriver, AnErrorOfTheServiceArrivesWithCodeAndMessage) {
  DriverBench bench;
  bench.engine->failure.failure = service::EngineFailure::kRateLimited;
  bench.engine->failure.message = "short and stout";
  bench.deck().AddSlide({TextShape(u"Hello")});
  bench.RunToEnd();
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onError"));
  EXPECT_EQ(bench.reports[0].errorCode, u"rate_limited");
  EXPECT_EQ(bench.reports[0].errorMessage, u"short and stout");
}

TEST(RunDriver, CancelEndsTheRunOnceItsRequestIsAnswered) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  bench.deck().AddSlide({TextShape(u"Two")});
  ASSERT_TRUE(bench.StartHeld());
  bench.loop.Post([&] {
    bench.driver->Cancel();
    bench.Release();
  });
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onCancelled"));
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCancelled);
  EXPECT_EQ(bench.deck().slides[1]->shapes()[0]->Text(), u"Two");
}

TEST(RunDriver, ACancelBeforeTheWorkerIsThereReachesNothing) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  ASSERT_TRUE(bench.driver->Start(bench.Request(), bench.Listener()));
  bench.driver->Cancel();
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onComplete"));
}

TEST(RunDriver, ACancelOnceTextsAreReadyEndsTheRun) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  bench.Hold();
  RunListener listener = bench.Listener();
  listener.onEvent = [&, tell = listener.onEvent](const PageCall& event) {
    tell(event);
    if (event.name != u"onReady") return;
    bench.driver->Cancel();
    bench.Release();
  };
  ASSERT_TRUE(bench.driver->Start(bench.Request(), listener));
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_THAT(bench.MainEvents(), ElementsAre("onRunStarted", "onReady", "onCancelled"));
}

TEST(RunDriver, CancelAlsoWakesAPausedRun) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  ASSERT_TRUE(bench.StartHeld());
  bench.driver->Pause();
  bench.Release();
  bench.loop.SetTimer(99, 300, [&] { bench.driver->Cancel(); });
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCancelled);
}

TEST(RunDriver, APausedRunGoesOnWhenResumed) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"One")});
  bench.deck().AddSlide({TextShape(u"Two")});
  ASSERT_TRUE(bench.StartHeld());
  bench.driver->Pause();
  bench.Release();
  int ticksWhilePaused = 0;
  bench.loop.SetTimer(99, 100, [&] {
    if (++ticksWhilePaused == 3) {
      EXPECT_EQ(bench.engine->asked, 1);
      bench.driver->Resume();
    }
  });
  bench.loop.RunUntil([&] { return !bench.reports.empty(); });
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCompleted);
  EXPECT_EQ(bench.engine->asked, 2);
}

TEST(RunDriver, AHostThatPumpsInsideEveryCallGetsItsDeckAndOneEnding) {
  DriverBench bench;
  for (int slide = 0; slide < 5; ++slide) bench.deck().AddSlide({TextShape(u"Hello")});
  bench.host.onCall = [&bench](const std::string&) { bench.loop.PumpPending(); };
  bench.RunToEnd();
  bench.loop.PumpPending();
  bench.host.onCall = nullptr;
  EXPECT_EQ(bench.reports.size(), 1u);
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCompleted);
  for (const auto& slide : bench.deck().slides) {
    EXPECT_EQ(slide->shapes()[0]->Text(), u"T(Hello)");
  }
}

TEST(RunDriver, CancelPauseAndResumeWithoutARunDoNothing) {
  DriverBench bench;
  bench.driver->Cancel();
  bench.driver->Pause();
  bench.driver->Resume();
  bench.deck().AddSlide({TextShape(u"Hello")});
  bench.RunToEnd();
  bench.driver->Cancel();
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCompleted);
}

TEST(RunDriver, ADriverThatGoesWhileItsWorkerCanEndTellsNothingMore) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  ASSERT_TRUE(bench.driver->Start(bench.Request(), bench.Listener()));
  bench.loop.PumpPending();
  bench.events.clear();
  bench.driver.reset();
  bench.loop.PumpPending();
  EXPECT_TRUE(bench.events.empty());
  EXPECT_TRUE(bench.reports.empty());
}

TEST(RunDriver, ADriverThatGoesWhileItsWorkerHangsReallyWaitsAndKeepsTheRunAlive) {
  DriverBench bench;
  const test::LogCapture log;
  bench.deck().AddSlide({TextShape(u"Hello")});
  ASSERT_TRUE(bench.StartHeld());
  const auto start = std::chrono::steady_clock::now();
  bench.driver.reset();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1999));
  EXPECT_TRUE(log.Has("PptPane shutdown: run worker busy, object kept alive"));
  // The worker ends on its own, over the run that was kept, and while the loop still lives.
  bench.Release();
  bench.loop.Sleep(60000);
  EXPECT_TRUE(bench.reports.empty());
  // The next driver lets go of it, and works.
  bench.driver = std::make_unique<RunDriver>(bench.host.Application(), bench.loop);
  bench.RunToEnd();
  EXPECT_EQ(bench.reports[0].record.outcome, RunOutcome::kCompleted);
}

TEST(RunDriver, AWholeDeckCostsNoneOfItsPausesWhenUnpaced) {
  DriverBench bench;
  for (int slide = 0; slide < 200; ++slide) bench.deck().AddSlide({TextShape(u"Hello")});
  const std::uint64_t begin = bench.loop.TickCount();
  const auto start = std::chrono::steady_clock::now();
  bench.RunToEnd();
  const auto real = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - start);
  // The quiet time of 120 ms behind each write has passed by the host's clock alone.
  EXPECT_GE(bench.loop.TickCount() - begin, 150u * 120);
  EXPECT_LT(static_cast<std::uint64_t>(real.count()), 200u * 120);
  EXPECT_TRUE(bench.reports[0].record.slidesNotReached.empty());
  EXPECT_EQ(bench.deck().slides[199]->shapes()[0]->Text(), u"T(Hello)");
}

TEST(RunDriver, PhasesAreMeasuredByTheRealClock) {
  DriverBench bench;
  bench.deck().AddSlide({TextShape(u"Hello")});
  const auto start = std::chrono::steady_clock::now();
  bench.RunToEnd();
  const std::chrono::duration<double, std::milli> real = std::chrono::steady_clock::now() - start;
  const DrivenRun& report = bench.reports[0];
  EXPECT_GT(report.collect.ms, 0.0);
  EXPECT_GT(report.translate.ms, 0.0);
  EXPECT_LE(report.collect.ms + report.translate.ms + report.write.ms, real.count());
}

TEST(PhaseMeter, EachPhaseCountsFromTheLast) {
  PhaseMeter meter;
  EXPECT_GE(meter.Next().ms, 0.0);
  const PhaseCost cost = meter.Next();
  EXPECT_EQ(cost.invokes, 0u);
  EXPECT_EQ(cost.lookups, 0u);
}

}  // namespace

}  // namespace quillmarch::host
