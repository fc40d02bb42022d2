#include "host/driver/AddinHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iterator>

#include "driver/addin/AddinScene.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/settings/UserConfig.h"
#include "host/driver/HostedPane.h"
#include "host/model/Host.h"
#include "pane/LivePanes.h"
#include "support/LogCapture.h"
#include "support/PageAnswers.h"
#include "support/ScriptedWebView.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

using test::AddinScene;
using test::FakeShapeRef;
using test::LogCapture;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr std::uint32_t kPastAPollMs = 400;   // the widths are looked at every 300 ms
constexpr std::uint32_t kPastASaveMs = 2500;  // a width is saved when it has held for a second

TEST(AddinHost, DrawsTheRibbonInTheUsersLanguage) {
  AddinScene s;
  s.AddDeck(u"hello");
  std::uint32_t ignored = 0;
  WriteUiLang(u"en", ignored);
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  std::vector<std::string> labels;
  for (const DrawnButton& button : addin.buttons()) labels.push_back(ToUtf8(button.label));
  EXPECT_THAT(labels, ElementsAre("All slides", "This slide", "Selection", "PDF Translate",
                                  "Glossary", "Custom prompt", "Account", "Support", "Settings"));
  EXPECT_EQ(addin.buttons()[0].tip, u"Translate the whole presentation");
  EXPECT_THAT(s.beacons, ElementsAre(u"addin:loaded"));
  EXPECT_THAT(addin.taskPanes(), IsEmpty());
}

TEST(AddinHost, EveryButtonIsServed) {
  AddinScene s;
  s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  for (const DrawnButton& button : addin.buttons()) {
    EXPECT_EQ(addin.Click(button.id, s.Window(0)), kOk) << ToUtf8(button.id);
  }
  EXPECT_EQ(addin.Click(u"btnNothing", s.Window(0)), kUnknownName);
  EXPECT_THAT(addin.taskPanes(), SizeIs(1));
  EXPECT_THAT(s.desktop.opened, SizeIs(1));
  EXPECT_THAT(s.desktop.messages, IsEmpty());
}

TEST(AddinHost, AClickOpensThePanelInATaskPaneOnTheRight) {
  AddinScene s;
  s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateSelection", s.Window(0)));
  ASSERT_THAT(addin.taskPanes(), SizeIs(1));
  const HostedTaskPane& task = *addin.taskPanes()[0];
  EXPECT_TRUE(task.visible);
  EXPECT_EQ(task.dock, 2);
  EXPECT_EQ(task.width, 520);
  EXPECT_EQ(task.title, PaneTitle());
  EXPECT_THAT(s.loaded[0], HasSubstr("/panel/ppt/?_="));
  EXPECT_THAT(s.loaded[0], HasSubstr("&host=ppt"));
  EXPECT_THAT(s.loaded[0], HasSubstr("&mode=selection&"));
}

TEST(AddinHost, ThePagesOfTheOtherButtonsAreLoadedInTheSamePane) {
  AddinScene s;
  s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  for (const char16_t* button : {u"btnGlossary", u"btnInstruction", u"btnAccount", u"btnSupport"}) {
    ASSERT_TRUE(s.OpenPage(addin, button, s.Window(0))) << ToUtf8(button);
  }
  EXPECT_THAT(
      s.loaded,
      ElementsAre(HasSubstr("/panel/ppt/glossary.html?"), HasSubstr("/panel/ppt/instruction.html?"),
                  HasSubstr("/panel/ppt/account.html?"), HasSubstr("/panel/ppt/support.html?")));
  EXPECT_THAT(addin.taskPanes(), SizeIs(1));
}

TEST(AddinHost, ARunGoesFromTheClickToTheEndOfTheHost) {
  AddinScene s;
  const FakeShapeRef shape = s.AddDeck(u"hello");
  {
    AddinHost addin(s.host.Application(), s.Parts());
    ASSERT_TRUE(addin.Start());
    ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
    ASSERT_TRUE(s.Run(addin, 0));
    EXPECT_EQ(s.records[0].outcome, RunOutcome::kCompleted);
    EXPECT_EQ(shape->text->text, u"T(hello)");
  }
  EXPECT_EQ(s.Leftovers(), "");
}

TEST(AddinHost, ARunActsOnTheWindowThatWasClickedInAndNotOnTheActiveOne) {
  AddinScene s;
  const FakeShapeRef first = s.AddDeck(u"hello");
  const FakeShapeRef second = s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_EQ(s.host.activeWindow, s.host.windows[0]);
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(1)));
  ASSERT_TRUE(s.Run(addin, 0));
  EXPECT_EQ(first->text->text, u"hello");
  EXPECT_EQ(second->text->text, u"T(hello)");
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  EXPECT_THAT(s.loaded[1], HasSubstr("&pane=ppt"));
  EXPECT_THAT(addin.taskPanes(), SizeIs(2));
}

TEST(AddinHost, TwoWindowsRunAtTheSameTime) {
  AddinScene s;
  const FakeShapeRef first = s.AddDeck(u"one");
  const FakeShapeRef second = s.AddDeck(u"two");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(1)));
  addin.SayStart(0, test::WholeDeck());
  addin.SayStart(1, test::WholeDeck());
  ASSERT_TRUE(s.Wait([&] { return s.records.size() == 2; }));
  EXPECT_EQ(first->text->text, u"T(one)");
  EXPECT_EQ(second->text->text, u"T(two)");
}

TEST(AddinHost, AnotherModeDuringARunLeavesItsPageAlone) {
  AddinScene s;
  s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(s.RunToTheFirstRequest(addin));
  addin.Click(u"btnTranslateCurrentSlide", s.Window(0));
  s.Pass(kPastAPollMs);
  EXPECT_THAT(s.loaded, SizeIs(1));
  EXPECT_TRUE(addin.taskPanes()[0]->pane->run().runActive());
  EXPECT_EQ(addin.taskPanes()[0]->pane->browser().mode(), u"slide");
}

TEST(AddinHost, AnotherPageDuringARunEndsItsRequestAndTheRunGoesOn) {
  AddinScene s;
  const FakeShapeRef shape = s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(s.RunToTheFirstRequest(addin));
  s.panelTranslates = true;
  ASSERT_TRUE(s.OpenPage(addin, u"btnGlossary", s.Window(0)));
  ASSERT_TRUE(s.Wait([&] { return !s.records.empty(); }));
  EXPECT_EQ(s.batches, 2);
  EXPECT_EQ(shape->text->text, u"T(hello)");
}

// ---- Windows that the user closes --------------------------------------------------------------

TEST(AddinHost, AWindowThatClosesInMidRunEndsItsRunAndLeavesTheOtherWindowsAlone) {
  AddinScene s;
  const FakeShapeRef first = s.AddDeck(u"one");
  const FakeShapeRef second = s.AddDeck(u"two");
  s.panelTranslates = false;
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(1)));
  addin.SayStart(0, test::WholeDeck());
  addin.SayStart(1, test::WholeDeck());
  ASSERT_TRUE(s.Wait([&] { return s.batches == 2; }));
  addin.CloseTaskPane(1);
  s.CloseWindow(1);
  ASSERT_THAT(s.records, SizeIs(1));
  EXPECT_EQ(s.records[0].outcome, RunOutcome::kAborted);
  EXPECT_EQ(second->text->text, u"two");
  EXPECT_TRUE(addin.taskPanes()[0]->pane->run().runActive());
  // The other run's page answers at last, by loading anew.
  s.panelTranslates = true;
  ASSERT_TRUE(s.OpenPage(addin, u"btnAccount", s.Window(0)));
  ASSERT_TRUE(s.Wait([&] { return s.records.size() == 2; }));
  EXPECT_EQ(first->text->text, u"T(one)");
  addin.Stop();
  EXPECT_EQ(s.Leftovers(), "");
}

TEST(AddinHost, ATaskPaneThatOutlivesItsWindowIsHiddenAtTheNextClick) {
  AddinScene s;
  s.AddDeck(u"one");
  s.AddDeck(u"two");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  addin.Click(u"btnAccount", s.Window(0));
  addin.Click(u"btnAccount", s.Window(1));
  s.CloseWindow(1);
  EXPECT_TRUE(addin.taskPanes()[1]->visible);
  addin.Click(u"btnAccount", s.Window(0));
  EXPECT_FALSE(addin.taskPanes()[1]->visible);
  EXPECT_EQ(addin.taskPanes()[1]->references, 0);
  EXPECT_THAT(addin.connection()->panes, SizeIs(1));
}

TEST(AddinHost, ATaskPaneThatWentWithItsWindowCannotBeHiddenSoItIsKept) {
  AddinScene s;
  s.AddDeck(u"one");
  s.AddDeck(u"two");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  addin.Click(u"btnAccount", s.Window(0));
  addin.Click(u"btnAccount", s.Window(1));
  addin.CloseTaskPane(1);
  s.CloseWindow(1);
  addin.Click(u"btnAccount", s.Window(0));
  EXPECT_THAT(addin.connection()->panes, SizeIs(2));
  EXPECT_THAT(LivePanes(), SizeIs(1));
  addin.Stop();
  EXPECT_EQ(s.Leftovers(), "");
}

TEST(AddinHost, APaneThatTheHostDroppedIsMadeAnewByTheNextClick) {
  AddinScene s;
  const FakeShapeRef shape = s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  addin.CloseTaskPane(0);
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  ASSERT_THAT(addin.taskPanes(), SizeIs(2));
  EXPECT_EQ(addin.taskPanes()[0]->references, 0);
  ASSERT_TRUE(s.Run(addin, 1));
  EXPECT_EQ(shape->text->text, u"T(hello)");
}

// ---- Widths ------------------------------------------------------------------------------------

TEST(AddinHost, ADraggedWidthIsThereAgainInTheNextWindowAndAfterARestart) {
  AddinScene s;
  s.AddDeck(u"one");
  s.AddDeck(u"two");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  s.Pass(kPastASaveMs);
  for (std::int32_t width = 530; width <= 700; width += 10) {
    addin.taskPanes()[0]->width = width;
    s.Pass(kPastAPollMs);
    ASSERT_THAT(s.config.Read(), Not(HasSubstr("paneWidthPt"))) << width;
  }
  s.Pass(kPastASaveMs);
  EXPECT_THAT(s.config.Read(), HasSubstr("\"paneWidthPt\": 700"));
  addin.taskPanes()[0]->width = 640;
  addin.Click(u"btnTranslateFullDoc", s.Window(1));
  EXPECT_EQ(addin.taskPanes()[1]->width, 640);
  // Within a second of the drag.
  addin.Stop();
  EXPECT_THAT(s.config.Read(), HasSubstr("\"paneWidthPt\": 640"));
  AddinHost again(s.host.Application(), s.Parts());
  ASSERT_TRUE(again.Start());
  again.Click(u"btnTranslateFullDoc", s.Window(0));
  EXPECT_EQ(again.taskPanes()[0]->width, 640);
}

// ---- The host's end ----------------------------------------------------------------------------

TEST(AddinHost, AHundredLivesLeaveNothingBehind) {
  AddinScene s;
  s.AddDeck(u"hello");
  for (int life = 0; life < 100; ++life) {
    AddinHost addin(s.host.Application(), s.Parts());
    ASSERT_TRUE(addin.Start());
    ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
    ASSERT_TRUE(s.Run(addin, 0));
    const auto taskPanes = addin.taskPanes();
    addin.Stop();
    ASSERT_EQ(taskPanes[0]->references, 0) << life;
    ASSERT_EQ(s.Leftovers(), "") << life;
  }
  EXPECT_THAT(s.beacons, ElementsAre(u"addin:loaded"));
}

TEST(AddinHost, AStopDuringARunAbortsItAndLeavesNothingBehind) {
  AddinScene s;
  const FakeShapeRef shape = s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(s.RunToTheFirstRequest(addin));
  const std::shared_ptr<PlayedPage> page = addin.taskPanes()[0]->browser->page();
  LogCapture log;
  addin.Stop();
  ASSERT_THAT(s.records, SizeIs(1));
  EXPECT_EQ(s.records[0].outcome, RunOutcome::kAborted);
  EXPECT_TRUE(page->closed());
  EXPECT_EQ(log.Count("PptPane run finished"), 1);
  EXPECT_EQ(shape->text->text, u"hello");
  EXPECT_EQ(s.Leftovers(), "");
}

TEST(AddinHost, ADisconnectionWithoutABeginShutdownHidesThePanesAndTheRunGoesOn) {
  AddinScene s;
  const FakeShapeRef shape = s.AddDeck(u"hello");
  AddinHost addin(s.host.Application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", s.Window(0)));
  addin.SayStart(0, test::WholeDeck());
  addin.connection()->OnDisconnection();
  EXPECT_FALSE(addin.taskPanes()[0]->visible);
  EXPECT_EQ(addin.taskPanes()[0]->references, 0);
  ASSERT_TRUE(s.Wait([&] { return !s.records.empty(); }));
  EXPECT_EQ(shape->text->text, u"T(hello)");
  addin.Stop();
  EXPECT_EQ(s.Leftovers(), "");
}

// ---- A deck of ours ----------------------------------------------------------------------------

std::string Saved(Host& host) {
  const std::string path = testing::TempDir() + "addin-" + std::to_string(getpid()) + ".pptx";
  EXPECT_TRUE(host.Save(path));
  std::ifstream file(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  file.close();
  std::remove(path.c_str());
  return bytes;
}

std::unique_ptr<Host> OpenSample() {
  auto host = std::make_unique<Host>(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  EXPECT_TRUE(host->Open(QUILLMARCH_SAMPLES "/quarterly-review.pptx", warnings));
  return host;
}

// As a pane alone writes it, without a shell around.
std::string WrittenByAPane(LoopThread& loop) {
  const std::unique_ptr<Host> host = OpenSample();
  const auto page = std::make_shared<test::ScriptedWebView>();
  bool ended = false;
  HostedPane hosted(host->application(), loop, page, [&](const RunRecord&) { ended = true; });
  page->onMessage = [&](const Wide& json) {
    loop.Post([&hosted, answer = test::AnswerTo(json)] { hosted.Say(answer); });
  };
  hosted.Say(StartMessage(test::WholeDeck()));
  EXPECT_TRUE(loop.PumpUntil([&] { return ended; }, 60000));
  return Saved(*host);
}

TEST(AddinHost, ARealDeckIsTranslatedFromItsRibbonButtonToTheBytesThatAPaneAloneWrites) {
  AddinScene s;
  const std::unique_ptr<Host> host = OpenSample();
  AddinHost addin(host->application(), s.Parts());
  ASSERT_TRUE(addin.Start());
  ASSERT_TRUE(s.OpenPage(addin, u"btnTranslateFullDoc", {}));
  ASSERT_TRUE(s.Run(addin, 0));
  EXPECT_EQ(s.records[0].outcome, RunOutcome::kCompleted);
  EXPECT_THAT(s.records[0].failed, IsEmpty());
  EXPECT_GT(s.records[0].written, 20);
  addin.Stop();
  EXPECT_TRUE(host->Edited());
  const std::string written = Saved(*host);
  EXPECT_GT(written.size(), 10000U);
  EXPECT_TRUE(written == WrittenByAPane(s.loop));
}

}  // namespace

}  // namespace quillmarch::host
