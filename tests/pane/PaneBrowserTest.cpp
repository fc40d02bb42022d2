#include "pane/PaneBrowser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/identity/Analytics.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "pane/PaneHarness.h"
#include "pane/WebViewFailure.h"
#include "pane/WebViewFolder.h"
#include "support/LogCapture.h"
#include "support/ScriptedBrowser.h"
#include "support/ScriptedDesktop.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::PaneHarness;
using test::ScriptedBrowser;
using test::ScriptedDesktop;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uintptr_t kWindow = 0xBEEF;

// A pane without a browser, whose stages the test completes.
class PaneBrowserEvents : public testing::Test {
 protected:
  PaneBrowserEvents() {
    ForgetFailureDialog();
    ForgetWebViewInitError();
    SetBeaconSender([this](AnalyticsBeacon beacon) { beacons_.push_back(beacon.body); });
  }
  ~PaneBrowserEvents() override {
    for (const auto& pane : panes_) {
      if (pane->HasWindow()) pane->OnDestroy();
    }
    SetBeaconSender({});
    ForgetFailureDialog();
    ForgetWebViewInitError();
  }

  CPptPane& Open(ScriptedBrowser& browser) {
    PaneSurroundings surroundings = h_.Surroundings();
    surroundings.loader = &browser;
    surroundings.desktop = &desktop_;
    surroundings.clientSize = [](const CPptPane&) { return ClientSize{300, 700}; };
    panes_.push_back(CPptPane::Create(surroundings));
    panes_.back()->OnCreate(kWindow);
    return *panes_.back();
  }
  CPptPane& Open() { return Open(browser_); }
  CPptPane& OpenAndComplete() {
    CPptPane& pane = Open();
    browser_.Complete();
    return pane;
  }

  // A pane whose browser came while a page that was asked for before it still waits.
  CPptPane& OpenWithPending(const Wide& page) {
    CPptPane& pane = Open();
    pane.browser().SetPanelPage(page);
    pane.browser().AttachWebView(browser_.page, browser_.page);
    return pane;
  }

  PaneHarness h_;
  ScriptedDesktop desktop_;
  ScriptedBrowser browser_;
  std::vector<std::string> beacons_;
  std::vector<std::shared_ptr<CPptPane>> panes_;
  LogCapture log_;
};

TEST_F(PaneBrowserEvents, TheBrowserIsBegunOnceWithTheUsersFolder) {
  CPptPane& pane = Open();
  pane.browser().InitWebView();
  EXPECT_THAT(browser_.folders, ElementsAre(WebViewDataFolder()));
  EXPECT_EQ(log_.Count("CPptPane InitWebView begin hwnd=0x000000000000BEEF"), 1);
}

TEST_F(PaneBrowserEvents, TheFolderLiesBelowTheLocalDataAndIsMade) {
  const Wide folder = WebViewDataFolder();
  EXPECT_EQ(folder, JoinPath(JoinPath(LocalDataFolder(), u"Quillmarch"), u"WebView2"));
  FileFacts facts;
  ASSERT_TRUE(ReadFileFacts(folder, facts));
  EXPECT_TRUE(facts.isFolder);
}

TEST_F(PaneBrowserEvents, AFailureOfTheFirstCallIsTheOnlyAttempt) {
  browser_.createResult = kOutOfMemory;
  CPptPane& pane = Open();
  EXPECT_TRUE(pane.browser().webViewStarted());
  pane.DoVerb(-1, 1, [] { return kOk; });
  EXPECT_THAT(browser_.folders, SizeIs(1));
  EXPECT_TRUE(log_.Has("PptPane WebView2 create failed hr=0x8007000E"));
}

TEST_F(PaneBrowserEvents, TheControllerIsMadeForTheWindowThatItWasBegunFor) {
  CPptPane& pane = Open();
  pane.OnCreate(0x1111);
  EXPECT_EQ(browser_.CompleteEnvironment(), kOk);
  EXPECT_THAT(browser_.parents, ElementsAre(kWindow));
  EXPECT_NE(pane.browser().webEnvironment(), nullptr);
  EXPECT_TRUE(log_.Has("CPptPane env callback hr=0x00000000"));
}

TEST_F(PaneBrowserEvents, ARefusedControllerIsTheHandlersResultAndNoReport) {
  browser_.controllerResult = kFail;
  Open();
  EXPECT_EQ(browser_.CompleteEnvironment(), kFail);
  EXPECT_EQ(log_.CountContaining("PptPane WebView2"), 0);
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(PaneBrowserEvents, TheReadyBrowserIsSetUpInItsFixedOrder) {
  OpenAndComplete();
  EXPECT_THAT(browser_.page->steps,
              ElementsAre("visible", "devtools off", "status bar off", "hear messages",
                          "hear starting", "hear completed", "bounds 300x700", "navigate"));
  EXPECT_TRUE(log_.Has("CPptPane controller callback hr=0x00000000"));
}

TEST_F(PaneBrowserEvents, SettingsThatAreRefusedAreLeftAlone) {
  browser_.page->hasSettings = false;
  OpenAndComplete();
  EXPECT_THAT(browser_.page->steps, ElementsAre("visible", "hear messages", "hear starting",
                                                "hear completed", "bounds 300x700", "navigate"));
}

TEST_F(PaneBrowserEvents, TheFirstPageIsThePendingOneWhichIsThenCleared) {
  CPptPane& pane = Open();
  pane.browser().SetPanelPage(u"glossary");
  browser_.Complete();
  ASSERT_THAT(browser_.page->addresses, SizeIs(1));
  EXPECT_THAT(ToUtf8(browser_.page->addresses[0]), HasSubstr("/panel/ppt/glossary.html?"));
  EXPECT_EQ(pane.browser().pendingPage(), u"");
  EXPECT_EQ(pane.browser().currentPage(), u"glossary");
}

TEST_F(PaneBrowserEvents, WithoutAPendingPageTheFirstIsTheTranslatePage) {
  CPptPane& pane = Open();
  pane.browser().SetPanelPage(u"glossary");
  browser_.Complete();
  ASSERT_EQ(pane.browser().pendingPage(), u"");
  browser_.page->addresses.clear();
  browser_.CompleteController();
  ASSERT_THAT(browser_.page->addresses, SizeIs(1));
  EXPECT_THAT(ToUtf8(browser_.page->addresses[0]), HasSubstr("/panel/ppt/?"));
  EXPECT_EQ(pane.browser().currentPage(), u"translate");
}

// ---- Failures ----------------------------------------------------------------------------------

TEST_F(PaneBrowserEvents, AFailedStageIsLoggedSentAndShownWithItsSupportHandle) {
  Open();
  browser_.CompleteEnvironment(MakeResult(0x80070002));
  EXPECT_TRUE(log_.Has("PptPane WebView2 environment failed hr=0x80070002"));
  ASSERT_THAT(beacons_, SizeIs(1));
  EXPECT_THAT(beacons_[0], HasSubstr(R"("stage":"init","rawErrorCode":"0x80070002")"));
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].owner, kWindow);
  EXPECT_EQ(desktop_.messages[0].text, Text(u"msg.webview2.body"));
  EXPECT_FALSE(desktop_.messages[0].text.empty());
  EXPECT_EQ(desktop_.messages[0].title, Text(u"msg.title"));
  EXPECT_EQ(desktop_.messages[0].style, 0x10030U);
}

TEST_F(PaneBrowserEvents, TheSupportHandleIsCopiedOnlyWhenTheDialogHasBeenClosed) {
  bool openWithoutCopy = false;
  desktop_.whileShown = [&] { openWithoutCopy = desktop_.copied.empty(); };
  Open();
  browser_.CompleteEnvironment(kFail);
  EXPECT_TRUE(openWithoutCopy);
  EXPECT_THAT(desktop_.copied, ElementsAre(u"Quillmarch-1"));
  // With its terminator, as the clipboard wants it, the handle is 26 bytes long.
  EXPECT_EQ((desktop_.copied[0].size() + 1) * sizeof(char16_t), 26U);
}

TEST_F(PaneBrowserEvents, TwoPanesThatFailShowOneDialogAndSendOneEvent) {
  ScriptedBrowser other;
  Open();
  Open(other);
  browser_.CompleteEnvironment(kFail);
  other.CompleteEnvironment(kFail);
  EXPECT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_THAT(desktop_.copied, SizeIs(1));
  EXPECT_THAT(beacons_, SizeIs(1));
  EXPECT_EQ(log_.Count("PptPane WebView2 environment failed hr=0x80004005"), 2);
}

TEST_F(PaneBrowserEvents, TheEventDoesNotDependOnTheDialog) {
  ScriptedBrowser other;
  Open();
  browser_.CompleteEnvironment(kFail);
  ForgetFailureDialog();
  Open(other);
  other.CompleteEnvironment(kFail);
  EXPECT_THAT(desktop_.messages, SizeIs(2));
  EXPECT_THAT(beacons_, SizeIs(1));
}

TEST_F(PaneBrowserEvents, AnEventThatCannotBeSentDoesNotCostTheDialog) {
  SetBeaconSender([](const AnalyticsBeacon&) { throw std::bad_alloc(); });
  Open();
  browser_.CompleteEnvironment(kFail);
  EXPECT_THAT(desktop_.messages, SizeIs(1));
}

TEST_F(PaneBrowserEvents, WithoutAWindowTheDialogHasNoOwner) {
  CPptPane& pane = Open();
  pane.window()->Destroy();
  browser_.CompleteEnvironment(kFail);
  ASSERT_THAT(desktop_.messages, SizeIs(1));
  EXPECT_EQ(desktop_.messages[0].owner, 0U);
}

TEST_F(PaneBrowserEvents, AWindowThatGoesWhileTheDialogIsReadOwnsNoClipboard) {
  CPptPane& pane = Open();
  browser_.CompleteEnvironment(kFail);
  ForgetFailureDialog();
  desktop_.whileShown = [&] { pane.OnDestroy(); };
  pane.OnControllerCompleted(kFail, nullptr);
  EXPECT_EQ(desktop_.messages[1].owner, kWindow);
  EXPECT_THAT(desktop_.copyOwners, ElementsAre(kWindow, 0U));
}

TEST_F(PaneBrowserEvents, APaneThatTheHostDropsWhileTheDialogIsReadEndsItsVerb) {
  PaneSurroundings surroundings = h_.Surroundings();
  surroundings.loader = &browser_;
  surroundings.desktop = &desktop_;
  browser_.createResult = kFail;
  std::shared_ptr<CPptPane> pane = CPptPane::Create(surroundings);
  CPptPane& verbs = *pane;
  desktop_.whileShown = [&] { std::exchange(pane, nullptr)->OnDestroy(); };
  EXPECT_EQ(verbs.DoVerb(-5, 0x1234, [] { return kOk; }), kOk);
  EXPECT_THAT(desktop_.copied, ElementsAre(u"Quillmarch-1"));
  EXPECT_TRUE(log_.Has("CPptPane DoVerb done hr=0x00000000 hwnd=0x0000000000000000"));
}

TEST_F(PaneBrowserEvents, ASuccessWithoutAnObjectIsAFailureOfItsStage) {
  ScriptedBrowser other;
  CPptPane& pane = Open();
  browser_.CompleteEnvironment(kOk, false);
  EXPECT_TRUE(log_.Has("PptPane WebView2 environment failed hr=0x00000000"));
  EXPECT_THAT(browser_.parents, IsEmpty());
  EXPECT_EQ(pane.browser().webEnvironment(), nullptr);
  CPptPane& second = Open(other);
  other.CompleteEnvironment();
  other.CompleteController(kOk, false);
  EXPECT_TRUE(log_.Has("PptPane WebView2 controller failed hr=0x00000000"));
  EXPECT_EQ(second.browser().webView(), nullptr);
}

TEST_F(PaneBrowserEvents, AFailedControllerIsReported) {
  CPptPane& pane = Open();
  browser_.CompleteEnvironment();
  EXPECT_EQ(browser_.CompleteController(kOutOfMemory), kOk);
  EXPECT_TRUE(log_.Has("PptPane WebView2 controller failed hr=0x8007000E"));
  EXPECT_EQ(pane.browser().webController(), nullptr);
}

TEST_F(PaneBrowserEvents, ABrowserWithoutAPageIsClosedAndReportedAsCore) {
  browser_.page->hasWebView = false;
  CPptPane& pane = OpenAndComplete();
  EXPECT_THAT(browser_.page->steps, ElementsAre("visible", "close"));
  EXPECT_TRUE(log_.Has("PptPane WebView2 core failed hr=0x80004005"));
  EXPECT_EQ(pane.browser().webController(), nullptr);
  EXPECT_EQ(pane.browser().webEnvironment(), nullptr);
}

// ---- Late completions --------------------------------------------------------------------------

TEST_F(PaneBrowserEvents, AnEnvironmentThatComesAfterTheShutdownIsNotTaken) {
  CPptPane& pane = Open();
  pane.BeginShutdownEarly();
  EXPECT_EQ(browser_.CompleteEnvironment(), kOk);
  EXPECT_THAT(browser_.parents, IsEmpty());
  EXPECT_EQ(pane.browser().webEnvironment(), nullptr);
  EXPECT_TRUE(browser_.environment.expired());
}

TEST_F(PaneBrowserEvents, AFailureThatComesAfterTheShutdownIsNotReportedByTheEnvironment) {
  CPptPane& pane = Open();
  pane.BeginShutdownEarly();
  browser_.CompleteEnvironment(kFail);
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(PaneBrowserEvents, AShutdownBetweenTheTwoCompletionsClosesTheLateController) {
  CPptPane& pane = Open();
  browser_.CompleteEnvironment();
  pane.BeginShutdownEarly();
  EXPECT_TRUE(browser_.environment.expired());
  EXPECT_EQ(browser_.CompleteController(), kOk);
  EXPECT_THAT(browser_.page->steps, ElementsAre("close"));
  EXPECT_EQ(pane.browser().webController(), nullptr);
  EXPECT_EQ(pane.browser().webView(), nullptr);
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(PaneBrowserEvents, AShutdownInsideTheSetUpClosesTheBrowser) {
  CPptPane& pane = Open();
  browser_.CompleteEnvironment();
  browser_.page->onGetWebView = [&] { pane.BeginShutdownEarly(); };
  browser_.CompleteController();
  EXPECT_THAT(browser_.page->steps, ElementsAre("visible", "close"));
  EXPECT_EQ(pane.browser().webView(), nullptr);
  EXPECT_THAT(desktop_.messages, IsEmpty());
}

TEST_F(PaneBrowserEvents, ClosingLetsGoOfAllThreeReferences) {
  CPptPane& pane = OpenAndComplete();
  pane.browser().CloseWebView();
  EXPECT_EQ(pane.browser().webView(), nullptr);
  EXPECT_EQ(pane.browser().webController(), nullptr);
  EXPECT_TRUE(browser_.environment.expired());
  EXPECT_EQ(browser_.page.use_count(), 1);
  pane.browser().CloseWebView();
  EXPECT_EQ(browser_.page->closed, 1);
}

TEST_F(PaneBrowserEvents, AnEnvironmentWithoutAControllerIsLetGoWithoutAClose) {
  CPptPane& pane = Open();
  browser_.CompleteEnvironment();
  pane.browser().CloseWebView();
  EXPECT_TRUE(browser_.environment.expired());
  EXPECT_EQ(log_.CountContaining("Close"), 0);
}

TEST_F(PaneBrowserEvents, AMessageAfterTheShutdownIsDropped) {
  CPptPane& pane = OpenAndComplete();
  pane.BeginShutdownEarly();
  pane.OnWebMessageReceived(u"{\"action\":\"setAccessToken\",\"accessToken\":\"t\"}");
  EXPECT_EQ(pane.session().accessToken(), u"");
}

// ---- Navigations -------------------------------------------------------------------------------

TEST_F(PaneBrowserEvents, AFailedNavigationIsLoggedAndNotTriedAgain) {
  CPptPane& pane = OpenWithPending(u"account");
  pane.OnNavigationCompleted(false);
  EXPECT_TRUE(log_.Has("CPptPane nav completed failed (no retry)"));
  EXPECT_THAT(browser_.page->addresses, IsEmpty());
  EXPECT_EQ(pane.browser().pendingPage(), u"account");
}

TEST_F(PaneBrowserEvents, ACompletedNavigationTellsWhichPageIsShown) {
  CPptPane& pane = OpenAndComplete();
  browser_.page->source = u"https://host/panel/ppt/account.html?_=1";
  pane.OnNavigationCompleted(true);
  EXPECT_EQ(pane.browser().currentPage(), u"account");
}

TEST_F(PaneBrowserEvents, APageGetsTheTokenThatThePaneHoldsAfterEachLoad) {
  CPptPane& pane = OpenAndComplete();
  pane.OnNavigationCompleted(true);
  EXPECT_THAT(browser_.page->Messages(), IsEmpty());
  pane.session().SetAccessToken(u"tok\"");
  pane.OnNavigationCompleted(true);
  pane.OnNavigationCompleted(true);
  EXPECT_THAT(browser_.page->Messages(),
              ElementsAre(R"({"action":"accessToken","accessToken":"tok\""})",
                          R"({"action":"accessToken","accessToken":"tok\""})"));
}

TEST_F(PaneBrowserEvents, APageThatWasAskedForMeanwhileIsGoneToNext) {
  CPptPane& pane = OpenWithPending(u"support");
  pane.browser().SetPendingMode(u"slide");
  pane.OnNavigationCompleted(true);
  ASSERT_THAT(browser_.page->addresses, SizeIs(1));
  EXPECT_THAT(ToUtf8(browser_.page->addresses[0]), HasSubstr("/support.html?"));
  EXPECT_EQ(pane.browser().pendingPage(), u"");
  EXPECT_EQ(pane.browser().mode(), u"full");
}

TEST_F(PaneBrowserEvents, TheTranslatePageGetsAPendingModeThatIsAnother) {
  CPptPane& pane = OpenAndComplete();
  browser_.page->source = u"https://host/panel/ppt/";
  pane.OnNavigationCompleted(true);  // "full" is its own
  EXPECT_THAT(browser_.page->Messages(), IsEmpty());
  pane.browser().SetPendingMode(u"selection");
  pane.OnNavigationCompleted(true);
  EXPECT_THAT(browser_.page->Messages(), ElementsAre(R"({"action":"setMode","mode":"selection"})"));
  EXPECT_EQ(pane.browser().mode(), u"selection");
  browser_.page->source = u"https://host/panel/ppt/glossary.html";
  pane.browser().SetPendingMode(u"slide");
  pane.OnNavigationCompleted(true);
  EXPECT_THAT(browser_.page->Messages(), SizeIs(1));
}

TEST_F(PaneBrowserEvents, AfterTheShutdownNoNavigationCounts) {
  CPptPane& pane = OpenAndComplete();
  pane.BeginShutdownEarly();
  pane.OnNavigationCompleted(false);
  pane.OnNavigationStarting();
  EXPECT_EQ(log_.CountContaining("nav completed"), 0);
}

}  // namespace

}  // namespace quillmarch::addin
