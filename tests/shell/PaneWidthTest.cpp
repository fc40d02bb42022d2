#include "shell/PaneWidth.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "foundation/automation/HostId.h"
#include "shell/ShellHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeHost;
using test::FakeTaskPane;
using test::LogCapture;
using test::ShellHarness;
using test::TaskPaneState;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t kPollMs = 300;

class PaneWidth : public testing::Test {
 protected:
  // One poll, 300 ms behind the last.
  WidthPoll Next() {
    now_ += kPollMs;
    return Poll(state_, pane_, now_);
  }
  WidthPoll NextAt(std::int32_t width) {
    task_->width = width;
    return Next();
  }
  // Polls until something other than nothing comes of it, at most `polls` times.
  WidthPoll Within(int polls) {
    for (int i = 0; i < polls; ++i) {
      const WidthPoll result = Next();
      if (result != WidthPoll::kNone) return result;
    }
    return WidthPoll::kNone;
  }
  void BeginOffice(std::int32_t width) { BeginWidth(state_, pane_, width, false); }
  void BeginWps(std::int32_t width) { BeginWidth(state_, pane_, width, true); }
  std::int32_t Saved() {
    bool fromFile = false;
    const std::int32_t width = ReadPaneWidth(fromFile);
    return fromFile ? width : 0;
  }

  UserConfigFile config_;
  std::shared_ptr<TaskPaneState> task_ = std::make_shared<TaskPaneState>();
  FakeTaskPane pane_{task_};
  PaneWidthState state_;
  std::uint64_t now_ = 100000;
};

// ---- The beginning -----------------------------------------------------------------------------

TEST_F(PaneWidth, InPowerPointTheWidthIsAssignedAtOnce) {
  LogCapture log;
  BeginOffice(520);
  EXPECT_THAT(task_->widthsPut, ElementsAre(520));
  EXPECT_EQ(state_.target, 520);
  EXPECT_EQ(state_.lastApplied, 520);
  EXPECT_EQ(state_.lastSaved, 520);
  EXPECT_EQ(state_.lastHandled, 520);
  EXPECT_EQ(state_.grace, 2);
  EXPECT_FALSE(state_.reapplying);
  EXPECT_EQ(log.Count("PPT pane width begin pt=520 host=office"), 1);
}

TEST_F(PaneWidth, InWpsNothingIsAssignedBeforeTheFirstPoll) {
  LogCapture log;
  BeginWps(520);
  EXPECT_THAT(task_->widthsPut, IsEmpty());
  EXPECT_TRUE(state_.reapplying);
  EXPECT_EQ(state_.triesLeft, 6);
  EXPECT_EQ(log.Count("PPT pane width begin pt=520 host=wps"), 1);
}

TEST_F(PaneWidth, ABeginningForgetsTheLastState) {
  BeginWps(400);
  Next();
  BeginOffice(600);
  EXPECT_FALSE(state_.hasApplied);
  EXPECT_EQ(state_.triesLeft, 0);
}

// ---- Enforcing ---------------------------------------------------------------------------------

TEST_F(PaneWidth, ATryGoesByWayOfOnePointMore) {
  BeginWps(520);
  task_->takesWidth = false;
  task_->width = 300;
  EXPECT_EQ(Next(), WidthPoll::kReapply);
  EXPECT_THAT(task_->widthsPut, ElementsAre(521, 520));
  EXPECT_EQ(state_.triesLeft, 5);
  EXPECT_EQ(state_.lastSeen, 300);  // as read before the assignment
  EXPECT_TRUE(state_.hasApplied);
}

TEST_F(PaneWidth, WithinTwoPointsOfTheTargetItIsDone) {
  for (const std::int32_t width : {518, 519, 520, 521, 522}) {
    BeginWps(520);
    EXPECT_EQ(NextAt(width), WidthPoll::kDone) << width;
    EXPECT_EQ(state_.lastSaved, 520);
    EXPECT_EQ(state_.lastHandled, width);
    EXPECT_FALSE(state_.reapplying);
    EXPECT_EQ(state_.grace, 2);
  }
  for (const std::int32_t width : {517, 523}) {
    BeginWps(520);
    EXPECT_NE(NextAt(width), WidthPoll::kDone) << width;
  }
}

TEST_F(PaneWidth, AHostThatIgnoresAllAssignmentsIsGivenUpAfterSixTriesAndItsWidthCanBeSaved) {
  BeginWps(520);
  task_->takesWidth = false;
  task_->width = 300;
  for (int i = 0; i < 5; ++i) EXPECT_EQ(Next(), WidthPoll::kReapply);
  EXPECT_EQ(Next(), WidthPoll::kGiveUp);
  EXPECT_EQ(task_->widthsPut.size(), 12U);
  EXPECT_TRUE(state_.reapplying);  // the next poll may still find the width reached
  EXPECT_EQ(Next(), WidthPoll::kGiveUp);
  EXPECT_FALSE(state_.reapplying);
  EXPECT_EQ(task_->widthsPut.size(), 12U);
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  EXPECT_EQ(Saved(), 300);
}

TEST_F(PaneWidth, AWidthThatIsReachedAfterTheLastTryIsDone) {
  BeginWps(520);
  task_->takesWidth = false;
  task_->width = 300;
  for (int i = 0; i < 6; ++i) Next();
  EXPECT_EQ(NextAt(520), WidthPoll::kDone);
}

TEST_F(PaneWidth, AUserWhoDragsDuringTheTriesStopsThemAtOnce) {
  BeginWps(520);
  task_->takesWidth = false;
  task_->width = 300;
  Next();
  EXPECT_EQ(NextAt(350), WidthPoll::kUserTakeover);
  EXPECT_FALSE(state_.reapplying);
  EXPECT_EQ(state_.triesLeft, 0);
  EXPECT_EQ(state_.lastSeen, 350);
  Within(10);
  EXPECT_EQ(task_->widthsPut.size(), 2U);
}

TEST_F(PaneWidth, AChangeBeforeTheFirstTryOrToAWidthThatIsNotRealIsNoUser) {
  BeginWps(520);
  task_->takesWidth = false;
  EXPECT_EQ(NextAt(340), WidthPoll::kReapply);
  EXPECT_EQ(NextAt(199), WidthPoll::kReapply);
  EXPECT_EQ(NextAt(200), WidthPoll::kUserTakeover);
}

TEST_F(PaneWidth, WithoutATargetATryAssignsNothing) {
  BeginWps(0);
  EXPECT_EQ(NextAt(300), WidthPoll::kReapply);
  EXPECT_THAT(task_->widthsPut, IsEmpty());
}

// ---- The user's will ---------------------------------------------------------------------------

TEST_F(PaneWidth, TheFirstPollsAfterAnAssignmentAreNotJudged) {
  BeginOffice(520);
  EXPECT_EQ(NextAt(700), WidthPoll::kNone);
  EXPECT_EQ(Next(), WidthPoll::kNone);
  EXPECT_EQ(state_.grace, 0);
  EXPECT_EQ(state_.lastChangeTick, now_);  // the second one still counts as a change
}

TEST_F(PaneWidth, ADragIsSavedOnlyWhenTheWidthHasHeldForASecond) {
  BeginOffice(520);
  Next();
  Next();
  for (std::int32_t width = 530; width < 700; width += 10) {
    EXPECT_EQ(NextAt(width), WidthPoll::kNone);
  }
  EXPECT_EQ(Saved(), 0);
  const std::uint64_t changed = now_;
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  EXPECT_EQ(now_ - changed, 1200U);  // the first poll of at least 1000 ms
  EXPECT_EQ(Saved(), 690);
  EXPECT_TRUE(state_.saveOk);
  EXPECT_EQ(Within(20), WidthPoll::kNone);
}

TEST_F(PaneWidth, AThousandMillisecondsAreEnough) {
  BeginOffice(520);
  state_.grace = 0;
  task_->width = 600;
  Poll(state_, pane_, 1000);
  EXPECT_EQ(Poll(state_, pane_, 1999), WidthPoll::kNone);
  EXPECT_EQ(Poll(state_, pane_, 2000), WidthPoll::kSaved);
}

TEST_F(PaneWidth, ACollapseIsNoise) {
  BeginOffice(520);
  Within(10);
  task_->width = 600;
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  task_->width = 150;
  EXPECT_EQ(Within(10), WidthPoll::kSkipNoise);
  EXPECT_EQ(Within(10), WidthPoll::kNone);
  EXPECT_EQ(Saved(), 600);
  task_->width = 199;
  EXPECT_EQ(Within(10), WidthPoll::kSkipNoise);
}

TEST_F(PaneWidth, AWidthBelowTheRangeIsSavedAtItsEndAndOnceOnly) {
  BeginOffice(520);
  Within(5);
  task_->width = 230;
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  EXPECT_EQ(Saved(), 240);
  EXPECT_EQ(state_.lastSaved, 230);
  config_.Remove();
  task_->width = 150;
  Within(10);
  task_->width = 230;
  EXPECT_EQ(Within(10), WidthPoll::kNone);
  EXPECT_EQ(Saved(), 0);
}

TEST_F(PaneWidth, AWidthAboveTheRangeIsSavedAtItsEnd) {
  BeginOffice(520);
  Within(5);
  task_->width = 2000;
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  EXPECT_EQ(Saved(), 1600);
  EXPECT_EQ(state_.lastSaved, 2000);
}

TEST_F(PaneWidth, TheWidthThatWasAssignedIsNotSaved) {
  BeginOffice(520);
  EXPECT_EQ(Within(20), WidthPoll::kNone);
  EXPECT_EQ(Saved(), 0);
}

TEST_F(PaneWidth, AWidthThatCannotBeReadEndsThePollInSilence) {
  BeginOffice(520);
  const PaneWidthState before = state_;
  task_->widthResult = kFail;
  EXPECT_EQ(Next(), WidthPoll::kNone);
  task_->widthResult = kOk;
  EXPECT_EQ(NextAt(0), WidthPoll::kNone);
  EXPECT_EQ(NextAt(-5), WidthPoll::kNone);
  EXPECT_EQ(state_.grace, before.grace);
  EXPECT_EQ(state_.lastSeen, before.lastSeen);
}

TEST_F(PaneWidth, AFailedSaveIsKeptWithItsErrorAndNotTriedAgain) {
  BeginOffice(520);
  Within(5);
  // A folder where the file should be.
  std::filesystem::create_directories(std::filesystem::path(ConfigPath()) / u"x");
  task_->width = 600;
  EXPECT_EQ(Within(10), WidthPoll::kSaved);
  EXPECT_FALSE(state_.saveOk);
  EXPECT_NE(state_.saveError, 0U);
  EXPECT_EQ(Within(20), WidthPoll::kNone);
}

// ---- The log -----------------------------------------------------------------------------------

TEST_F(PaneWidth, EachResultHasItsLine) {
  LogCapture log;
  PaneWidthState state;
  state.target = 520;
  state.triesLeft = 3;
  state.lastSeen = 231;
  state.saveOk = true;
  LogWidthPoll(WidthPoll::kNone, state);
  LogWidthPoll(WidthPoll::kReapply, state);
  LogWidthPoll(WidthPoll::kDone, state);
  LogWidthPoll(WidthPoll::kGiveUp, state);
  LogWidthPoll(WidthPoll::kUserTakeover, state);
  LogWidthPoll(WidthPoll::kSaved, state);
  state.saveOk = false;
  state.saveError = 5;
  LogWidthPoll(WidthPoll::kSaved, state);
  LogWidthPoll(WidthPoll::kSkipNoise, state);
  const std::string path = ToUtf8(ConfigPath());
  EXPECT_THAT(log.lines(),
              ElementsAre("PaneWidth reapply -> 520 try-left=3", "PaneWidth reapply done at 231",
                          "PaneWidth reapply give-up (target=520)",
                          "PaneWidth reapply give-up (user-takeover cur=231)",
                          "PaneWidth save pt=231 ok=1 err=0 file=" + path,
                          "PaneWidth save pt=231 ok=0 err=5 file=" + path,
                          "PaneWidth skip-noise cur=231 (<200)"));
}

// ---- The connection's side ---------------------------------------------------------------------

TEST(ConnectWidth, TheFirstPaneOpensAtTheFilesWidthOrTheDefault) {
  ShellHarness h;
  LogCapture log;
  EXPECT_EQ(h.connect->LoadInitialWidth(), 520);
  const std::string path = ToUtf8(ConfigPath());
  EXPECT_TRUE(log.Has("PaneWidth load pt=520 source=default file=" + path));
  std::uint32_t ignored = 0;
  WritePaneWidth(640, ignored);
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_TRUE(log.Has("PaneWidth load pt=640 source=file file=" + path));
  EXPECT_EQ(h.made(0).task->width, 640);
  EXPECT_EQ(log.Count("PPT pane width begin pt=640 host=office"), 1);
}

TEST(ConnectWidth, APaneInASecondWindowOpensAtTheFirstsLiveWidth) {
  ShellHarness h;
  h.AddWindow();
  std::uint32_t ignored = 0;
  WritePaneWidth(640, ignored);
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 333;
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  EXPECT_EQ(h.made(1).task->width, 333);
  EXPECT_TRUE(log.Has("PaneWidth initial from live pane pt=333"));
}

TEST(ConnectWidth, OfSeveralPanesTheFirstGivesTheWidth) {
  ShellHarness h;
  h.AddWindow();
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  h.made(0).task->width = 333;
  h.made(1).task->width = 444;
  h.Click(ribbon::kTranslateFullDocClicked, 2);
  EXPECT_EQ(h.made(2).task->width, 333);
}

TEST(ConnectWidth, ACollapsedOrUnreadablePaneIsNoSourceOfAWidth) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 199;
  EXPECT_EQ(h.connect->LoadInitialWidth(), 520);
  h.made(0).task->width = 400;
  h.made(0).task->widthResult = kFail;
  EXPECT_EQ(h.connect->LoadInitialWidth(), 520);
}

TEST(ConnectWidth, TheTimerOfAPaneLooksAtEveryPaneAndLogs) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  h.made(0).task->width = 610;
  h.made(1).task->width = 620;
  LogCapture log;
  for (int i = 0; i < 8; ++i) {
    h.thread.Advance(kPollMs);
    h.thread.FireDueTimers();
  }
  EXPECT_EQ(log.CountContaining("PaneWidth save pt=610 ok=1 err=0"), 1);
  EXPECT_EQ(log.CountContaining("PaneWidth save pt=620 ok=1 err=0"), 1);
}

TEST(ConnectWidth, ASecondClickKeepsTheUsersWidthAndLooksAfterItAgain) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 610;
  SetPaneWidthHook({});  // as another connection leaves it behind
  LogCapture log;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  EXPECT_EQ(h.made(0).task->width, 610);
  EXPECT_EQ(log.CountContaining("PPT pane width begin"), 0);
  for (int i = 0; i < 8; ++i) {
    h.thread.Advance(kPollMs);
    h.thread.FireDueTimers();
  }
  EXPECT_EQ(log.CountContaining("PaneWidth save pt=610 ok=1 err=0"), 1);
}

TEST(ConnectWidth, WithSeveralPanesASaveStillTakesASecond) {
  ShellHarness h;
  for (int i = 0; i < 3; ++i) h.AddWindow();
  for (std::size_t i = 0; i < 4; ++i) h.Click(ribbon::kTranslateFullDocClicked, i);
  // Four timers poll four times as often; grace is over soon, the stable time is not.
  h.thread.Advance(kPollMs);
  h.thread.FireDueTimers();
  h.made(0).task->width = 610;
  LogCapture log;
  for (int i = 0; i < 4; ++i) {
    h.thread.Advance(kPollMs);
    h.thread.FireDueTimers();
  }
  EXPECT_EQ(log.CountContaining("PaneWidth save"), 0);
  h.thread.Advance(kPollMs);
  h.thread.FireDueTimers();
  EXPECT_EQ(log.CountContaining("PaneWidth save pt=610"), 1);
}

TEST(ConnectWidth, InWpsTheWidthIsEnforcedByTheTimer) {
  FakeHost wps({u"WPS Presentation"});
  ShellHarness h;
  h.connect->OnConnection(wps.Application());
  h.connect->hostApp = h.host.Application();
  h.takesWidth = false;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  LogCapture log;
  for (int i = 0; i < 7; ++i) {
    h.thread.Advance(kPollMs);
    h.thread.FireDueTimers();
  }
  EXPECT_TRUE(log.Has("PaneWidth reapply -> 520 try-left=5"));
  EXPECT_TRUE(log.Has("PaneWidth reapply -> 520 try-left=1"));
  EXPECT_EQ(log.Count("PaneWidth reapply give-up (target=520)"), 2);
  DetectHost(h.host.Application().get());
}

TEST(ConnectWidth, ClosingTheHostWithinASecondOfADragStillSaves) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 700;
  LogCapture log;
  h.connect->OnBeginShutdown();
  EXPECT_TRUE(log.Has("PaneWidth shutdown-save pt=700"));
  bool fromFile = false;
  EXPECT_EQ(ReadPaneWidth(fromFile), 700);
  h.connect->OnDisconnection();
  EXPECT_EQ(log.CountContaining("shutdown-save"), 1);
}

TEST(ConnectWidth, TheDisconnectionSavesToo) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 230;
  LogCapture log;
  h.connect->OnDisconnection();
  EXPECT_TRUE(log.Has("PaneWidth shutdown-save pt=230"));
  bool fromFile = false;
  EXPECT_EQ(ReadPaneWidth(fromFile), 240);
}

TEST(ConnectWidth, AWidthThatTheEndSavedCountsAsJudged) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->width = 700;
  h.connect->SaveAllOnShutdown();
  const PaneWidthState& state = h.connect->panes.begin()->second.width;
  EXPECT_EQ(state.lastHandled, 700);
  EXPECT_EQ(state.lastSaved, 700);
  EXPECT_TRUE(state.saveOk);
}

TEST(ConnectWidth, TheEndDoesNotSaveWhatIsSavedOrNotReal) {
  ShellHarness h;
  h.AddWindow();
  h.AddWindow();
  for (std::size_t i = 0; i < 3; ++i) h.Click(ribbon::kTranslateFullDocClicked, i);
  h.made(1).task->width = 150;
  h.made(2).task->widthResult = kFail;
  h.connect->OnBeginShutdown();
  bool fromFile = true;
  ReadPaneWidth(fromFile);
  EXPECT_FALSE(fromFile);
}

TEST(ConnectWidth, APaneThatGoesInsideItsOwnPollIsNotTouchedAgain) {
  ShellHarness h;
  FakeHost wps({u"WPS Presentation"});
  h.connect->OnConnection(wps.Application());
  h.connect->hostApp = h.host.Application();
  h.takesWidth = false;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->onPutWidth = [&] {
    h.made(0).task->onPutWidth = {};
    h.connect->OnDisconnection();
  };
  h.connect->WidthTick();
  EXPECT_EQ(h.made(0).task->references, 0);
  DetectHost(h.host.Application().get());
}

}  // namespace

}  // namespace quillmarch::addin
