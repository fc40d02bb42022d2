// Whole runs over the headless host, driven through a pane, each with one failing call: no crash,
// one ending, and no text lost or missing without a name.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <tuple>

#include "faults/DeckText.h"
#include "faults/FaultyTurn.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

using test::FaultMode;

// More would not end in a few minutes with every call having its turn.
constexpr std::int64_t kMaxCalls = 1500;
// Every so many turns the deck is saved and read again.
constexpr std::int64_t kSaveEvery = 100;

std::string DeckPath(const char* name) {
  return std::string(FAULT_DECKS) + "/" + name + ".pptx";
}

void ExpectSavedAlike(Host& host, const Wide& deck, const std::string& where) {
  const std::string path =
      std::string(FAULT_DECKS) + "/saved-" + std::to_string(getpid()) + ".pptx";
  const Result<void> saved = host.Save(path);
  ASSERT_TRUE(saved.ok()) << where << saved.error().words;
  Host again(*FindPersonality("powerpoint"));
  std::vector<std::string> warnings;
  const Result<void> opened = again.Open(path, warnings);
  EXPECT_TRUE(opened.ok()) << where << opened.error().words;
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
    const Result<void> opened = host.Open(DeckPath(name), warnings);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
    const Turn turn = RunOver(host, mode, k);
    const Wide deck = DeckText(host.application());
    for (const std::string& wrong : Wrongs(turn, deck, k)) ADD_FAILURE() << where << ": " << wrong;
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

}  // namespace quillmarch::host
