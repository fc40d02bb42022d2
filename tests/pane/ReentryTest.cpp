// A host call may pump messages: timers and page messages then arrive in the midst of a run's own
// steps. Here that happens at every host call of a run, one run for each call.
#include <gtest/gtest.h>

#include "pane/PaneHarness.h"
#include "run/StaGate.h"
#include "support/LogCapture.h"
#include "support/PageAnswers.h"

namespace {

using test::AnswerTo;
using test::PaneHarness;

struct Outcome {
  std::vector<std::string> events;
  std::vector<Wide> texts;
  std::size_t calls = 0;
};

// Runs a deck of two slides; at host call number `at` (1-based, 0 never) `inside` is let in.
template <typename Inside>
Outcome RunWith(PaneHarness& h, std::size_t at, Inside inside) {
  const auto one = h.AddSlide(u"one");
  const auto two = h.AddSlide(u"two");
  std::size_t count = 0;
  bool in = false;
  h.host.onCall = [&](const std::string&) {
    if (in || ++count != at) return;
    in = true;
    inside();
    in = false;
  };
  h.Say(R"({"action":"start"})");
  h.WaitForWorker();
  for (int i = 0; i < 12 && h.pane != nullptr && h.pane->runActive != 0; ++i) h.Tick();
  if (h.pane != nullptr && h.pane->runActive != 0) h.Finish();
  h.host.onCall = {};
  h.RunPosts();
  return {h.MainEvents(), {one->Text(), two->Text()}, count};
}

std::size_t CallsOfARun() {
  PaneHarness h;
  return RunWith(h, 0, [] {}).calls;
}

TEST(Reentry, TimersAndStartsAtEveryHostCallChangeNothing) {
  const std::size_t calls = CallsOfARun();
  ASSERT_GT(calls, 20U);
  for (std::size_t at = 1; at <= calls; ++at) {
    PaneHarness h;
    test::LogCapture log;
    const Outcome outcome = RunWith(h, at, [&] {
      h.pane->OnTimer(CPptPane::kRunTickTimer);
      h.thread.Advance(300);
      h.thread.FireDueTimers();
      h.Say(R"({"action":"start"})");
      h.Say(R"({"action":"requestSelectionPreview"})");
      h.Say(R"({"action":"pause"})");
      h.Say(R"({"action":"resume"})");
    });
    EXPECT_EQ(outcome.events, (std::vector<std::string>{"onRunStarted", "onReady", "onComplete"}))
        << at;
    EXPECT_EQ(outcome.texts, (std::vector<Wide>{u"T(one)", u"T(two)"})) << at;
    EXPECT_EQ(log.Count("PptPane run finished"), 1) << at;
    EXPECT_EQ(log.Count("PptPane start ignored: run in progress"), 1) << at;
    for (const std::string& script : h.page->Scripts()) {
      EXPECT_EQ(script.find("Preview"), std::string::npos) << at;
    }
    EXPECT_FALSE(StaGateHasOwner());
  }
}

TEST(Reentry, ACancelAtEveryHostCallEndsTheRunOnce) {
  const std::size_t calls = CallsOfARun();
  for (std::size_t at = 1; at <= calls; ++at) {
    PaneHarness h;
    test::LogCapture log;
    const Outcome outcome = RunWith(h, at, [&] { h.Say(R"({"action":"cancel"})"); });
    // In the collection the slot is still empty, and after the worker nothing is left to cancel.
    EXPECT_EQ(outcome.events, (std::vector<std::string>{"onRunStarted", "onReady", "onComplete"}))
        << at;
    EXPECT_EQ(log.Count("PptPane run finished"), 1) << at;
  }
}

TEST(Reentry, TheWindowsEndAtEveryHostCallLeavesNothingBehind) {
  const std::size_t calls = CallsOfARun();
  for (std::size_t at = 1; at <= calls; ++at) {
    PaneHarness h;
    test::LogCapture log;
    h.thread.sleepsAreInstant = true;
    bool workerHadEnded = false;
    const std::weak_ptr<CPptPane> weak = h.pane;
    RunWith(h, at, [&] {
      workerHadEnded = h.pane->runControl != nullptr && h.thread.outsideWork() == 0;
      h.pane->OnDestroy();
      h.pane.reset();
    });
    // The step that the window's end came into ends the run, since no tick follows.
    if (workerHadEnded) {
      EXPECT_EQ(log.Count("PptPane run finished"), 1) << at;
    }
    ASSERT_TRUE(h.RunUntil([] { return ReleaseEndedPanes() == 0; })) << at;
    EXPECT_TRUE(weak.expired()) << at;
    EXPECT_EQ(h.thread.timersSet(), 0) << at;
    EXPECT_FALSE(StaGateHasOwner()) << at;
    EXPECT_EQ(h.page->closed, 1) << at;
  }
}

TEST(Reentry, TheWindowsEndInsideATickLetsThatTickEndTheRun) {
  PaneHarness h;
  test::LogCapture log;
  h.AddSlide(u"one");
  h.AddSlide(u"two");
  h.pageAnswers = false;
  h.Say(R"({"action":"start"})");
  ASSERT_TRUE(h.WaitForRequests(1));
  h.SayWide(AnswerTo(h.Requests()[0]));
  ASSERT_TRUE(h.WaitForRequests(2));  // the first slide is ready, the worker waits
  const std::weak_ptr<CPptPane> weak = h.pane;
  h.host.onCall = [&](const std::string&) {
    if (!h.pane) return;
    h.pane->OnDestroy();  // its wait lets the worker end
    h.pane.reset();
  };
  h.Tick();
  h.host.onCall = {};
  EXPECT_FALSE(h.pane);
  EXPECT_EQ(log.Count("PptPane run finished"), 1);
  ASSERT_EQ(h.records.size(), 1U);
  EXPECT_EQ(h.records[0].outcome, RunOutcome::kAborted);
  EXPECT_EQ(ReleaseEndedPanes(), 0U);
  EXPECT_TRUE(weak.expired());
}

TEST(Reentry, ARunIsTickedWhileTheGateIsHeldByItself) {
  PaneHarness h;
  h.AddSlide(u"one");
  bool sawGate = false;
  h.host.onCall = [&](const std::string&) {
    if (!StaGateHasOwner() || sawGate) return;
    sawGate = true;
    h.pane->OnTimer(CPptPane::kRunTickTimer);
    EXPECT_EQ(h.pane->runActive, 1);
  };
  h.Start();
  h.Finish();
  h.host.onCall = {};
  EXPECT_TRUE(sawGate);
}

}  // namespace
