#include <gtest/gtest.h>

#include <new>

#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::RunHarness;
using test::TextShape;
using Events = std::vector<std::string>;

TEST(RunStart, ADeckWithOnlyNumbersEndsCleanWithoutAWorker) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"2024 - 12,5 %")});
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 0/0", "complete 0"}));
  EXPECT_EQ(run.outMessage, u"没有需要翻译的文本（数字、标点等已自动跳过）。");
  EXPECT_TRUE(run.Requests().empty());
  EXPECT_FALSE(run.ctrl->WorkerRunning());
  ASSERT_EQ(run.records.size(), 1U);
  EXPECT_EQ(run.Record().outcome, RunOutcome::kCompleted);
}

TEST(RunStart, TheStartIsLoggedWithItsSettings) {
  test::LogCapture log;
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.params.targetLang = u"es";
  run.RunToEnd();
  EXPECT_TRUE(log.Has("PptCtrl Start begin scope=0 full=1 bilingual=0 targetLang=es"));
  EXPECT_TRUE(log.Has("PptCtrl collect done total=1"));
  EXPECT_TRUE(log.Has("PptCtrl worker started runId=7"));
}

TEST(RunStart, WithoutItsWindowTheRunIsRejected) {
  test::LogCapture log;
  RunHarness run;
  run.params.windowContext = {0x7777, 0};
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 0/0",
                                      "error pane_window_unavailable: "
                                      "无法定位当前演示文稿窗口，请重新打开侧栏后重试。"}));
  EXPECT_EQ(run.outMessage, u"无法定位当前演示文稿窗口");
  EXPECT_TRUE(log.Has("PptCtrl run rejected: pane window unavailable"));
  EXPECT_EQ(run.Record().outcome, RunOutcome::kFailed);
  EXPECT_EQ(run.Record().summary, run.outMessage);
}

TEST(RunStart, WithoutAPresentationTheRunIsRejected) {
  RunHarness run;
  run.host.Fail("DocumentWindow.Presentation");
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.outMessage, u"无法定位当前演示文稿窗口");
}

TEST(RunStart, AnEmptyKeyMeansTheOnlyWindow) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.params.windowContext = {};
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents().back(), "complete 1");
}

TEST(RunStart, APresentationInAnotherPaneIsBusyUntilThatRunIsGone) {
  test::LogCapture log;
  RunHarness first;
  first.deck().AddSlide({TextShape(u"a")});
  first.HoldBatch(1);
  ASSERT_TRUE(first.Start());
  RunHarness second(first.hostRef, first.threadRef);
  EXPECT_FALSE(second.Start());
  EXPECT_EQ(
      second.MainEvents(),
      (Events{"started", "ready 0/0",
              "error presentation_busy: 该演示文稿已在另一个窗口翻译中，请等它完成或取消。"}));
  EXPECT_EQ(second.outMessage, u"演示文稿已在其它窗口翻译中");
  EXPECT_TRUE(log.Has("PptCtrl run rejected: presentation busy"));
  second.ctrl.reset();  // a rejected run takes nobody's entry away
  EXPECT_FALSE(second.Start());
  first.Release();
  first.Finish();
  first.ctrl.reset();
  EXPECT_TRUE(second.Start());
  second.Finish();
}

TEST(RunStart, WithoutAnOwnerNobodyIsBusy) {
  RunHarness first;
  first.deck().AddSlide({TextShape(u"a")});
  first.HoldBatch(1);
  first.params.owner = nullptr;
  ASSERT_TRUE(first.Start());
  RunHarness second(first.hostRef, first.threadRef);
  EXPECT_TRUE(second.Start());
  second.Finish();
  first.Release();
  first.Finish();
}

TEST(RunStart, ACollectionThatFailsEndsTheRunWithItsMessage) {
  RunHarness run;
  run.host.Fail("Presentation.Slides");
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(),
            (Events{"started", "ready 0/0", "error collect_failed: 无法访问 Slides"}));
  EXPECT_EQ(run.outMessage, u"收集文本失败：无法访问 Slides");
}

TEST(RunStart, ASelectionRunAsksForASelection) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.UseScope(Scope::kSelection);
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(),
            (Events{"started", "ready 0/0", "error collect_failed: 请先选中要翻译的形状或文字"}));
}

TEST(RunStart, ABilingualRunIsRefusedAndTheDeckStays) {
  RunHarness run;
  const auto shape = TextShape(u"a");
  run.deck().AddSlide({shape});
  run.params.bilingual = true;
  EXPECT_FALSE(run.Start());
  ASSERT_EQ(run.MainEvents().size(), 3U);
  EXPECT_EQ(run.MainEvents()[1], "ready 0/0");
  EXPECT_TRUE(run.MainEvents()[2].starts_with("error bilingual_copy_failed: "));
  EXPECT_TRUE(run.outMessage.starts_with(u"创建双语译文页失败："));
  EXPECT_EQ(shape->Text(), u"a");
}

TEST(RunStart, NothingIsSentTwiceAfterARejection) {
  RunHarness run;
  run.params.windowContext = {0x7777, 0};
  EXPECT_FALSE(run.Start());
  const Events before = run.Events();
  run.ctrl->Finish();
  run.ctrl->Tick();
  EXPECT_TRUE(run.ctrl->Abort());
  EXPECT_EQ(run.Events(), before);
  EXPECT_EQ(run.records.size(), 1U);
}

TEST(RunStart, TheConfigIsPublishedFilledAndTakenBack) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.params.targetLang = u"es";
  run.params.sourceLang = u"en";
  run.params.accessToken = u"token";
  run.params.clientTraceId = u"ppt_7";
  run.params.usageKind = u"translate_full";
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  ASSERT_NE(run.config, nullptr);
  EXPECT_EQ(run.config->targetLang, u"es");
  EXPECT_EQ(run.config->sourceLang, u"en");
  EXPECT_EQ(run.config->accessToken, u"token");
  EXPECT_EQ(run.config->clientTraceId, u"ppt_7");
  EXPECT_EQ(run.config->clientProduct, u"ppt");
  EXPECT_EQ(run.config->runId, 7U);
  EXPECT_EQ(run.config->batchSeq, 0U);
  run.Release();
  run.Finish();
  EXPECT_EQ(run.config, nullptr);
}

TEST(RunStart, OnlyApplicationWindowAndPresentationSurviveTheCollection) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a"), test::TableShape({{u"b"}})}, {TextShape(u"c")});
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  EXPECT_EQ(run.host.liveObjects, 3);
  run.Release();
  run.Finish();
  EXPECT_EQ(run.host.liveObjects, 3);
  run.ctrl.reset();
  EXPECT_EQ(run.host.liveObjects, 0);
}

TEST(RunStart, EmptyCallablesAreSkipped) {
  RunHarness run;
  const auto shape = TextShape(u"a");
  run.deck().AddSlide({shape});
  run.sink = {};
  run.RunToEnd();
  EXPECT_EQ(shape->Text(), u"T(a)");
  RunHarness rejected;
  rejected.sink = {};
  rejected.params.windowContext = {0x7777, 0};
  EXPECT_FALSE(rejected.Start());
}

TEST(RunStart, ACallableThatThrowsEndsTheStartWithItsEvent) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.sink.onScanProgress = [](std::int32_t, std::int32_t, const Wide&) { throw std::bad_alloc(); };
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 0/0", "error collect_failed: "}));
  EXPECT_EQ(run.records.size(), 1U);
}

TEST(RunStart, AHostThatThrowsCostsOnlyTheCall) {
  RunHarness run;
  const auto second = TextShape(u"b");
  run.deck().AddSlide({TextShape(u"a"), second});
  run.host.onCall = [](const std::string& call) {
    if (call == "Shapes:Item(1)" || call == "Shapes.Item(1)") throw 7;
  };
  run.RunToEnd();
  EXPECT_EQ(second->Text(), u"T(b)");
  EXPECT_EQ(run.MainEvents().back(), "complete 1");
}

TEST(RunStart, ASecondRunOfTheSameOwnerFindsItsPresentationBusyToo) {
  RunHarness first;
  first.deck().AddSlide({TextShape(u"a")});
  first.HoldBatch(1);
  ASSERT_TRUE(first.Start());
  RunHarness second(first.hostRef, first.threadRef);
  second.params.owner = first.params.owner;
  EXPECT_FALSE(second.Start());
  EXPECT_EQ(second.outMessage, u"演示文稿已在其它窗口翻译中");
  second.ctrl.reset();
  RunHarness third(first.hostRef, first.threadRef);
  third.params.owner = first.params.owner;
  EXPECT_FALSE(third.Start()) << "the refused run's end frees nothing of the first one's";
  first.Release();
  first.Finish();
}

}  // namespace

}  // namespace quillmarch::addin
