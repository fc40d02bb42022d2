#include <gtest/gtest.h>

#include <future>

#include "pane/HandOver.h"
#include "pane/LivePanes.h"
#include "pane/PaneHarness.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/PageAnswers.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::PaneHarness;

ResultCode StockVerb() {
  return kOk;
}

TEST(CPptPane, TakesTheHandOverBlockAndEmptiesItsPageAndMode) {
  PaneHarness h;
  HandOver& block = HandOverBlock();
  block.app = h.host.Application();
  block.context = {42, 7};
  block.paneId = 5;
  block.pendingPage = u"glossary";
  block.pendingMode = u"lite";
  ProcessAccessToken() = u"tok";
  const auto pane = CPptPane::Create(h.Surroundings());
  EXPECT_EQ(pane->windowContext().hwnd, 42);
  EXPECT_EQ(pane->windowContext().id, 7U);
  EXPECT_EQ(pane->paneId(), 5);
  EXPECT_EQ(pane->browser().pendingPage(), u"glossary");
  EXPECT_EQ(pane->browser().pendingMode(), u"lite");
  EXPECT_EQ(pane->session().accessToken(), u"tok");
  EXPECT_TRUE(pane->hostApp());
  EXPECT_TRUE(block.pendingPage.empty());
  EXPECT_TRUE(block.pendingMode.empty());
  const auto next = CPptPane::Create(h.Surroundings());
  EXPECT_EQ(next->browser().pendingPage(), u"translate");
  EXPECT_EQ(next->browser().pendingMode(), u"full");
  block = {};
  ProcessAccessToken().clear();
}

TEST(CPptPane, IsListedWhileItLives) {
  PaneHarness h;
  const std::size_t before = LivePanes().size();
  auto pane = CPptPane::Create(h.Surroundings());
  EnterLivePane(pane.get(), pane);
  EXPECT_EQ(LivePanes().size(), before + 1);
  pane.reset();
  EXPECT_EQ(LivePanes().size(), before);
}

TEST(CPptPane, DoVerbWithoutAParentAndAWindowDoesOnlyTheStockCall) {
  PaneHarness h;
  LogCapture log;
  const auto pane = CPptPane::Create(h.Surroundings());
  const int started = h.webViewsStarted;
  int stock = 0;
  EXPECT_EQ(pane->DoVerb(-1, 0,
                         [&] {
                           ++stock;
                           return kFail;
                         }),
            kFail);
  EXPECT_EQ(stock, 1);
  EXPECT_FALSE(pane->HasWindow());
  EXPECT_EQ(h.webViewsStarted, started);
  EXPECT_TRUE(log.Has("CPptPane DoVerb verb=-1 parent=0x0000000000000000 hwnd=0x0000000000000000"));
  EXPECT_TRUE(log.Has("CPptPane DoVerb done hr=0x80004005 hwnd=0x0000000000000000"));
}

TEST(CPptPane, TheFallbackMakesTheWindowOnceAndASecondVerbNoSecondWebView) {
  PaneHarness h;
  LogCapture log;
  const auto pane = CPptPane::Create(h.Surroundings());
  const int started = h.webViewsStarted;
  pane->DoVerb(-1, 0x1234, StockVerb);
  EXPECT_TRUE(pane->HasWindow());
  EXPECT_EQ(h.webViewsStarted, started + 1);
  pane->DoVerb(-1, 0x1234, StockVerb);
  EXPECT_EQ(h.webViewsStarted, started + 1);
  EXPECT_EQ(log.Count("CPptPane fallback create window"), 1);
  EXPECT_EQ(log.Count("CPptPane fallback create OK hwnd=0x000000000000BEEF"), 1);
  pane->OnDestroy();
  pane->DoVerb(-1, 0x1234, StockVerb);
  EXPECT_FALSE(pane->HasWindow());
}

TEST(CPptPane, AVerbWithoutAParentUsesTheOneOfAnEarlierVerb) {
  PaneHarness h;
  h.createsWindow = false;
  const auto pane = CPptPane::Create(h.Surroundings());
  pane->DoVerb(-1, 0x1234, StockVerb);
  EXPECT_FALSE(pane->HasWindow());
  h.createsWindow = true;
  pane->DoVerb(-1, 0, StockVerb);
  EXPECT_TRUE(pane->HasWindow());
  EXPECT_EQ(pane->parentWindow(), 0x1234U);
  pane->OnDestroy();
}

TEST(CPptPane, AWindowThatCannotBeMadeShowsInTheLogAlone) {
  PaneHarness h;
  h.createsWindow = false;
  LogCapture log;
  const auto pane = CPptPane::Create(h.Surroundings());
  const int started = h.webViewsStarted;
  EXPECT_EQ(pane->DoVerb(-1, 1, StockVerb), kOk);
  EXPECT_EQ(log.Count("CPptPane fallback create window"), 1);
  EXPECT_EQ(log.CountContaining("create OK"), 0);
  EXPECT_EQ(h.webViewsStarted, started);
}

TEST(CPptPane, TimerOneCallsTheWidthHookEvery300Ms) {
  PaneHarness h;
  int calls = 0;
  SetPaneWidthHook([&](CPptPane& pane) { calls += &pane == h.pane.get() ? 1 : 100; });
  h.thread.Advance(299);
  h.thread.FireDueTimers();
  EXPECT_EQ(calls, 0);
  h.thread.Advance(1);
  h.thread.FireDueTimers();
  h.thread.Advance(300);
  h.thread.FireDueTimers();
  EXPECT_EQ(calls, 2);
  SetPaneWidthHook({});
  h.thread.Advance(300);
  h.thread.FireDueTimers();
  EXPECT_EQ(calls, 2);
  h.pane->OnTimer(77);  // any other timer is ignored
}

TEST(CPptPane, AWidthHookThatIsTakenBackInsideItselfComesToItsEnd) {
  PaneHarness h;
  const auto words = std::make_shared<std::string>("taken back");
  std::string seen;
  SetPaneWidthHook([words, &seen](CPptPane&) {
    SetPaneWidthHook({});
    seen = *words;
  });
  h.pane->OnTimer(CPptPane::kWidthTimer);
  h.pane->OnTimer(CPptPane::kWidthTimer);
  EXPECT_EQ(seen, "taken back");
  EXPECT_EQ(words.use_count(), 1);
}

TEST(CPptPane, ANewSizeReachesTheBrowserWhenThereIsOne) {
  PaneHarness h;
  h.pane->browser().PutBounds(320, 640);
  EXPECT_EQ(h.page->width, 320);
  EXPECT_EQ(h.page->height, 640);
  h.pane->browser().CloseWebView();
  h.pane->browser().PutBounds(1, 1);
  EXPECT_EQ(h.page->width, 320);
}

TEST(CPptPane, ShuttingDownTwiceEndsOnceAndClosesTheBrowserOnce) {
  PaneHarness h;
  LogCapture log;
  h.page->closeResult = kFail;
  h.pane->BeginShutdownEarly();
  h.pane->BeginShutdownEarly();
  EXPECT_EQ(log.Count("PptPane BeginShutdownEarly"), 1);
  EXPECT_EQ(h.page->closed, 1);
  EXPECT_TRUE(log.Has("PptPane WebView2 Close hr=0x80004005"));
}

TEST(CPptPane, AfterTheShutdownNoMessageIsHeardAndNothingIsSaid) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.pane->BeginShutdownEarly();
  h.pane->browser().AttachWebView(h.page, h.page);
  h.Say(R"({"action":"setAccessToken","accessToken":"t"})");
  h.Start();
  h.pane->browser().CallPage(u"onReady", u"{}");
  h.pane->run().StartRun(u"{\"action\":\"start\"}");
  EXPECT_TRUE(h.pane->session().accessToken().empty());
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_TRUE(h.page->calls.empty());
}

TEST(CPptPane, TheWindowsEndKillsAllTimers) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  // The wait for terminology, which comes first, outlives the window.
  ASSERT_TRUE(h.WaitForRequests(1));
  EXPECT_EQ(h.thread.timersSet(), 2);
  h.pane->OnDestroy();
  EXPECT_EQ(h.thread.timersSet(), 0);
  EXPECT_FALSE(h.pane->run().runActive());
}

TEST(CPptPane, AShutdownDropsADeferredStart) {
  PaneHarness h;
  h.thread.Advance(1000);
  const int owner = 0;
  const GateHold gate(&owner, h.thread);
  h.Start();
  ASSERT_TRUE(h.pane->run().deferredStartArmed());
  h.pane->BeginShutdownEarly();
  EXPECT_FALSE(h.pane->run().deferredStartArmed());
  EXPECT_TRUE(h.pane->run().deferredStart().empty());
  EXPECT_EQ(h.thread.timersSet(), 1);
}

TEST(CPptPane, AShutdownDuringARunEndsItAndItsRequests) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  h.pane->BeginShutdownEarly();
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_EQ(h.pane->run().currentRunId(), 0U);
  EXPECT_FALSE(h.pane->run().HasController());
  EXPECT_TRUE(log.Has("PptPane run finished"));
  ASSERT_EQ(h.records.size(), 1U);
  EXPECT_EQ(h.records[0].outcome, RunOutcome::kAborted);
}

TEST(CPptPane, ItsEndFailsOpenRequestsWithACodeOfItsOwn) {
  for (const bool early : {true, false}) {
    PaneHarness h;
    TranslateBatchRequest request;
    request.texts = {u"hello"};
    h.pageAnswers = false;
    auto answer = std::async(std::launch::async,
                             [&] { return h.pane->run().transport().TranslateViaPage(request); });
    ASSERT_TRUE(h.WaitForRequests(1));
    if (early) {
      h.pane->BeginShutdownEarly();
    } else {
      h.pane->FinalRelease();
    }
    const TranslateBatchResult result = answer.get();
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.code, u"addin_shutdown");
    EXPECT_EQ(result.message, u"cancelled");
  }
}

// A worker that hangs keeps the run, and what it has ready must not reach the deck any more.
TEST(CPptPane, AfterAnAbortNoTickWrites) {
  PaneHarness h;
  LogCapture log;
  const auto one = h.AddSlide(u"one");
  h.AddSlide(u"two");
  h.pageAnswers = false;
  h.thread.sleepsAreInstant = true;
  h.Say(R"({"action":"start"})");
  ASSERT_TRUE(h.WaitForRequests(1));
  h.SayWide(test::AnswerTo(h.Requests()[0]));
  ASSERT_TRUE(h.WaitForRequests(2));  // the first slide is ready
  h.thread.holdsPostsOfWorkers = true;
  h.pane->OnWebMessageReceived(test::AnswerTo(h.Requests()[1]));
  h.pane->BeginShutdownEarly();
  EXPECT_TRUE(log.Has("PptPane shutdown: run worker busy, object kept alive"));
  for (int tick = 0; tick < 45; ++tick) {
    h.thread.Advance(CPptPane::kRunTickMs);
    h.thread.FireDueTimers();
  }
  EXPECT_EQ(one->Text(), u"one");
  h.thread.holdsPostsOfWorkers = false;
  ASSERT_TRUE(h.WaitForWorker());
  h.Finish();
  EXPECT_EQ(one->Text(), u"one");
}

// The terminology wait is the one that a shutdown does not end.
TEST(CPptPane, AWorkerThatHangsKeepsThePaneBeyondItsWindow) {
  PaneHarness h;
  LogCapture log;
  h.MakePane(h.host.ContextOf(*h.host.windows.front()), 400);
  h.OpenWindow();
  h.AddSlide(u"hello");
  h.pageAnswersTerms = false;
  h.thread.sleepsAreInstant = true;
  h.Start();
  ASSERT_TRUE(h.RunUntil([&] { return h.Requests(u"terminologyResolveRequest").size() == 1; }));
  const std::weak_ptr<CPptPane> weak = h.pane;
  h.pane->OnDestroy();
  EXPECT_TRUE(log.Has("PptPane shutdown: run worker busy, object kept alive"));
  h.pane.reset();
  EXPECT_FALSE(weak.expired());
  EXPECT_EQ(ReleaseEndedPanes(), 1U);
  const std::size_t said = h.page->calls.size();
  ASSERT_TRUE(h.WaitForWorker());
  EXPECT_EQ(h.page->calls.size(), said);  // its last posts found no window
  EXPECT_EQ(ReleaseEndedPanes(), 0U);
  EXPECT_TRUE(weak.expired());
}

TEST(CPptPane, AHungWorkerOfALivingWindowIsStillTickedToItsEnd) {
  PaneHarness h;
  h.MakePane(h.host.ContextOf(*h.host.windows.front()), 400);
  h.OpenWindow();
  h.AddSlide(u"hello");
  h.pageAnswersTerms = false;
  h.thread.sleepsAreInstant = true;
  h.Start();
  ASSERT_TRUE(h.RunUntil([&] { return h.Requests(u"terminologyResolveRequest").size() == 1; }));
  h.pane->BeginShutdownEarly();
  EXPECT_TRUE(h.pane->run().runActive());
  h.Finish();
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_EQ(h.pane.use_count(), 1);
}

TEST(BroadcastUiLangChanged, ReachesEveryPageThatIsThere) {
  PaneHarness a;
  PaneHarness b(a, {});
  const auto without = CPptPane::Create(a.Surroundings());
  BroadcastUiLangChanged(u"pt-BR");
  const std::vector<std::string> said = {R"({"action":"uiLangChanged","uiLang":"pt-BR"})"};
  EXPECT_EQ(a.page->Messages(), said);
  EXPECT_EQ(b.page->Messages(), said);
}

}  // namespace

}  // namespace quillmarch::addin
