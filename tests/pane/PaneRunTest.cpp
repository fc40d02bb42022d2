#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <thread>

#include "foundation/text/JsonText.h"
#include "foundation/transport/Endpoint.h"
#include "pane/PaneHarness.h"
#include "pane/PanelDispatch.h"
#include "pane/RunId.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/PageAnswers.h"

namespace quillmarch::addin {

namespace {

using test::AnswerTo;
using test::LogCapture;
using test::PaneHarness;
using Texts = std::vector<std::string>;

const Texts kCompleted = {"onRunStarted", "onReady", "onComplete"};
const Texts kCancelledEvents = {"onRunStarted", "onReady", "onCancelled"};

TEST(StartRun, TranslatesAndReportsToThePage) {
  PaneHarness h;
  LogCapture log;
  const auto shape = h.AddSlide(u"hello");
  h.Start();
  h.Finish();
  EXPECT_EQ(shape->Text(), u"T(hello)");
  EXPECT_EQ(h.MainEvents(), kCompleted);
  EXPECT_EQ(h.pane->run().currentRunId(), 0U);
  EXPECT_EQ(h.pane->run().runControl(), nullptr);
  EXPECT_FALSE(h.pane->run().HasController());
  EXPECT_EQ(h.pane.use_count(), 1);
  EXPECT_TRUE(log.Has("PptPane StartRun begin scope=1"));
  EXPECT_TRUE(log.Has("PptPane StartRun end (async)"));
  EXPECT_EQ(log.lines().back(), "PptPane run finished");
  ASSERT_EQ(h.records.size(), 1U);
  EXPECT_EQ(h.records[0].written, 1);
  EXPECT_EQ(h.thread.timersSet(), 1);
}

TEST(StartRun, ASecondRunMayFollowWithALargerId) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.Start();
  const std::uint64_t first = h.pane->run().currentRunId();
  h.Finish();
  h.Start();
  EXPECT_GT(h.pane->run().currentRunId(), first);
  EXPECT_GT(first, 0U);
  h.Finish();
}

TEST(StartRun, TheActionDecidesTheScopeBeforeThePanelMode) {
  PaneHarness h;
  LogCapture log;
  h.Say(R"({"action":"start","panelMode":"selection"})");
  h.Say(R"({"action":"startSelection","panelMode":"slide"})");
  h.Say(R"({"action":"start","panelMode":"slide"})");
  h.Say(R"({"action":"start","panelMode":"Slide"})");
  h.Say(R"({"action":"restart"})");
  EXPECT_EQ(log.Count("PptPane StartRun begin scope=2"), 2);
  EXPECT_EQ(log.Count("PptPane StartRun begin scope=1"), 1);
  EXPECT_EQ(log.Count("PptPane StartRun begin scope=0"), 2);
}

TEST(StartRun, OnlyTheWholeDeckIsPacedAsAFullRun) {
  PaneHarness h;
  LogCapture log;
  h.Say(R"({"action":"start","panelMode":"selection"})");
  h.Say(R"({"action":"start","panelMode":"slide"})");
  h.Say(R"({"action":"start"})");
  for (const char* scope : {"scope=2 full=0", "scope=1 full=0", "scope=0 full=1"}) {
    EXPECT_EQ(log.Count(std::string("PptCtrl Start begin ") + scope + " bilingual=0 targetLang=en"),
              1)
        << scope;
  }
}

TEST(StartRun, ARunIsBilingualOnlyWhereTheMessageSaysTrue) {
  for (const char* field : {"true", "false", "\"true\""}) {
    PaneHarness h;
    LogCapture log;
    h.Start(std::string(",\"pptBilingualSlides\":") + field);
    const std::string flag = std::string(field) == "true" ? "1" : "0";
    EXPECT_EQ(log.CountContaining("full=0 bilingual=" + flag), 1) << field;
  }
}

TEST(StartRun, ASelectionIsAskedForUnderAUsageOfItsOwn) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.host.windows.front()->selection->SelectShapes({shape});
  for (const char* action : {"startSelection", "start"}) {
    h.Say(std::string(R"({"action":")") + action + R"("})");
    h.Finish();
  }
  ASSERT_EQ(h.Requests().size(), 2U);
  EXPECT_EQ(JsonGetString(h.Requests()[0], u"usageKind"), u"translate_selection");
  EXPECT_EQ(JsonGetString(h.Requests()[1], u"usageKind"), u"translate_full");
}

TEST(StartRun, OnlyASavedSizeAboveZeroTakesThePlaceOfTheFit) {
  for (const char* size : {"-1", "0", "0.5"}) {
    PaneHarness h;
    h.AddSlide(u"hello");
    h.Say(std::string(R"({"action":"setTargetStyle","targetFontSize":)") + size + "}");
    h.Start();
    h.Finish();
    EXPECT_EQ(h.MainEvents(), kCompleted);
    // The fit begins with the place of the shape, which nothing else reads.
    const bool fitted = std::any_of(h.host.calls.begin(), h.host.calls.end(), [](const auto& call) {
      return call.find("Left") != std::string::npos;
    });
    EXPECT_EQ(fitted, std::string(size) != "0.5") << size;
  }
}

TEST(StartRun, NothingToTranslateEndsAtOnceWithoutAnError) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"12345");
  h.Start();
  EXPECT_EQ(h.MainEvents(), kCompleted);
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_EQ(log.CountContaining("PptPane run end runId="), 1);
  EXPECT_EQ(log.lines().back(), "PptPane StartRun end");
  EXPECT_EQ(h.thread.timersSet(), 1);
}

TEST(StartRun, AStartDuringARunIsIgnored) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  const std::uint64_t id = h.pane->run().currentRunId();
  h.Start();
  h.Say(R"({"action":"startSelection"})");
  EXPECT_EQ(log.Count("PptPane start ignored: run in progress"), 2);
  EXPECT_EQ(h.pane->run().currentRunId(), id);
  h.Say(R"({"action":"cancel"})");
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCancelledEvents);
}

TEST(StartRun, TwoStartsAtOnceMakeOneRun) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  OnWebMessage(*h.pane, u"{\"action\":\"start\"}");
  OnWebMessage(*h.pane, u"{\"action\":\"start\"}");
  h.RunPosts();
  EXPECT_EQ(log.Count("PptPane start ignored: run in progress"), 1);
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCompleted);
}

TEST(StartRun, WhileTheGateIsHeldTheNewestStartWaitsAndIsTriedEvery150Ms) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  h.thread.Advance(1000);
  const int owner = 0;
  {
    const GateHold gate(&owner, h.thread);
    ASSERT_TRUE(gate.held());
    h.Start();
    h.Say(R"({"action":"start","panelMode":"slide","targetLang":"fr"})");
    EXPECT_EQ(log.Count("PptPane StartRun deferred: sta mutation in flight"), 2);
    EXPECT_TRUE(h.pane->run().deferredStartArmed());
    for (int i = 0; i < 3; ++i) {
      h.thread.Advance(150);
      h.thread.FireDueTimers();
    }
    EXPECT_EQ(log.Count("PptPane StartRun deferred: sta mutation in flight"), 5);
    EXPECT_FALSE(h.pane->run().runActive());
  }
  h.thread.Advance(149);
  h.thread.FireDueTimers();
  EXPECT_FALSE(h.pane->run().runActive());
  h.thread.Advance(1);
  h.thread.FireDueTimers();
  EXPECT_TRUE(h.pane->run().runActive());
  EXPECT_FALSE(h.pane->run().deferredStartArmed());
  h.Finish();
  ASSERT_EQ(h.Requests().size(), 1U);
  EXPECT_EQ(JsonGetString(h.Requests()[0], u"targetLang"), u"fr");
}

TEST(StartRun, ACancelDropsADeferredStart) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.thread.Advance(1000);
  {
    const int owner = 0;
    const GateHold gate(&owner, h.thread);
    h.Start();
    h.Say(R"({"action":"cancel"})");
  }
  h.thread.Advance(1000);
  h.thread.FireDueTimers();
  h.RunPosts();
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_TRUE(h.page->calls.empty());
}

TEST(StartRun, ADeferralWithoutATimerKeepsTheMessageAndArrangesNoRetry) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.thread.Advance(1000);
  {
    const int owner = 0;
    const GateHold gate(&owner, h.thread);
    h.thread.refusesTimers = true;
    h.Start();
    h.thread.refusesTimers = false;
    EXPECT_FALSE(h.pane->run().deferredStartArmed());
    EXPECT_FALSE(h.pane->run().deferredStart().empty());
  }
  h.thread.Advance(1000);
  h.thread.FireDueTimers();
  EXPECT_FALSE(h.pane->run().runActive());
}

TEST(StartRun, WithoutATickTimerTheRunIsAborted) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  h.thread.refusesTimers = true;
  h.Start();
  EXPECT_TRUE(log.Has("PptPane run tick timer failed; abort run"));
  EXPECT_EQ(log.lines().back(), "PptPane StartRun end");
  // The worker waits for terms, which nobody gives while this thread sleeps.
  EXPECT_TRUE(h.pane->run().runActive());
  EXPECT_EQ(h.thread.timersSet(), 1);
}

TEST(StartRun, TheMessageFillsTheRequest) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.Say(R"({"action":"start","panelMode":"slide","targetLang":"de","sourceLang":"fr",)"
        R"("clientTraceId":"trace1","token":"t2","glossaryIds":["g1","g2"],)"
        R"("globalInstructionId":"i1","targetFont":"Verdana"})");
  EXPECT_EQ(h.pane->session().accessToken(), u"t2");
  EXPECT_EQ(ProcessAccessToken(), u"t2");
  EXPECT_EQ(h.pane->session().glossaryIds(), (std::vector<Wide>{u"g1", u"g2"}));
  EXPECT_EQ(h.pane->session().globalInstructionId(), u"i1");
  const std::uint64_t id = h.pane->run().currentRunId();
  h.Finish();
  ASSERT_EQ(h.Requests().size(), 1U);
  EXPECT_EQ(
      ToUtf8(h.Requests()[0]),
      R"({"action":"translateBatchRequest","requestId":"ppttr_2","runId":)" + std::to_string(id) +
          R"(,"batchSeq":0,"sourceLang":"fr","targetLang":"de","usageKind":"translate_full",)"
          R"("clientProduct":"ppt","texts":["hello"],"unitIds":[],"clientTraceId":"trace1"})");
  EXPECT_EQ(shape->text->fonts[0].name, u"Verdana");
}

TEST(StartRun, WhatTheMessageLeavesOutHasItsDefault) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.Say(R"({"action":"start","panelMode":"slide"})");
  const std::uint64_t id = h.pane->run().currentRunId();
  h.Finish();
  ASSERT_EQ(h.Requests().size(), 1U);
  const Wide request = h.Requests()[0];
  EXPECT_EQ(JsonGetString(request, u"sourceLang"), u"auto");
  EXPECT_EQ(JsonGetString(request, u"targetLang"), u"en");
  EXPECT_EQ(JsonGetString(request, u"clientTraceId"), u"ppt_" + DecimalUnsigned(id));
  EXPECT_EQ(shape->text->fonts[0].name, u"Times New Roman");
}

TEST(StartRun, TheTargetFontIsTheMessagesEvenIfEmptyElseTheStyles) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.Say(R"({"action":"setTargetStyle","targetFont":"Arial"})");
  h.Start(R"(,"targetFont":"")");
  h.Finish();
  EXPECT_EQ(shape->text->fonts[0].name, u"Calibri");
  h.Start();
  h.Finish();
  EXPECT_EQ(shape->text->fonts[0].name, u"Arial");
}

TEST(StartRun, TokenIsReadOnlyWhenAccessTokenIsEmpty) {
  PaneHarness h;
  h.Start(R"(,"accessToken":"a","token":"b")");
  EXPECT_EQ(h.pane->session().accessToken(), u"a");
  h.Start(R"(,"accessToken":"","token":"c")");
  EXPECT_EQ(h.pane->session().accessToken(), u"c");
  h.Start();
  EXPECT_EQ(h.pane->session().accessToken(), u"c");
}

TEST(StartRun, GlossariesAndInstructionAreReplacedByEmptyOnesToo) {
  PaneHarness h;
  h.pane->session().ReadStart(u"{\"glossaryIds\":[\"old\"],\"globalInstructionId\":\"old\"}");
  ASSERT_EQ(h.pane->session().glossaryIds().size(), 1U);
  h.Start();
  EXPECT_TRUE(h.pane->session().glossaryIds().empty());
  EXPECT_TRUE(h.pane->session().globalInstructionId().empty());
}

TEST(StartRun, TransportNativeWinsAndTheChoiceStays) {
  PaneHarness h;
  h.Start(R"(,"transport":"js")");
  EXPECT_TRUE(h.pane->session().nativeTranslateViaJs());
  h.Start(R"(,"transport":"native","nativeTranslateViaJs":true)");
  EXPECT_FALSE(h.pane->session().nativeTranslateViaJs());
  h.Start(R"(,"transport":"js")");
  EXPECT_FALSE(h.pane->session().nativeTranslateViaJs());
  h.Start();
  EXPECT_FALSE(h.pane->session().nativeTranslateViaJs());
  h.Start(R"(,"nativeTranslateViaJs":true)");
  EXPECT_TRUE(h.pane->session().nativeTranslateViaJs());
  h.Start(R"(,"nativeTranslateViaJs":false)");
  EXPECT_FALSE(h.pane->session().nativeTranslateViaJs());
}

TEST(StartRun, ANativeRunAsksThePageForNothing) {
  const Endpoint before = DefaultEndpoint();
  ReplaceDefaultEndpoint({u"127.0.0.1", 1, false});  // nobody listens there
  PaneHarness h;
  h.AddSlide(u"hello");
  h.Start(R"(,"transport":"native")");
  h.Finish();
  ReplaceDefaultEndpoint(before);
  EXPECT_TRUE(h.page->Messages().empty());
  EXPECT_EQ(h.MainEvents(), (Texts{"onRunStarted", "onReady", "onError"}));
}

TEST(StartRun, ASoftTerminologyErrorLetsTheRunGoOnAndAnyOtherFailsIt) {
  for (const bool soft : {true, false}) {
    PaneHarness h;
    h.AddSlide(u"hello");
    h.pageAnswersTerms = false;
    h.Start();
    ASSERT_TRUE(h.RunUntil([&] { return h.Requests(u"terminologyResolveRequest").size() == 1; }));
    h.Say(std::string(R"({"action":"terminologyResolveResult","requestId":"pptterm_1",)") +
          R"("ok":false,"code":")" + (soft ? "402" : "500") + R"(","message":"m"})");
    h.Finish();
    EXPECT_EQ(h.MainEvents().back(), soft ? "onComplete" : "onError");
    EXPECT_EQ(h.Requests().size(), soft ? 1U : 0U);
  }
}

TEST(StartRun, ACodeThatIsSoftForTermsFailsABatch) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  for (const int attempt : {1, 2}) {
    const auto asked = static_cast<std::size_t>(attempt);
    ASSERT_TRUE(h.WaitForRequests(asked));
    h.Say(R"({"action":"translateBatchResult","requestId":")" +
          ToUtf8(JsonGetString(h.Requests()[asked - 1], u"requestId")) +
          R"(","ok":false,"code":"402","message":"no more \"credits\""})");
  }
  h.Finish();
  EXPECT_EQ(h.MainEvents(), (std::vector<std::string>{"onRunStarted", "onReady", "onError"}));
  EXPECT_NE(h.page->Scripts().back().find(R"("code":"402","message":"no more \"credits\"")"),
            std::string::npos);
  EXPECT_EQ(shape->Text(), u"hello");
}

TEST(StartRun, APageSilentAboutTermsLetsTheRunGoOnWithoutThem) {
  PaneHarness h;
  h.MakePane(h.host.ContextOf(*h.host.windows.front()), 50);
  h.OpenWindow();
  h.AddSlide(u"hello");
  h.pageAnswersTerms = false;
  h.Start();
  h.Finish();
  EXPECT_EQ(h.MainEvents().size(), 3U);
  EXPECT_GE(h.Requests().size(), 1U);
}

TEST(StartRun, TwoWindowsOnOneDeckDoNotRunAtOnce) {
  PaneHarness h;
  h.AddSlide(u"hello");
  test::FakeWindow& second = h.host.AddWindow(h.host.presentations.front());
  PaneHarness other(h, h.host.ContextOf(second));
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  other.Start();
  ASSERT_EQ(other.MainEvents(), (Texts{"onRunStarted", "onReady", "onError"}));
  EXPECT_NE(other.page->Scripts().back().find("presentation_busy"), std::string::npos);
  EXPECT_FALSE(other.pane->run().runActive());
  h.Say(R"({"action":"cancel"})");
  h.Finish();
  other.Start();
  other.Finish();
  EXPECT_EQ(other.MainEvents().back(), "onComplete");
}

TEST(CancelRun, EndsTheRunAndTellsThePageToDropIt) {
  PaneHarness h;
  const auto shape = h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  const std::string id = std::to_string(h.pane->run().currentRunId());
  h.Say(R"({"action":"cancel"})");
  EXPECT_EQ(h.page->Messages().back(), R"({"action":"translateAbortForRun","runId":)" + id + "}");
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCancelledEvents);
  EXPECT_EQ(shape->Text(), u"hello");
  // An answer that comes too late finds nobody.
  h.SayWide(AnswerTo(h.Requests()[0]));
  EXPECT_EQ(shape->Text(), u"hello");
}

TEST(CancelRun, DuringTerminologyTheRunEndsWhenThePageHasAnswered) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.pageAnswersTerms = false;
  h.Start();
  ASSERT_TRUE(h.RunUntil([&] { return h.Requests(u"terminologyResolveRequest").size() == 1; }));
  h.Say(R"({"action":"cancel"})");
  h.Tick();
  EXPECT_TRUE(h.pane->run().runActive());
  h.Say(R"({"action":"terminologyResolveResult","requestId":"pptterm_1","ok":true,"result":{}})");
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCancelledEvents);
  EXPECT_TRUE(h.Requests().empty());
}

TEST(PauseAndResume, APausedRunSendsNothingUntilItIsResumed) {
  PaneHarness h;
  h.AddSlide(u"one");
  h.AddSlide(u"two");
  h.pageAnswers = false;
  h.Say(R"({"action":"start"})");
  ASSERT_TRUE(h.WaitForRequests(1));
  h.Say(R"({"action":"pause"})");
  ASSERT_NE(h.pane->run().runControl(), nullptr);
  EXPECT_EQ(h.pane->run().runControl()->paused, 1);
  h.SayWide(AnswerTo(h.Requests()[0]));
  h.pageAnswers = true;
  for (int i = 0; i < 50; ++i) h.Tick();
  EXPECT_EQ(h.Requests().size(), 1U);
  h.Say(R"({"action":"resume"})");
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCompleted);
}

TEST(PauseAndResume, ACancelWakesAPausedRun) {
  PaneHarness h;
  h.AddSlide(u"one");
  h.AddSlide(u"two");
  h.pageAnswers = false;
  h.Say(R"({"action":"start"})");
  ASSERT_TRUE(h.WaitForRequests(1));
  h.Say(R"({"action":"pause"})");
  EXPECT_EQ(h.pane->run().runControl()->paused, 1);
  h.SayWide(AnswerTo(h.Requests()[0]));
  h.Say(R"({"action":"cancel"})");
  ASSERT_NE(h.pane->run().runControl(), nullptr);
  EXPECT_EQ(h.pane->run().runControl()->cancelled, 1);
  EXPECT_EQ(h.pane->run().runControl()->paused, 0);
  h.Finish();
  EXPECT_EQ(h.MainEvents(), kCancelledEvents);
}

TEST(PauseAndResume, APauseIsIgnoredWhileARunIsFinishing) {
  PaneHarness h;
  h.AddSlide(u"one");
  h.Start();
  ASSERT_TRUE(h.WaitForWorker());
  int paused = 0;
  int calls = 0;
  h.host.onCall = [&](const std::string&) {
    if (calls++ > 0) return;
    h.Say(R"({"action":"pause"})");
    paused = h.pane->run().runControl()->paused;
  };
  h.Finish();
  h.host.onCall = {};
  EXPECT_GT(calls, 0);
  EXPECT_EQ(paused, 0);
  EXPECT_EQ(h.MainEvents(), kCompleted);
}

TEST(NavigationStarting, EndsTheBatchesWaitAtOnce) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  h.pane->OnNavigationStarting();
  ASSERT_TRUE(h.WaitForRequests(2));  // the second attempt follows at once
  h.pane->OnNavigationStarting();
  h.Finish();
  EXPECT_EQ(h.MainEvents(), (Texts{"onRunStarted", "onReady", "onError"}));
  EXPECT_NE(h.page->Scripts().back().find("\"code\":\"webview_navigating\",\"message\":"
                                          "\"cancelled\""),
            std::string::npos);
}

TEST(NewRunId, IsNeverZeroAndGrowsEvenWhenTheClockIsBehind) {
  const std::uint64_t first = NewRunId(0);
  EXPECT_GT(first, 0U);
  const std::uint64_t second = NewRunId(first + 1000);
  EXPECT_EQ(second, first + 1001);
  EXPECT_EQ(NewRunId(5), second + 1);
}

TEST(NewRunId, NoTwoThreadsGetTheSame) {
  std::vector<std::vector<std::uint64_t>> ids(4);
  std::vector<std::thread> threads;
  for (auto& mine : ids) {
    threads.emplace_back([&mine] {
      for (std::uint64_t i = 0; i < 1000; ++i) mine.push_back(NewRunId(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::set<std::uint64_t> all;
  for (const auto& mine : ids) {
    EXPECT_TRUE(std::is_sorted(mine.begin(), mine.end()));
    all.insert(mine.begin(), mine.end());
  }
  EXPECT_EQ(all.size(), 4000U);
}

}  // namespace

}  // namespace quillmarch::addin
