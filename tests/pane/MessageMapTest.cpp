#include "pane/MessageMap.h"

#include <gtest/gtest.h>

#include "pane/HandOver.h"
#include "pane/PaneHarness.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::PaneHarness;

constexpr std::uint32_t kCommand = 0x0111;      // WM_COMMAND
constexpr std::uint32_t kUserMessage = 0x0400;  // WM_USER
constexpr std::uintptr_t kWindow = 0xCAFE;

class PaneMessages : public testing::Test {
 protected:
  ~PaneMessages() override {
    SetPaneWidthHook({});
    if (pane_->HasWindow()) pane_->OnDestroy();
  }

  MessageRoute Send(std::uint32_t message, std::uintptr_t wParam = 0, std::intptr_t lParam = 0) {
    return pane_->OnWindowMessage({kWindow, message, wParam, lParam, 0}).route;
  }

  PaneHarness h_;
  std::shared_ptr<CPptPane> pane_ = CPptPane::Create(h_.Surroundings());
};

TEST_F(PaneMessages, TheCreationBeginsTheBrowserAndTheWidthTimer) {
  LogCapture log;
  const int timers = h_.thread.timersSet();
  EXPECT_EQ(Send(WindowMessage::kCreate), MessageRoute::kHandled);
  EXPECT_TRUE(log.Has("CPptPane WM_CREATE"));
  EXPECT_EQ(pane_->windowHandle(), kWindow);
  EXPECT_TRUE(pane_->browser().webViewStarted());
  EXPECT_EQ(h_.thread.timersSet(), timers + 1);
}

TEST_F(PaneMessages, ANewSizePutsTheBrowserIntoTheWholeClientArea) {
  ClientSize size{10, 20};
  PaneSurroundings surroundings = h_.Surroundings();
  surroundings.clientSize = [&](const CPptPane&) { return size; };
  pane_ = CPptPane::Create(surroundings);
  EXPECT_EQ(Send(WindowMessage::kSize), MessageRoute::kHandled);  // no browser yet
  pane_->browser().AttachWebView(h_.page, h_.page);
  size = {321, 654};
  EXPECT_EQ(Send(WindowMessage::kSize, 0, 0x00010001), MessageRoute::kHandled);
  EXPECT_EQ(h_.page->width, 321);
  EXPECT_EQ(h_.page->height, 654);
}

TEST_F(PaneMessages, EveryTimerIsHandledAndTheFirstCallsTheWidthHook) {
  int calls = 0;
  EXPECT_EQ(Send(WindowMessage::kTimer, CPptPane::kWidthTimer), MessageRoute::kHandled);
  SetPaneWidthHook([&](CPptPane&) { ++calls; });
  for (const std::uintptr_t timer : {0U, 1U, 2U, 3U, 4U, 77U}) {
    EXPECT_EQ(Send(WindowMessage::kTimer, timer), MessageRoute::kHandled);
  }
  EXPECT_EQ(calls, 1);
}

TEST_F(PaneMessages, TheDestructionEndsThePane) {
  Send(WindowMessage::kCreate);
  pane_->browser().AttachWebView(h_.page, h_.page);
  EXPECT_EQ(Send(WindowMessage::kDestroy), MessageRoute::kHandled);
  EXPECT_FALSE(pane_->HasWindow());
  EXPECT_TRUE(pane_->shuttingDown());
  EXPECT_EQ(h_.page->closed, 1);
}

TEST_F(PaneMessages, CallsStillWaitingAreDestroyedUnrunByTheDestruction) {
  Send(WindowMessage::kCreate);
  bool ran = false;
  const auto held = std::make_shared<int>(1);
  PostToPane(pane_->window(), [&ran, held] { ran = true; });
  EXPECT_EQ(held.use_count(), 2);
  Send(WindowMessage::kDestroy);
  EXPECT_EQ(held.use_count(), 1);
  h_.RunPosts();
  EXPECT_FALSE(ran);
}

TEST_F(PaneMessages, AMessageThatOnlySaysItHoldsACallDoesNothing) {
  EXPECT_EQ(Send(WindowMessage::kPosted), MessageRoute::kHandled);
  EXPECT_EQ(Send(WindowMessage::kPosted, 0, 0x1234), MessageRoute::kHandled);
}

TEST_F(PaneMessages, AnyOtherMessageGoesToTheStockMap) {
  EXPECT_EQ(Send(kCommand), MessageRoute::kStock);
  EXPECT_EQ(Send(0x000F), MessageRoute::kStock);
}

TEST_F(PaneMessages, OfAnotherMapNothingIsHandled) {
  const MessageAnswer answer = pane_->OnWindowMessage({kWindow, WindowMessage::kCreate, 0, 0, 1});
  EXPECT_EQ(answer.route, MessageRoute::kNotHandled);
  EXPECT_FALSE(pane_->HasWindow());
}

TEST_F(PaneMessages, AReflectedMessageGoesToTheDefaultProcedureAsWhatItWas) {
  const MessageAnswer answer =
      RouteAfterStock({kWindow, WindowMessage::kReflectedBase + kCommand, 1, 2, 0});
  EXPECT_EQ(answer.route, MessageRoute::kDefault);
  EXPECT_EQ(answer.message, kCommand);
}

TEST_F(PaneMessages, WhatIsNotReflectedIsNobodys) {
  for (const std::uint32_t message : {kCommand, WindowMessage::kReflectedBase - 1,
                                      WindowMessage::kReflectedBase + kUserMessage}) {
    EXPECT_EQ(RouteAfterStock({kWindow, message, 0, 0, 0}).route, MessageRoute::kNotHandled);
  }
}

TEST_F(PaneMessages, TheLastReleaseEndsRequestsAndLetsGoOfTheHost) {
  pane_->FinalRelease();
  EXPECT_TRUE(pane_->shuttingDown());
  EXPECT_FALSE(pane_->hostApp());
}

TEST(PaneObject, ARunHoldsTheObjectThatTheHostKnowsThePaneBy) {
  PaneHarness h;
  const auto object = std::make_shared<int>(1);
  PaneSurroundings surroundings = h.Surroundings();
  surroundings.holdObject = [&](CPptPane&) { return object; };
  HandOverBlock().app = h.host.Application();
  HandOverBlock().context = h.pane->windowContext();
  h.pane->OnDestroy();
  h.pane = CPptPane::Create(surroundings);
  HandOverBlock() = {};
  h.OpenWindow();
  h.AddSlide(u"hello");
  h.pageAnswers = false;
  h.Start();
  EXPECT_EQ(object.use_count(), 2);
  h.pageAnswers = true;
  h.pane->run().CancelRun();
  h.Finish();
  EXPECT_EQ(object.use_count(), 1);
}

}  // namespace

}  // namespace quillmarch::addin
