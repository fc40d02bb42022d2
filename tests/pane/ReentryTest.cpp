// A host call may pump messages: timers and page messages then arrive in the midst of a run's own
// steps. Here that happens at every host call of a run, one run for each call.
#include <gtest/gtest.h>

#include "pane/PaneHarness.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/PageAnswers.h"

namespace quillmarch::addin {

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
  h.LetIn(at, count, inside);
  h.Say(R"({"action":"start"})");
  h.WaitForWorker();
  for (int i = 0; i < 12 && h.pane != nullptr && h.pane->run().runActive(); ++i) h.Tick();
  if (h.pane != nullptr && h.pane->run().runActive()) h.Finish();
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
      workerHadEnded = h.pane->run().runControl() != nullptr && h.thread.outsideWork() == 0;
      h.pane->OnDestroy();
      h.pane.reset();
    });
    // The step that the window's end came into ends the run, since no tick follows.
    if (workerHadEnded) {
      EXPECT_EQ(log.Count("PptPane run finished"), 1) << at;
      EXPECT_TRUE(weak.expired()) << at;
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

// As RunWith, over three slides of which ticks write the first two while the worker waits for the
// third one's answer. Tells at which host call the ticks began and ended.
struct TickedOutcome : Outcome {
  std::size_t ticksBegan = 0;
  std::size_t ticksEnded = 0;
  std::vector<Wide> textsAfterTicks;
};

template <typename Inside>
TickedOutcome TickedRunWith(PaneHarness& h, std::size_t at, Inside inside) {
  const auto one = h.AddSlide(u"one");
  const auto two = h.AddSlide(u"two");
  const auto three = h.AddSlide(u"three");
  std::size_t count = 0;
  bool in = false;
  h.host.onCall = [&](const std::string&) {
    if (in || ++count != at) return;
    in = true;
    inside();
    in = false;
  };
  h.pageAnswers = false;
  h.Say(R"({"action":"start"})");
  const auto over = [&h] { return h.pane == nullptr || !h.pane->run().runActive(); };
  const auto answer = [&](std::size_t request) {
    h.RunUntil([&] { return over() || h.Requests().size() > request; });
    return !over() && h.Requests().size() > request;
  };
  TickedOutcome outcome;
  for (std::size_t request = 0; request < 2 && answer(request); ++request) {
    h.SayWide(AnswerTo(h.Requests()[request]));
  }
  answer(2);
  outcome.ticksBegan = count;
  // Each slide is shown, written and rested on, 2400 ms in all.
  for (int tick = 0; tick < 45 && !over(); ++tick) h.Tick();
  outcome.ticksEnded = count;
  outcome.textsAfterTicks = {one->Text(), two->Text(), three->Text()};
  if (!over()) h.Say(R"({"action":"resume"})");
  if (answer(2)) h.SayWide(AnswerTo(h.Requests()[2]));
  if (!over()) h.Finish();
  h.host.onCall = {};
  h.RunPosts();
  outcome.events = h.MainEvents();
  outcome.texts = {one->Text(), two->Text(), three->Text()};
  outcome.calls = count;
  return outcome;
}

const std::vector<std::string> kCompleted = {"onRunStarted", "onReady", "onComplete"};
const std::vector<Wide> kAllTexts = {u"T(one)", u"T(two)", u"T(three)"};

TickedOutcome Undisturbed() {
  PaneHarness h;
  TickedOutcome outcome = TickedRunWith(h, 0, [] {});
  EXPECT_EQ(outcome.events, kCompleted);
  EXPECT_EQ(outcome.texts, kAllTexts);
  EXPECT_GT(outcome.ticksBegan, 10U);
  EXPECT_GT(outcome.ticksEnded, outcome.ticksBegan + 10);
  EXPECT_GT(outcome.calls, outcome.ticksEnded + 5);
  return outcome;
}

TEST(ReentryWhileTheWorkerRuns, TimersAndStartsAtEveryHostCallChangeNothing) {
  const std::size_t calls = Undisturbed().calls;
  for (std::size_t at = 1; at <= calls; ++at) {
    PaneHarness h;
    test::LogCapture log;
    const TickedOutcome outcome = TickedRunWith(h, at, [&] {
      h.pane->OnTimer(CPptPane::kRunTickTimer);
      h.thread.Advance(5000);
      h.thread.FireDueTimers();
      h.Say(R"({"action":"start"})");
      h.Say(R"({"action":"startSelection"})");
      h.Say(R"({"action":"requestSelectionPreview"})");
      h.Say(R"({"action":"pause"})");
      h.Say(R"({"action":"resume"})");
    });
    EXPECT_EQ(outcome.events, kCompleted) << at;
    EXPECT_EQ(outcome.texts, kAllTexts) << at;
    EXPECT_EQ(log.Count("PptPane start ignored: run in progress"), 2) << at;
    EXPECT_EQ(log.Count("PptPane run finished"), 1) << at;
    EXPECT_FALSE(StaGateHasOwner());
  }
}

TEST(ReentryWhileTheWorkerRuns,
     ACancelInTheCollectionReachesNothingInATickTheWorkerAndLaterNobody) {
  const TickedOutcome whole = Undisturbed();
  const std::vector<std::string> cancelled = {"onRunStarted", "onReady", "onCancelled"};
  // What is ready is written, also when the cancel comes in the midst of it.
  const std::vector<Wide> ready = {u"T(one)", u"T(two)", u"three"};
  for (std::size_t at = 1; at <= whole.calls; ++at) {
    PaneHarness h;
    bool slotWasEmpty = false;
    const TickedOutcome outcome = TickedRunWith(h, at, [&] {
      slotWasEmpty = h.pane->run().runControl() == nullptr;
      h.Say(R"({"action":"cancel"})");
    });
    const bool inTicks = at > whole.ticksBegan && at <= whole.ticksEnded;
    EXPECT_EQ(slotWasEmpty, at <= whole.ticksBegan) << at;
    EXPECT_EQ(outcome.events, inTicks ? cancelled : kCompleted) << at;
    EXPECT_EQ(outcome.texts, inTicks ? ready : kAllTexts) << at;
    EXPECT_FALSE(StaGateHasOwner());
  }
}

TEST(ReentryWhileTheWorkerRuns, AWindowThatEndsAtEveryHostCallLeavesNothingBehind) {
  const std::size_t calls = Undisturbed().calls;
  for (std::size_t at = 1; at <= calls; ++at) {
    PaneHarness h;
    h.thread.sleepsAreInstant = true;
    const std::weak_ptr<CPptPane> weak = h.pane;
    TickedRunWith(h, at, [&] {
      h.pane->OnDestroy();
      h.pane.reset();
    });
    ASSERT_TRUE(h.RunUntil([] { return ReleaseEndedPanes() == 0; })) << at;
    EXPECT_TRUE(weak.expired()) << at;
    EXPECT_EQ(h.thread.timersSet(), 0) << at;
    EXPECT_FALSE(StaGateHasOwner()) << at;
    EXPECT_EQ(h.page->closed, 1) << at;
  }
}

TEST(ReentryWhileTheWorkerRuns, APauseAtEveryHostCallStopsNoWriteAndEndsWithItsResume) {
  const TickedOutcome whole = Undisturbed();
  for (std::size_t at = 1; at <= whole.calls; ++at) {
    PaneHarness h;
    const TickedOutcome outcome = TickedRunWith(h, at, [&] { h.Say(R"({"action":"pause"})"); });
    EXPECT_EQ(outcome.events, kCompleted) << at;
    EXPECT_EQ(outcome.texts, kAllTexts) << at;
    EXPECT_EQ(outcome.textsAfterTicks, (std::vector<Wide>{u"T(one)", u"T(two)", u"three"})) << at;
  }
}

TEST(Reentry, ARunIsTickedWhileTheGateIsHeldByItself) {
  PaneHarness h;
  h.AddSlide(u"one");
  bool sawGate = false;
  h.host.onCall = [&](const std::string&) {
    if (!StaGateHasOwner() || sawGate) return;
    sawGate = true;
    h.pane->OnTimer(CPptPane::kRunTickTimer);
    EXPECT_TRUE(h.pane->run().runActive());
  };
  h.Start();
  h.Finish();
  h.host.onCall = {};
  EXPECT_TRUE(sawGate);
}

}  // namespace

}  // namespace quillmarch::addin
