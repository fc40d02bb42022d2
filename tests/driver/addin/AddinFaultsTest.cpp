// The add-in's whole life in a host whose calls fail or let anything in, one life for each call.
#include <gtest/gtest.h>

#include "driver/addin/AddinScene.h"
#include "foundation/log/Log.h"
#include "support/FaultyHost.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

using test::AddinScene;
using test::FakeShapeRef;
using test::FaultMode;
using test::FaultyHost;

constexpr std::uint32_t kPastASaveMs = 2500;
// A page that will not come is not waited for longer.
constexpr std::uint32_t kPageMs = 2000;
// How long a run waits for an answer whose question was lost.
constexpr std::uint32_t kBridgeMs = 1500;
// Longer than both of a run's questions.
constexpr std::uint32_t kRunMs = 10000;

// Panes open in two windows, one window runs and the other closes; then the host ends.
struct Life {
  FakeShapeRef first;
  FakeShapeRef second;
  bool paneMade = false;
  bool pageLoaded = false;
  std::vector<std::shared_ptr<HostedTaskPane>> taskPanes;
};

void OpenUnlessFaulty(AddinScene& s, AddinHost& addin, const Wide& button,
                      const ObjectRef& window) {
  const std::size_t before = s.loaded.size();
  addin.Click(button, window);
  s.loop.PumpUntil([&] { return s.loaded.size() > before; }, kPageMs);
}

// `window` gives the context of a click.
template <typename WindowOf>
Life LiveThrough(AddinScene& s, AddinHost& addin, WindowOf window) {
  Life life;
  life.first = s.AddDeck(u"one");
  life.second = s.AddDeck(u"two");
  const auto panes = [&] {
    if (life.taskPanes.size() < addin.taskPanes().size()) life.taskPanes = addin.taskPanes();
    return addin.taskPanes().size();
  };
  addin.Start();
  OpenUnlessFaulty(s, addin, u"btnTranslateFullDoc", window(0));
  life.paneMade = panes() > 0;
  life.pageLoaded = !s.loaded.empty();
  if (life.pageLoaded && panes() > 0) {
    const std::size_t before = s.records.size();
    addin.SayStart(0, test::WholeDeck());
    s.loop.PumpUntil([&] { return s.records.size() > before; }, kRunMs);
  }
  OpenUnlessFaulty(s, addin, u"btnGlossary", window(1));
  if (panes() > 1) addin.CloseTaskPane(1);
  s.CloseWindow(1);
  if (panes() > 0) addin.taskPanes()[0]->width = 640;
  OpenUnlessFaulty(s, addin, u"btnAccount", window(0));
  s.Pass(kPastASaveMs);
  panes();
  addin.Stop();
  s.WaitForHungWorkers();
  return life;
}

void ExpectAllLetGo(const AddinScene& s, const Life& life) {
  EXPECT_EQ(s.Leftovers(), "");
  for (const auto& task : life.taskPanes) {
    EXPECT_EQ(task->references, 0);
    EXPECT_FALSE(task->visible);
  }
}

// ---- Calls that fail ---------------------------------------------------------------------------

struct Fault {
  FaultMode mode;
  const char* name;
};

class FaultyLife : public testing::TestWithParam<Fault> {};

TEST_P(FaultyLife, WhateverCallFailsNothingIsLostOrLeftBehindAndTheNextLifeIsWhole) {
  std::int64_t calls = 0;
  for (std::int64_t k = 0; k <= calls && !HasFailure(); ++k) {
    SCOPED_TRACE("call " + std::to_string(k));
    AddinScene s;
    FaultyHost faults(GetParam().mode, k);
    AddinHostParts parts = s.Parts();
    parts.bridgeWaitMs = kBridgeMs;
    parts.answer = [&](const char*) { return faults.FailsNow(false, 0) ? kHostException : kOk; };
    Life life;
    {
      AddinHost addin(faults.Wrap(s.host.Application()), std::move(parts));
      life = LiveThrough(s, addin, [&](std::size_t i) { return faults.Wrap(s.Window(i)); });
    }
    EXPECT_EQ(faults.failed(), k != 0);
    ExpectAllLetGo(s, life);
    EXPECT_LE(s.desktop.messages.size(), 1U);
    // Either whole or as it was; what was read and did not reach the deck is named.
    const Wide text = life.first->text->text;
    EXPECT_TRUE(text == u"one" || text == u"T(one)") << ToUtf8(text);
    EXPECT_EQ(life.second->text->text, u"two");
    for (const RunRecord& record : s.records) {
      if (record.outcome == RunOutcome::kCompleted && record.units > 0) {
        EXPECT_EQ(text == u"T(one)", record.failed.empty());
      }
    }
    if (k == 0) {
      EXPECT_EQ(text, u"T(one)");
      EXPECT_EQ(s.loaded.size(), 3U);
      EXPECT_NE(s.config.Read().find("640"), std::string::npos);
      calls = faults.countedCalls();
    }
    // One failed call does not outlast its life.
    AddinHost again(s.host.Application(), s.Parts());
    ASSERT_TRUE(again.Start());
    ASSERT_TRUE(s.OpenPage(again, u"btnTranslateFullDoc", s.Window(0)));
    ASSERT_TRUE(s.Run(again, 0));
    EXPECT_EQ(life.first->text->text, u"T(" + text + u")");
  }
  RecordProperty("calls", static_cast<int>(calls));
  EXPECT_GT(calls, GetParam().mode == FaultMode::kTyped ? 50 : 20);
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultyLife,
                         testing::Values(Fault{FaultMode::kLateBound, "LateBound"},
                                         Fault{FaultMode::kTyped, "Typed"},
                                         Fault{FaultMode::kBoth, "Both"}),
                         [](const auto& fault) { return fault.param.name; });

// ---- Calls that let anything in ----------------------------------------------------------------

struct Intruder {
  const char* name;
  void (*act)(AddinScene&, AddinHost&);
};

class EnteredLife : public testing::TestWithParam<Intruder> {};

TEST_P(EnteredLife, AtWhateverCallItComesNothingIsLeftBehind) {
  std::int64_t calls = 0;
  for (std::int64_t k = 0; k <= calls && !HasFailure(); ++k) {
    SCOPED_TRACE("call " + std::to_string(k));
    AddinScene s;
    std::int64_t count = 0;
    std::function<void()> enter;
    const auto counted = [&] {
      if (++count == k && enter) enter();
    };
    AddinHostParts parts = s.Parts();
    parts.bridgeWaitMs = kBridgeMs;
    parts.answer = [&](const char*) {
      counted();
      return kOk;
    };
    Life life;
    {
      AddinHost addin(s.host.Application(), std::move(parts));
      enter = [&] { GetParam().act(s, addin); };
      s.host.onCall = [&](const std::string&) { counted(); };
      life = LiveThrough(s, addin, [&](std::size_t i) { return s.Window(i); });
      s.host.onCall = {};
    }
    if (k == 0) calls = count;
    ExpectAllLetGo(s, life);
    const Wide text = life.first->text->text;
    EXPECT_TRUE(text == u"one" || text == u"T(one)") << ToUtf8(text);
  }
  EXPECT_GT(calls, 50);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, EnteredLife,
    testing::Values(
        Intruder{"ADisconnection",
                 [](AddinScene&, AddinHost& addin) {
                   if (addin.connection() != nullptr) addin.connection()->OnDisconnection();
                 }},
        Intruder{"TheBeginOfAShutdown",
                 [](AddinScene&, AddinHost& addin) {
                   if (addin.connection() != nullptr) addin.connection()->OnBeginShutdown();
                 }},
        Intruder{"AHostThatLetsGoOfUsAltogether",
                 [](AddinScene&, AddinHost& addin) { addin.Stop(); }},
        Intruder{"TheEndOfTheTaskPanes",
                 [](AddinScene&, AddinHost& addin) {
                   for (std::size_t i = 0; i < addin.taskPanes().size(); ++i) {
                     addin.CloseTaskPane(i);
                   }
                 }},
        Intruder{"AnotherClick",
                 [](AddinScene& s, AddinHost& addin) { addin.Click(u"btnSupport", s.Window(0)); }},
        Intruder{"WaitingTimersAndPosts", [](AddinScene& s, AddinHost&) { s.Pass(700); }}),
    [](const auto& intruder) { return intruder.param.name; });

}  // namespace

}  // namespace quillmarch::host
