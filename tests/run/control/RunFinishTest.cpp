#include "run/control/RunFinish.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <thread>

#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::RunHarness;
using test::TextShape;
using Events = std::vector<std::string>;

FakeShapeRef AddSlide(RunHarness& run, const Wide& text) {
  const FakeShapeRef shape = TextShape(text);
  run.deck().AddSlide({shape});
  return shape;
}

int CountCalls(const RunHarness& run, const std::string& call) {
  return static_cast<int>(std::count(run.host.calls.begin(), run.host.calls.end(), call));
}

TEST(RunFinish, WhatIsOwedIsWrittenAndTheSummaryLogged) {
  test::LogCapture log;
  RunHarness run;
  const FakeShapeRef a = AddSlide(run, u"a");
  const FakeShapeRef b = AddSlide(run, u"b");
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  run.TickOnce();
  EXPECT_TRUE(run.ctrl->finished());
  EXPECT_EQ(a->Text(), u"T(a)");
  EXPECT_EQ(b->Text(), u"T(b)");
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 2/2", "complete 2"}));
  EXPECT_TRUE(log.Has("PptCtrl worker end hr=0x0 abort=0 applied=0"));
  EXPECT_TRUE(log.Has("PptCtrl BrokenPhrasePass begin"));
  EXPECT_TRUE(log.Has("PptCtrl apply done totalApplied=2"));
  EXPECT_EQ(log.lines().back(), "PptCtrl run end runId=7: 已翻译 2 段文本（共 2 段）。");
}

TEST(RunFinish, TheQuietTimeAfterEachOwedWriteHolds) {
  RunHarness run;
  AddSlide(run, u"a");
  AddSlide(run, u"b");
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  run.TickOnce();
  EXPECT_EQ(run.thread.sleeps, (std::vector<std::uint32_t>{60, 60}));
}

TEST(RunFinish, TheElapsedTimeCountsFromTheWorkersStart) {
  RunHarness run;
  AddSlide(run, u"a");
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.thread.Advance(5000);
  run.Release();
  run.WaitForWorker();
  run.ctrl->Finish();
  EXPECT_EQ(run.elapsedMs, 5000);
}

TEST(RunFinish, ASlideInItsRestCountsAsDoneAndIsNotWrittenAgain) {
  RunHarness run;
  AddSlide(run, u"a");
  AddSlide(run, u"b");
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.TickTimes(10);  // shown and written, in phase 2
  EXPECT_EQ(CountCalls(run, "TextRange.Text="), 1);
  run.Release();
  run.Finish();
  EXPECT_EQ(CountCalls(run, "TextRange.Text="), 2);
  EXPECT_EQ(run.Record().written, 2);
}

TEST(RunFinish, OwedWritesIgnoreTheMouse) {
  RunHarness run;
  const FakeShapeRef shape = AddSlide(run, u"a");
  run.input.leftButton = true;
  run.RunToEnd();
  EXPECT_EQ(shape->Text(), u"T(a)");
}

TEST(RunFinish, AGateThatStaysBusyLeavesTheRestUnwrittenAndTheRunStillEnds) {
  test::LogCapture log;
  RunHarness run;
  AddSlide(run, u"a");
  const FakeShapeRef b = AddSlide(run, u"b");
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  {
    const GateHold other(&run, run.thread);
    run.TickOnce();
  }
  EXPECT_TRUE(run.ctrl->finished());
  EXPECT_EQ(b->Text(), u"b");
  EXPECT_EQ(run.thread.sleeps, std::vector<std::uint32_t>(5, 60));
  EXPECT_EQ(log.Count("PptCtrl finish apply skipped: sta gate busy"), 1);
  EXPECT_EQ(run.MainEvents().back(), "complete 2");
  EXPECT_EQ(run.Record().slidesNotReached, (std::vector<std::int32_t>{1, 2}));
  ASSERT_EQ(run.Record().failed.size(), 2U);
  EXPECT_EQ(run.Record().failed[1].slide, 2);
  EXPECT_EQ(run.Record().failed[1].sourceText, u"b");
}

TEST(RunFinish, AFailureKeepsWhatWasWrittenAndWritesWhatIsReady) {
  RunHarness run;
  const FakeShapeRef a = AddSlide(run, u"a");
  const FakeShapeRef b = AddSlide(run, u"b");
  run.onBatch = [](const TranslateBatchRequest& request) {
    TranslateBatchResult result;
    result.ok = request.texts[0] == u"a";
    result.translations = {u"T(a)"};
    result.code = u"unauthorized";
    result.message = u"sign in";
    return result;
  };
  run.RunToEnd();
  EXPECT_EQ(a->Text(), u"T(a)");
  EXPECT_EQ(b->Text(), u"b");
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 2/2", "error unauthorized: sign in"}));
  EXPECT_EQ(run.Record().written, 1);
  EXPECT_EQ(run.Record().slidesNotReached, (std::vector<std::int32_t>{2}));
  EXPECT_TRUE(run.Record().failed.empty());
}

TEST(RunFinish, TheFailuresResultIsLoggedInDecimal) {
  test::LogCapture log;
  RunHarness run;
  AddSlide(run, u"a");
  run.onBatch = [](const TranslateBatchRequest&) {
    TranslateBatchResult result;
    result.code = u"cancelled";
    return result;
  };
  run.RunToEnd();
  EXPECT_TRUE(log.Has("PptCtrl worker end hr=0x2147943623 abort=0 applied=0"));
  EXPECT_TRUE(log.Has("PptCtrl run end runId=7: 已取消"));
  EXPECT_EQ(log.CountContaining("BrokenPhrasePass"), 0);
}

TEST(RunFinish, TheSummaryNamesWhatCouldNotBeWritten) {
  RunHarness run;
  const FakeShapeRef broken = AddSlide(run, u"a");
  broken->text->refusesPut = true;
  AddSlide(run, u"b");
  run.RunToEnd();
  EXPECT_EQ(run.Record().summary, u"已翻译 1 段文本（共 2 段）。\r\n部分回写失败：shapes[1].p1");
  ASSERT_EQ(run.Record().failed.size(), 1U);
  EXPECT_EQ(run.Record().failed[0].slide, 1);
  EXPECT_EQ(run.Record().failed[0].label, u"shapes[1].p1");
  EXPECT_EQ(run.Record().failed[0].sourceText, u"a");
  EXPECT_EQ(run.Record().failed[0].row, 0);
}

TEST(RunFinish, TheRecordNamesACellByRowAndColumn) {
  RunHarness run;
  const FakeShapeRef table = test::TableShape({{u"x", u"y"}});
  table->table->cells[0][1]->text->refusesPut = true;
  run.deck().AddSlide({table});
  run.RunToEnd();
  ASSERT_EQ(run.Record().failed.size(), 1U);
  EXPECT_EQ(run.Record().failed[0].row, 1);
  EXPECT_EQ(run.Record().failed[0].column, 2);
  EXPECT_EQ(run.Record().failed[0].sourceText, u"y");
}

TEST(RunFinish, TheRecordCountsUnitsWrittenAndUnchanged) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a"), TextShape(u"same"), TextShape(u"none")});
  run.translate = [](const Wide& text) {
    if (text == u"none") return Wide();
    return text == u"same" ? text : test::Translated(text);
  };
  run.RunToEnd();
  EXPECT_EQ(run.Record().units, 3);
  EXPECT_EQ(run.Record().written, 1);
  EXPECT_EQ(run.Record().unchanged, 2);
  EXPECT_TRUE(run.Record().failed.empty());
  EXPECT_TRUE(run.Record().slidesNotReached.empty());
  EXPECT_EQ(run.Record().outcome, RunOutcome::kCompleted);
}

TEST(RunFinish, TextsOfASlideThatNeverBecameReadyAreNamedWhenTheyWereTranslated) {
  RunHarness run;
  test::FakeShapes shapes;
  for (int i = 0; i < 21; ++i) shapes.push_back(TextShape(u"s" + Decimal(i)));
  run.deck().AddSlide(std::move(shapes));
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.config->cancelled.store(1, std::memory_order_relaxed);
  run.onBatch = [](const TranslateBatchRequest&) { return TranslateBatchResult{}; };
  run.Release();
  run.Finish();
  EXPECT_EQ(run.MainEvents().back(), "cancelled");
  EXPECT_EQ(run.Record().failed.size(), 20U);
  EXPECT_EQ(run.Record().slidesNotReached, (std::vector<std::int32_t>{1}));
}

TEST(RunFinish, ASlideLostBehindUnreadableSlidesIsStillNamed) {
  RunHarness run;
  AddSlide(run, u"a");
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  run.host.Fail("Presentation.Slides");
  run.TickOnce();
  EXPECT_EQ(run.Record().written, 0);
  ASSERT_EQ(run.Record().failed.size(), 1U);
  EXPECT_EQ(run.Record().failed[0].sourceText, u"a");
}

TEST(RunFinish, ASecondFinishDoesNothing) {
  RunHarness run;
  AddSlide(run, u"a");
  run.RunToEnd();
  const Events before = run.Events();
  run.ctrl->Finish();
  run.ctrl->Tick();
  EXPECT_TRUE(run.ctrl->Abort());
  EXPECT_FALSE(run.ctrl->abortRequested());
  EXPECT_EQ(run.Events(), before);
  EXPECT_EQ(run.records.size(), 1U);
}

TEST(RunFinish, AFinishWhileTheWorkerRunsDoesNothing) {
  RunHarness run;
  AddSlide(run, u"a");
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.ctrl->Finish();
  EXPECT_FALSE(run.ctrl->finished());
  run.Release();
  run.Finish();
  EXPECT_EQ(run.MainEvents().back(), "complete 1");
}

TEST(RunFinish, AnEventThatThrowsDoesNotKeepTheRunFromEnding) {
  RunHarness run;
  AddSlide(run, u"a");
  run.sink.onComplete = [](std::int64_t, std::int32_t, bool) { throw std::bad_alloc(); };
  run.RunToEnd();
  EXPECT_TRUE(run.ctrl->finished());
  ASSERT_EQ(run.records.size(), 1U);
  EXPECT_EQ(run.Record().outcome, RunOutcome::kCompleted);
}

TEST(Abort, AWorkerThatHangsIsWaitedForTwoSecondsAndTheObjectKept) {
  test::LogCapture log;
  RunHarness run;
  AddSlide(run, u"a");
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.thread.sleepsAreInstant = true;
  const std::uint64_t before = run.thread.TickCount();
  EXPECT_FALSE(run.ctrl->Abort());
  EXPECT_EQ(run.thread.TickCount() - before, 2000U);
  EXPECT_EQ(run.thread.sleeps, std::vector<std::uint32_t>(100, 20));
  EXPECT_TRUE(log.Has("PptCtrl abort: worker still busy, keep object alive"));
  EXPECT_TRUE(run.ctrl->abortRequested());
  EXPECT_FALSE(run.ctrl->finished());
  // The read returns; the worker sees the flag and ends, and the next tick finishes the run.
  run.Release();
  run.Finish();
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 1/1"}));
  EXPECT_TRUE(log.CountContaining("run end runId=7: 宿主关闭，run 中止") == 1);
  EXPECT_EQ(run.Record().outcome, RunOutcome::kAborted);
}

TEST(Abort, WakesAPausedWorkerAndEndsTheRunWithoutAnEvent) {
  RunHarness run;
  const FakeShapeRef shape = AddSlide(run, u"a");
  AddSlide(run, u"b");
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.config->paused.store(1, std::memory_order_relaxed);
  run.Release();
  EXPECT_TRUE(run.ctrl->Abort());
  EXPECT_TRUE(run.ctrl->finished());
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 2/2"}));
  EXPECT_EQ(shape->Text(), u"a");
  EXPECT_EQ(run.Record().summary, u"宿主关闭，run 中止");
  EXPECT_EQ(run.config, nullptr);
}

TEST(Abort, BeforeAnyStartThereIsNothingToEnd) {
  RunHarness run;
  PptCtrl ctrl(run.host.Application(), {run.thread, run.input, {}});
  EXPECT_TRUE(ctrl.Abort());
  EXPECT_FALSE(ctrl.WorkerRunning());
}

TEST(Abort, FromInsideOneOfTheRunsOwnHostCallsKeepsTheObject) {
  RunHarness run;
  AddSlide(run, u"a");
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  bool answered = true;
  run.host.onCall = [&](const std::string& call) {
    if (call == "TextRange.Text=") answered = run.ctrl->Abort();
  };
  run.TickOnce();
  EXPECT_FALSE(answered);
}

TEST(Abort, ASlideInItsRestCountsAsReached) {
  RunHarness run;
  AddSlide(run, u"a");
  AddSlide(run, u"b");
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.TickTimes(10);
  run.thread.sleepsAreInstant = true;
  EXPECT_FALSE(run.ctrl->Abort());
  run.Release();
  run.Finish();
  EXPECT_EQ(run.Record().written, 1);
  EXPECT_EQ(run.Record().slidesNotReached, (std::vector<std::int32_t>{2}));
}

TEST(Abort, DuringTheCollectionTheRunEndsWithoutAWrite) {
  RunHarness run;
  const FakeShapeRef shape = AddSlide(run, u"a");
  bool answered = true;
  run.host.onCall = [&](const std::string& call) {
    if (call == "Slides.Count") answered = run.ctrl->Abort();
  };
  ASSERT_TRUE(run.Start());
  EXPECT_FALSE(answered);
  run.host.onCall = {};
  run.Finish();
  EXPECT_TRUE(run.Requests().empty());
  EXPECT_EQ(shape->Text(), u"a");
  EXPECT_EQ(run.Record().outcome, RunOutcome::kAborted);
}

TEST(PptCtrl, DestroyedInTheMidstOfARunWaitsForItsWorker) {
  RunHarness run;
  AddSlide(run, u"a");
  run.onBatch = [&](const TranslateBatchRequest&) {
    while (run.config->cancelled.load(std::memory_order_relaxed) == 0) {
      std::this_thread::yield();
    }
    TranslateBatchResult result;
    result.code = u"cancelled";
    return result;
  };
  ASSERT_TRUE(run.Start());
  run.ctrl.reset();
  EXPECT_EQ(run.thread.outsideWork(), 0);
  EXPECT_EQ(run.config, nullptr);
}

}  // namespace

}  // namespace quillmarch::addin
