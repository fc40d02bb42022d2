// Whole runs over the headless host, driven through a pane, each with one failing call: no crash,
// one ending, and no text lost or missing without a name.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <tuple>

#include "DeckText.h"
#include "foundation/JsonText.h"
#include "host/driver/HostedPane.h"
#include "host/driver/PanelPage.h"
#include "host/driver/RunRequest.h"
#include "host/model/Host.h"
#include "run/ApplyText.h"
#include "support/FaultyHost.h"
#include "support/ManualHostThread.h"
#include "support/PageAnswers.h"
#include "support/ScriptedWebView.h"

namespace {

using test::FaultMode;
using test::FaultyHost;

// More would not end in a few minutes with every call having its turn.
constexpr std::int64_t kMaxCalls = 1500;
// Every so many turns the deck is saved and read again.
constexpr std::int64_t kSaveEvery = 100;

std::string DeckPath(const char* name) {
  return std::string(FAULT_DECKS) + "/" + name + ".pptx";
}

struct Turn {
  std::int64_t calls = 0;
  bool failed = false;
  std::vector<std::string> events;
  std::vector<RunRecord> records;
  std::set<Wide> sources;  // every text that was sent
};

Turn RunOver(Host& host, FaultMode mode, std::int64_t failAt) {
  Turn turn;
  FaultyHost faults(mode, failAt);
  test::ManualHostThread thread;
  const auto page = std::make_shared<test::ScriptedWebView>();
  HostedPane hosted(faults.Wrap(host.application()), thread, page,
                    [&](const RunRecord& record) { turn.records.push_back(record); });
  page->onMessage = [&](const Wide& json) {
    for (const Wide& text : JsonGetStringArray(json, u"texts")) turn.sources.insert(text);
    const Wide answer = test::AnswerTo(json);
    if (!answer.empty()) thread.Post([&hosted, answer] { hosted.Say(answer); });
  };
  page->onScript = [&](const Wide& script) {
    PageCall call;
    if (ReadPageCall(script, call)) turn.events.push_back(ToUtf8(call.name));
  };
  hosted.Say(StartMessage({.targetFont = u"Arial", .viaPage = true}));
  do {
    thread.RunPosts();
    if (thread.outsideWork() == 0) {
      thread.Advance(CPptPane::kRunTickMs);
      thread.FireDueTimers();
    } else {
      thread.WaitForPostOrOutsideWork(1000);
    }
  } while (hosted.pane().runActive != 0 || thread.HasPosts());
  turn.calls = faults.countedCalls();
  turn.failed = faults.failed();
  return turn;
}

bool EndedWithOneEvent(const Turn& turn) {
  return std::count_if(turn.events.begin(), turn.events.end(), [](const std::string& event) {
           return event == "onComplete" || event == "onError" || event == "onCancelled";
         }) == 1;
}

void ExpectNothingLost(const Turn& turn, const Wide& deck, const std::string& where) {
  std::set<Wide> named;
  for (const FailedUnit& unit : turn.records.front().failed) named.insert(unit.sourceText);
  for (const Wide& source : turn.sources) {
    const bool translated = deck.find(FlattenTranslation(u"T(" + source + u")")) != Wide::npos;
    const bool kept = deck.find(source) != Wide::npos;
    EXPECT_TRUE(translated || named.contains(source)) << where << " unnamed: " << ToUtf8(source);
    EXPECT_TRUE(translated || kept) << where << " lost: " << ToUtf8(source);
  }
}

void ExpectSavedAlike(Host& host, const Wide& deck, const std::string& where) {
  const std::string path =
      std::string(FAULT_DECKS) + "/saved-" + std::to_string(getpid()) + ".pptx";
  const PackageResult<bool> saved = host.Save(path);
  ASSERT_TRUE(saved.ok) << where << saved.error.sentence;
  Host again(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  const PackageResult<bool> opened = again.Open(path, warnings);
  EXPECT_TRUE(opened.ok) << where << opened.error.sentence;
  EXPECT_EQ(DeckText(again.application()), deck) << where;
  std::filesystem::remove(path);
}

class FaultyRun : public testing::TestWithParam<std::tuple<FaultMode, const char*>> {};

TEST_P(FaultyRun, WhateverCallFailsTheRunEndsAndNoTextIsLost) {
  const auto [mode, name] = GetParam();
  std::int64_t calls = 0;
  for (std::int64_t k = 0; k <= calls && !HasFailure(); ++k) {
    const std::string where = "call " + std::to_string(k);
    Host host(*FindPersonality("powerpoint"));
    std::vector<std::string> warnings;
    const PackageResult<bool> opened = host.Open(DeckPath(name), warnings);
    ASSERT_TRUE(opened.ok) << opened.error.sentence;
    const Turn turn = RunOver(host, mode, k);
    EXPECT_TRUE(EndedWithOneEvent(turn)) << where;
    ASSERT_EQ(turn.records.size(), 1U) << where;
    EXPECT_EQ(turn.failed, k != 0) << where;
    const Wide deck = DeckText(host.application());
    ExpectNothingLost(turn, deck, where);
    if (k % kSaveEvery == 0) ExpectSavedAlike(host, deck, where);
    if (k == 0) {
      calls = turn.calls;
      EXPECT_GT(turn.sources.size(), 5U);
      EXPECT_LE(calls, kMaxCalls);
    }
  }
  RecordProperty("calls", static_cast<int>(calls));
}

const char* RoadName(FaultMode mode) {
  switch (mode) {
    case FaultMode::kLateBound:
      return "LateBound";
    case FaultMode::kTyped:
      return "Typed";
    default:
      return "Both";
  }
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultyRun,
                         testing::Combine(testing::Values(FaultMode::kLateBound, FaultMode::kTyped,
                                                          FaultMode::kBoth),
                                          testing::Values("frames-and-groups", "simple-shapes",
                                                          "tables", "scripts-and-charts")),
                         [](const auto& turn) {
                           std::string name = std::string(RoadName(std::get<0>(turn.param))) + "_";
                           for (const char* c = std::get<1>(turn.param); *c != '\0'; ++c)
                             name += *c == '-' ? '_' : *c;
                           return name;
                         });

}  // namespace
