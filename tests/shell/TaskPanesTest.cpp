#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/settings/DisplayLanguage.h"
#include "pane/HandOver.h"
#include "shell/ResolveWindow.h"
#include "shell/ShellHarness.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::ScriptedObject;
using test::ShellHarness;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string ContextUtf8(const ShellHarness& h, std::size_t window) {
  return ToUtf8(ContextText(h.host.ContextOf(*h.host.windows[window])));
}

std::string KeyText(const ShellHarness& h, std::size_t window) {
  return std::to_string(PaneMapKey(h.host.ContextOf(*h.host.windows[window])));
}

// ---- Keys --------------------------------------------------------------------------------------

TEST(PaneMapKey, IsTheHandleElseTheNegatedIdentityElseAllBits) {
  EXPECT_EQ(PaneMapKey({0x10010, 0x77}), 0x10010);
  EXPECT_EQ(PaneMapKey({-2, 0}), 0xFFFFFFFELL);  // zero-extended
  EXPECT_EQ(PaneMapKey({0, 0x77}), -0x77);
  EXPECT_EQ(PaneMapKey({0, 0x8000000000000000U}), INT64_MIN);  // its own negative
  EXPECT_EQ(PaneMapKey({0, 0}), -1);
}

TEST(ContextText, ShowsTheHandleAndTheIdentityAsPointersAreShown) {
  EXPECT_EQ(ContextText({0x1A2B, 0xBEEF}), u"hwnd=0x1A2B id=000000000000BEEF");
  EXPECT_EQ(ContextText({-1, 0}), u"hwnd=0xFFFFFFFF id=0000000000000000");
  EXPECT_EQ(ContextText({0, 0}), u"hwnd=0x0 id=0000000000000000");
}

// ---- The window of a click ---------------------------------------------------------------------

class WindowOfAClick : public testing::Test {
 protected:
  WindowOfAClick() { h_.AddWindow(); }

  bool Resolve(const ObjectRef& control) {
    return ResolveWindow(h_.connect->hostApp.get(), control.get(), found_);
  }
  void ExpectFound(const char16_t* via, std::size_t window) {
    EXPECT_EQ(WideView(found_.via), via);
    EXPECT_EQ(found_.context.hwnd, h_.window(window)->hwnd);
    EXPECT_EQ(found_.context.id, h_.host.ContextOf(*h_.window(window)).id);
    EXPECT_EQ(found_.window->Identity(), found_.context.id);
  }

  ShellHarness h_;
  ResolvedWindow found_;
};

TEST_F(WindowOfAClick, IsTheOneThatTheControlNamesAndNotTheActiveOne) {
  ASSERT_TRUE(Resolve(h_.ControlIn(1)));
  ExpectFound(u"ribbon_window", 1);
}

TEST_F(WindowOfAClick, OfAPresentationIsItsActiveWindow) {
  h_.host.activeWindow = h_.window(1);
  ASSERT_TRUE(Resolve(
      ShellHarness::Control(u"b", h_.host.PresentationObject(h_.host.presentations.front()))));
  ExpectFound(u"ribbon_presentation", 1);
}

TEST_F(WindowOfAClick, OfAPresentationWithoutAnActiveWindowIsItsFirst) {
  h_.host.AddPresentation();
  h_.host.activeWindow = h_.window(2);
  ASSERT_TRUE(Resolve(
      ShellHarness::Control(u"b", h_.host.PresentationObject(h_.host.presentations.front()))));
  ExpectFound(u"ribbon_presentation", 0);
}

TEST_F(WindowOfAClick, OfAPresentationThatNoWindowShowsIsTheActiveOne) {
  const auto unseen = std::make_shared<test::FakePresentation>();
  ASSERT_TRUE(Resolve(ShellHarness::Control(u"b", h_.host.PresentationObject(unseen))));
  ExpectFound(u"active_window", 0);
}

TEST_F(WindowOfAClick, WithoutAContextIsTheActiveOne) {
  ASSERT_TRUE(Resolve(ShellHarness::Control(u"b")));
  ExpectFound(u"active_window", 0);
  ASSERT_TRUE(Resolve({}));
  ExpectFound(u"active_window", 0);
  // Something else altogether, as of a mail window's ribbon.
  ScriptedObject* other = nullptr;
  const ObjectRef context = ScriptedObject::Make(other);
  ASSERT_TRUE(Resolve(ShellHarness::Control(u"b", context)));
  ExpectFound(u"active_window", 0);
}

TEST_F(WindowOfAClick, CannotBeToldWhenTheHostHasNone) {
  h_.host.activeWindow = nullptr;
  EXPECT_FALSE(Resolve(ShellHarness::Control(u"b")));
  EXPECT_FALSE(ResolveWindow(nullptr, nullptr, found_));
}

TEST_F(WindowOfAClick, HasNoHandleWhenTheHostGivesNone) {
  h_.host.Fail("DocumentWindow.HWND");
  ASSERT_TRUE(Resolve(h_.ControlIn(1)));
  EXPECT_EQ(found_.context.hwnd, 0);
  EXPECT_NE(found_.context.id, 0U);
}

// ---- Making panes ------------------------------------------------------------------------------

TEST(TaskPanes, AClickOpensThePageInANewPaneOfItsWindow) {
  ShellHarness h;
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  ASSERT_EQ(h.madeCount(), 1U);
  const ShellHarness::Made& made = h.made(0);
  EXPECT_EQ(made.task->progId, u"Quillmarch.PptPane");
  EXPECT_EQ(made.task->title, Text(u"msg.paneTitle"));
  EXPECT_EQ(made.task->window->Identity(), h.host.ContextOf(*h.window(0)).id);
  EXPECT_TRUE(made.task->visible);
  EXPECT_EQ(made.task->dock, 2);
  EXPECT_EQ(made.pane->browser().pendingPage(), u"glossary");
  EXPECT_EQ(made.pane->windowContext().hwnd, h.window(0)->hwnd);
  EXPECT_TRUE(made.pane->hostApp());
  EXPECT_TRUE(log.Has("PPT ShowPanePage page=glossary via=ribbon_window " + ContextUtf8(h, 0)));
  EXPECT_TRUE(
      log.Has("PPT CreateCTP OK key=" + KeyText(h, 0) + " " + ContextUtf8(h, 0) + " panes=1"));
  EXPECT_TRUE(log.Has("PPT ShowPanePage visible panes=1 justCreated=1"));
  EXPECT_EQ(log.CountContaining("no-match"), 0);
}

TEST(TaskPanes, ASecondClickReusesThePane) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  LogCapture log;
  h.made(0).task->visible = false;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.madeCount(), 1U);
  EXPECT_TRUE(h.made(0).task->visible);
  EXPECT_TRUE(log.Has("PPT EnsureTaskPane reuse panes=1 " + KeyText(h, 0)));
  EXPECT_TRUE(log.Has("PPT ShowPanePage visible panes=1 justCreated=0"));
}

TEST(TaskPanes, TwoWindowsOfOnePresentationGetTwoPanes) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  ASSERT_EQ(h.madeCount(), 2U);
  EXPECT_THAT(h.connect->panes, SizeIs(2));
  EXPECT_NE(h.made(0).pane->windowContext().hwnd, h.made(1).pane->windowContext().hwnd);
  EXPECT_TRUE(log.Has("PPT EnsureTaskPane no-match panes=1 want " + ContextUtf8(h, 1)));
  EXPECT_TRUE(log.Has("PPT   existing key=" + KeyText(h, 0) + " " + ContextUtf8(h, 0)));
}

TEST(TaskPanes, AClickInAnInactiveWindowOpensThePaneThere) {
  ShellHarness h;
  h.AddWindow();
  ASSERT_EQ(h.host.activeWindow, h.window(0));
  h.Click(ribbon::kAccountClicked, 1);
  EXPECT_EQ(h.made(0).pane->windowContext().hwnd, h.window(1)->hwnd);
}

TEST(TaskPanes, AHostWithoutHandlesIsMatchedByIdentity) {
  ShellHarness h;
  h.AddWindow();
  h.window(0)->hwnd = 0;
  h.window(1)->hwnd = 0;
  h.Click(ribbon::kGlossaryClicked, 0);
  h.Click(ribbon::kAccountClicked, 1);
  h.Click(ribbon::kSupportClicked, 1);
  ASSERT_EQ(h.madeCount(), 2U);
  EXPECT_EQ(h.made(0).pane->browser().pendingPage(), u"glossary");
  EXPECT_EQ(h.made(1).pane->browser().pendingPage(), u"support");
}

TEST(TaskPanes, NumbersCountAttemptsSoThatOneMayBeSkipped) {
  ShellHarness h;
  const std::int32_t next = NextPaneId();
  h.createResult = kFail;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(NextPaneId(), next + 1);
  h.createResult = kOk;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.made(0).pane->paneId(), next + 1);
  EXPECT_EQ(NextPaneId(), next + 2);
}

TEST(TaskPanes, TheHandOverHoldsNothingOfTheHostAfterwardsWhateverCameOfIt) {
  ShellHarness h;
  bool hadBoth = false;
  h.onCreate = [&] { hadBoth = HandOverBlock().app && HandOverBlock().window; };
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_TRUE(hadBoth);
  EXPECT_FALSE(HandOverBlock().app);
  EXPECT_FALSE(HandOverBlock().window);
  h.AddWindow();
  h.createResult = kFail;
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  EXPECT_FALSE(HandOverBlock().app);
  EXPECT_FALSE(HandOverBlock().window);
}

TEST(TaskPanes, APaneThatLandedElsewhereIsLoggedAndKept) {
  ShellHarness h;
  h.AddWindow();
  h.landsIn = h.host.WindowObject(h.window(1));
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_TRUE(log.Has("PPT CreateCTP window verify mismatch ctp[" + ContextUtf8(h, 1) + "] want[" +
                      ContextUtf8(h, 0) + "]"));
  EXPECT_TRUE(CtpWindowMismatch());
  EXPECT_THAT(h.connect->panes, SizeIs(1));
  EXPECT_TRUE(h.made(0).task->visible);
  EXPECT_THAT(h.desktop.messages, IsEmpty());
}

TEST(TaskPanes, APaneThatNoLongerStandsInItsWindowIsReplaced) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->window = h.host.WindowObject(h.window(1));
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  ASSERT_EQ(h.madeCount(), 2U);
  EXPECT_THAT(h.connect->panes, SizeIs(1));
  EXPECT_EQ(h.made(0).task->references, 0);
  EXPECT_EQ(h.made(1).task->references, 1);
}

TEST(TaskPanes, APaneThatWasDockedElsewhereIsDockedRightAgain) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.made(0).task->docksPut, 1);
  h.made(0).task->dock = 0;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.made(0).task->dock, 2);
  h.made(0).task->dockResult = kFail;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.made(0).task->docksPut, 3);
}

// ---- Pages and modes ---------------------------------------------------------------------------

TEST(TaskPanes, AModeGoesToTheLivePane) {
  ShellHarness h;
  h.Click(ribbon::kTranslateSelectionClicked, 0);
  EXPECT_EQ(h.made(0).pane->browser().pendingMode(), u"selection");
  EXPECT_EQ(h.made(0).pane->browser().mode(), u"selection");
  h.made(0).browser->Complete();
  ASSERT_THAT(h.made(0).browser->page->addresses, SizeIs(1));
  EXPECT_THAT(ToUtf8(h.made(0).browser->page->addresses[0]), HasSubstr("&mode=selection&"));
}

TEST(TaskPanes, AnotherModeOfTheShownPageIsAMessageAndNoReload) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  test::ScriptedWebView& page = *h.made(0).browser->page;
  h.made(0).browser->Complete();
  h.Click(ribbon::kTranslateCurrentSlideClicked, 0);
  EXPECT_THAT(page.Messages(), ElementsAre(R"({"action":"setMode","mode":"slide"})"));
  EXPECT_THAT(page.addresses, SizeIs(1));
}

TEST(TaskPanes, AClickWithoutAModeLeavesTheModeThatIsThere) {
  ShellHarness h;
  h.Click(ribbon::kTranslateSelectionClicked, 0);
  h.made(0).browser->Complete();
  h.Click(ribbon::kShowPaneClicked, 0);
  EXPECT_EQ(h.made(0).pane->browser().mode(), u"selection");
  EXPECT_THAT(h.made(0).browser->page->Messages(), IsEmpty());
}

TEST(TaskPanes, APaneWithoutAWindowKeepsTheModeForLater) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).pane->window()->Destroy();
  h.Click(ribbon::kTranslateCurrentSlideClicked, 0);
  EXPECT_EQ(h.made(0).pane->browser().pendingMode(), u"slide");
  EXPECT_EQ(h.made(0).pane->browser().mode(), u"full");
}

TEST(TaskPanes, WithoutANameTheTranslatePageIsMeant) {
  ShellHarness h;
  LogCapture log;
  h.connect->ShowPanePage(nullptr, h.ControlIn(0).get(), u"");
  EXPECT_EQ(h.made(0).pane->browser().pendingPage(), u"translate");
  EXPECT_EQ(log.CountContaining("PPT ShowPanePage page=(null) via="), 1);
  h.connect->ShowPanePage(u"", h.ControlIn(0).get(), u"");
  EXPECT_EQ(log.CountContaining("PPT ShowPanePage page= via="), 1);
}

TEST(TaskPanes, APaneThatIsShuttingDownIsNotTheLiveOneOfItsWindow) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).pane->BeginShutdownEarly();
  h.made(0).task->windowResult = kFail;  // the host has dropped it
  h.Click(ribbon::kAccountClicked, 0);
  ASSERT_EQ(h.madeCount(), 2U);
  h.Click(ribbon::kSupportClicked, 0);
  EXPECT_EQ(h.made(1).pane->browser().pendingPage(), u"support");
}

// ---- Pruning -----------------------------------------------------------------------------------

TEST(TaskPanes, AWindowThatWasClosedIsPrunedAtTheNextClickAndItsPaneHidden) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  const std::string key = KeyText(h, 1);
  const std::string context = ContextUtf8(h, 1);
  h.CloseWindow(1);
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_TRUE(log.Has("PPT pane prune key=" + key + " reason=window_gone " + context));
  EXPECT_FALSE(h.made(1).task->visible);
  EXPECT_EQ(h.made(1).task->references, 0);
  EXPECT_THAT(h.connect->panes, SizeIs(1));
}

TEST(TaskPanes, APaneThatCannotBeHiddenIsKept) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  const std::string key = KeyText(h, 1);
  h.CloseWindow(1);
  h.made(1).task->visibleResult = MakeResult(0x80010108);
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_TRUE(log.Has("PPT pane prune keep key=" + key + " hide hr=0x80010108"));
  EXPECT_THAT(h.connect->panes, SizeIs(2));
  EXPECT_EQ(h.made(1).task->references, 1);
}

TEST(TaskPanes, AnEntryWithoutAPaneIsPruned) {
  ShellHarness h;
  h.connect->panes[7].context = {7, 0};
  LogCapture log;
  h.connect->PrunePanes();
  EXPECT_TRUE(log.Has("PPT pane prune key=7 reason=no_ctp hwnd=0x7 id=0000000000000000"));
  EXPECT_TRUE(h.connect->panes.empty());
}

TEST(TaskPanes, AnEntryWithAnEmptyContextIsPruned) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.connect->panes.begin()->second.context = {};
  h.connect->PrunePanes();
  EXPECT_TRUE(h.connect->panes.empty());
}

// ---- Failures ----------------------------------------------------------------------------------

void ExpectBox(const ShellHarness& h, const Wide& text, std::uint32_t style) {
  ASSERT_THAT(h.desktop.messages, SizeIs(1));
  EXPECT_EQ(h.desktop.messages[0].text, text);
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(h.desktop.messages[0].title, Text(u"msg.title"));
  EXPECT_EQ(h.desktop.messages[0].style, style);
}

TEST(TaskPanes, WithoutAHostTheUserIsTold) {
  ShellHarness h;
  h.connect->OnDisconnection();
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  ExpectBox(h, Text(u"msg.hostNotReady.ppt"), 48);
  EXPECT_EQ(log.CountContaining("ShowPanePage"), 0);
}

TEST(TaskPanes, WithoutAWindowTheUserIsTold) {
  ShellHarness h;
  h.host.activeWindow = nullptr;
  LogCapture log;
  EXPECT_EQ(h.ClickWith(ribbon::kGlossaryClicked, ShellHarness::Control(u"b")), kOk);
  ExpectBox(h, Text(u"msg.noWindow.ppt"), 48);
  EXPECT_TRUE(log.Has("PPT ShowPanePage: no window resolved"));
}

TEST(TaskPanes, WithoutAFactoryTheUserIsTold) {
  ShellHarness h;
  h.connect->CTPFactoryAvailable(nullptr);
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  ExpectBox(h, Text(u"msg.paneFactory.ppt"), 16);
  EXPECT_TRUE(log.Has("PPT EnsureTaskPane: CTP factory null"));
}

TEST(TaskPanes, APaneThatTheHostRefusesIsToldWithItsCode) {
  ShellHarness h;
  h.createResult = MakeResult(0x80070005);
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  ExpectBox(h, FormatHr(Text(u"msg.createPaneFailed"), h.createResult), 16);
  EXPECT_THAT(h.BoxTexts()[0], HasSubstr("0x80070005"));
  EXPECT_TRUE(log.Has("PPT CreateCTP failed hr=0x80070005"));
  EXPECT_TRUE(h.connect->panes.empty());
}

TEST(TaskPanes, AHostThatSaysYesAndGivesNothingHasFailed) {
  ShellHarness h;
  h.createsNothing = true;
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  EXPECT_TRUE(log.Has("PPT CreateCTP failed hr=0x80004005"));
  EXPECT_THAT(h.desktop.messages, SizeIs(1));
}

// ---- A host that lets anything in --------------------------------------------------------------

TEST(TaskPanes, ADisconnectionInsideTheMakingLeavesNothingBehind) {
  ShellHarness h;
  h.onCreate = [&] { h.connect->OnDisconnection(); };
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  EXPECT_TRUE(h.connect->panes.empty());
  ASSERT_EQ(h.madeCount(), 1U);
  EXPECT_EQ(h.made(0).task->references, 0);
}

TEST(TaskPanes, APaneThatADisconnectionHidInsideTheClickIsNotShownAgain) {
  ShellHarness h;
  h.Click(ribbon::kGlossaryClicked, 0);
  h.made(0).task->onDock = [&] { h.connect->OnDisconnection(); };
  LogCapture log;
  EXPECT_EQ(h.Click(ribbon::kGlossaryClicked, 0), kOk);
  EXPECT_FALSE(h.made(0).task->visible);
  EXPECT_EQ(h.made(0).task->references, 0);
  EXPECT_EQ(log.CountContaining("PPT ShowPanePage visible"), 0);
}

TEST(TaskPanes, AClickInsideAnotherMakesBothPanes) {
  ShellHarness h;
  h.AddWindow();
  h.onCreate = [&] {
    h.onCreate = {};
    h.Click(ribbon::kAccountClicked, 1);
  };
  h.Click(ribbon::kGlossaryClicked, 0);
  EXPECT_EQ(h.madeCount(), 2U);
  EXPECT_THAT(h.connect->panes, SizeIs(2));
}

TEST(TaskPanes, ADisconnectionInsideAPrunedPanesHidingIsSurvived) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  h.CloseWindow(1);
  bool once = true;
  h.made(1).task->onVisible = [&] {
    if (std::exchange(once, false)) h.connect->OnDisconnection();
  };
  EXPECT_EQ(h.Click(ribbon::kTranslateFullDocClicked, 0), kOk);
  EXPECT_EQ(h.made(1).task->references, 0);
}

}  // namespace

}  // namespace quillmarch::addin
