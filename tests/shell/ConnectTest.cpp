#include "shell/CConnect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "foundation/automation/HostId.h"
#include "pane/LivePanes.h"
#include "shell/ShellHarness.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::FakeHost;
using test::LogCapture;
using test::ScriptedObject;
using test::ShellHarness;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(Connection, IdentifiesTheHostAndLogsIt) {
  ShellHarness h;
  LogCapture log;
  EXPECT_EQ(h.connect->OnConnection(h.host.Application()), kOk);
  EXPECT_EQ(HostWord(), u"ppt");
  EXPECT_TRUE(log.Has("PPT OnConnection hostApp=ppt appName=Microsoft PowerPoint"));
  FakeHost wps({u"WPS Presentation"});
  h.connect->OnConnection(wps.Application());
  EXPECT_TRUE(log.Has("PPT OnConnection hostApp=wps appName=WPS Presentation"));
  h.connect->OnConnection(h.host.Application());
}

TEST(Connection, AHostWhoseNameCannotBeReadIsConnectedAllTheSame) {
  ShellHarness h;
  LogCapture log;
  h.host.Fail("Application:Name");
  EXPECT_EQ(h.connect->OnConnection(h.host.Application()), kOk);
  EXPECT_TRUE(log.Has("PPT OnConnection hostApp=ppt appName=(unknown)"));
  ScriptedObject* silent = nullptr;
  const ObjectRef application = ScriptedObject::Make(silent);
  silent->ThrowOnLookUp();
  EXPECT_EQ(h.connect->OnConnection(application), kOk);
  EXPECT_EQ(h.connect->OnConnection({}), kOk);
  EXPECT_EQ(log.Count("PPT OnConnection hostApp=ppt appName=(unknown)"), 3);
}

TEST(Connection, TheFirstOfAProcessTellsTheServiceAndASecondDoesNot) {
  ShellHarness h;
  EXPECT_THAT(h.events, ElementsAre("addin:loaded client"));
  h.connect->OnDisconnection();
  h.connect->OnConnection(h.host.Application());
  CConnect another({h.thread, h.desktop, h.resources});
  another.OnConnection(h.host.Application());
  EXPECT_THAT(h.events, SizeIs(1));
}

TEST(Connection, AnEventThatCannotBeSentDoesNotFailTheLoading) {
  ShellHarness h;
  ForgetAddinLoaded();
  SetBeaconSender([](const AnalyticsBeacon&) { throw std::bad_alloc(); });
  EXPECT_EQ(h.connect->OnConnection(h.host.Application()), kOk);
}

TEST(Connection, HoldsOneReferenceToTheLastApplication) {
  ShellHarness h;
  ScriptedObject* first = nullptr;
  ScriptedObject* second = nullptr;
  const ObjectRef firstRef = ScriptedObject::Make(first);
  const ObjectRef secondRef = ScriptedObject::Make(second);
  h.connect->OnConnection(firstRef);
  EXPECT_EQ(first->references(), 2);
  h.connect->OnConnection(secondRef);
  EXPECT_EQ(first->references(), 1);
  EXPECT_EQ(second->references(), 2);
  h.connect->OnDisconnection();
  EXPECT_EQ(second->references(), 1);
}

class CountedFactory final : public TaskPaneFactory {
 public:
  explicit CountedFactory(int& alive) : alive_(alive) { ++alive_; }
  ~CountedFactory() override { --alive_; }
  ResultCode CreateCTP(const Wide&, const Wide&, const ObjectRef&,
                       std::shared_ptr<TaskPane>&) override {
    return kFail;
  }

 private:
  int& alive_;
};

TEST(Connection, KeepsTheLastFactoryAlone) {
  ShellHarness h;
  LogCapture log;
  int alive = 0;
  EXPECT_EQ(h.connect->CTPFactoryAvailable(std::make_shared<CountedFactory>(alive)), kOk);
  EXPECT_EQ(h.connect->CTPFactoryAvailable(std::make_shared<CountedFactory>(alive)), kOk);
  EXPECT_EQ(alive, 1);
  EXPECT_EQ(log.Count("PPT CTPFactoryAvailable"), 2);
  h.connect->OnDisconnection();
  EXPECT_EQ(alive, 0);
}

TEST(Connection, MakesNoPaneBeforeAButtonIsPressed) {
  ShellHarness h;
  h.connect->OnStartupComplete();
  h.connect->OnAddInsUpdate();
  EXPECT_EQ(h.madeCount(), 0U);
  EXPECT_TRUE(h.connect->panes.empty());
}

TEST(Disconnection, HidesAndReleasesEveryTaskPaneAndForgetsTheHost) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kGlossaryClicked, 1);
  h.ClickWith(ribbon::kOnRibbonLoad, h.ControlIn(0));
  ASSERT_EQ(h.madeCount(), 2U);
  EXPECT_EQ(h.connect->OnDisconnection(), kOk);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_FALSE(h.made(i).task->visible);
    EXPECT_EQ(h.made(i).task->references, 0);
  }
  EXPECT_TRUE(h.connect->panes.empty());
  EXPECT_FALSE(h.connect->hostApp);
  EXPECT_FALSE(h.connect->ribbonUi);
  EXPECT_EQ(h.connect->ctpFactory, nullptr);
}

TEST(Disconnection, ATaskPaneThatCannotBeHiddenIsReleasedAllTheSame) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).task->visibleResult = kFail;
  EXPECT_EQ(h.connect->OnDisconnection(), kOk);
  EXPECT_EQ(h.made(0).task->references, 0);
}

TEST(Disconnection, TwiceOrWithoutAConnectionDoesNoHarm) {
  ShellHarness h;
  EXPECT_EQ(h.connect->OnDisconnection(), kOk);
  EXPECT_EQ(h.connect->OnDisconnection(), kOk);
  EXPECT_EQ(h.connect->OnBeginShutdown(), kOk);
  CConnect fresh({h.thread, h.desktop, h.resources});
  EXPECT_EQ(fresh.OnDisconnection(), kOk);
}

TEST(BeginShutdown, EndsEveryLivePane) {
  ShellHarness h;
  h.AddWindow();
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.Click(ribbon::kTranslateFullDocClicked, 1);
  h.made(0).browser->Complete();
  LogCapture log;
  EXPECT_EQ(h.connect->OnBeginShutdown(), kOk);
  EXPECT_EQ(log.Count("PptPane BeginShutdownEarly"), 2);
  EXPECT_TRUE(h.made(0).pane->shuttingDown());
  EXPECT_TRUE(h.made(1).pane->shuttingDown());
  EXPECT_EQ(h.made(0).browser->page->closed, 1);
}

TEST(BeginShutdown, AfterItNoTimerServesAWidthAnyMore) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.connect->OnBeginShutdown();
  h.made(0).task->widthResult = kOk;
  const PaneWidthState before = h.connect->panes.begin()->second.width;
  h.made(0).task->width = 777;
  h.made(0).pane->OnTimer(CPptPane::kWidthTimer);
  EXPECT_EQ(h.connect->panes.begin()->second.width.lastSeen, before.lastSeen);
}

TEST(BeginShutdown, OfAnotherConnectionLeavesTheWidthHook) {
  ShellHarness h;
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  {
    CConnect another({h.thread, h.desktop, h.resources});
    another.OnBeginShutdown();
  }
  h.made(0).task->width = 777;
  h.made(0).pane->OnTimer(CPptPane::kWidthTimer);
  EXPECT_EQ(h.connect->panes.begin()->second.width.lastSeen, 777);
}

// The host goes while a run's worker hangs in a wait that no shutdown ends.
TEST(BeginShutdown, AWorkerThatHangsKeepsItsPaneAndTheBrowserIsClosedAllTheSame) {
  ShellHarness h;
  h.thread.sleepsAreInstant = true;
  h.bridgeWaitMs = 400;
  h.host.presentations.front()->AddSlide({test::TextShape(u"hello")});
  h.Click(ribbon::kTranslateFullDocClicked, 0);
  h.made(0).browser->Complete();
  CPptPane& pane = *h.made(0).pane;
  pane.OnWebMessageReceived(
      u"{\"action\":\"start\",\"panelMode\":\"slide\",\"targetLang\":\"es\"}");
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  const auto asked = [&] {
    for (const std::string& message : h.made(0).browser->page->Messages()) {
      if (message.find("terminologyResolveRequest") != std::string::npos) return true;
    }
    return false;
  };
  while (!asked() && std::chrono::steady_clock::now() < end) {
    h.thread.RunPosts();
    h.thread.WaitForOutsideWork(1);
  }
  ASSERT_TRUE(asked());
  LogCapture log;
  h.connect->OnBeginShutdown();
  EXPECT_TRUE(log.Has("PptPane shutdown: run worker busy, object kept alive"));
  EXPECT_EQ(h.made(0).browser->page->closed, 1);
  EXPECT_TRUE(pane.run().runActive());
  pane.OnDestroy();
  EXPECT_EQ(ReleaseEndedPanes(), 1U);
}

TEST(Connection, AnyOrderOfItsCallsIsTolerated) {
  ShellHarness h;
  CConnect connect({h.thread, h.desktop, h.resources});
  EXPECT_EQ(connect.OnStartupComplete(), kOk);
  EXPECT_EQ(connect.OnBeginShutdown(), kOk);
  EXPECT_EQ(connect.OnDisconnection(), kOk);
  EXPECT_EQ(connect.CTPFactoryAvailable(nullptr), kOk);
  EXPECT_EQ(connect.OnAddInsUpdate(), kOk);
  connect.WidthTick();
  connect.PrunePanes();
  EXPECT_EQ(connect.OnConnection(h.host.Application()), kOk);
  EXPECT_EQ(connect.OnConnection(h.host.Application()), kOk);
  EXPECT_EQ(connect.OnDisconnection(), kOk);
}

}  // namespace

}  // namespace quillmarch::addin
