#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "support/FaultyHost.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::FaultMode;
using test::FaultyHost;
using test::GroupShape;
using test::RunHarness;
using test::TextShape;

// Every kind of shape that a run walks, each text with a name of its own.
struct EveryShape {
  EveryShape() {
    test::FakeFont themed;
    themed.colorType = 2;
    themed.scheme = 5;
    themed.rgb = 0x0000FF;
    themed.tint = 0.5F;
    title = TextShape(u"title\rsubtitle", themed);
    title->type = 14;
    title->text->onReplaced = [](test::FakeFont& font) {
      font.colorType = 1;
      font.rgb = 0;
      font.size = 9.0F;
      font.bold = -1;
    };
    phrase = TextShape(u"年度\r计划");
    inGroup = TextShape(u"member");
    deepInGroup = TextShape(u"inner member");
    table = test::TableShape({{u"cell one", u"cell two"}});
    note = TextShape(u"note");
    second = TextShape(u"second slide");
    run.params.targetFont = u"Arial";
    run.deck().AddSlide({title, phrase, test::PictureShape(),
                         GroupShape({inGroup, GroupShape({deepInGroup})}), table},
                        {note});
    run.deck().AddSlide({second});
  }

  std::vector<FakeShapeRef> Texts() const {
    return {
        title, phrase, inGroup, deepInGroup, table->table->cells[0][0], table->table->cells[0][1],
        note,  second};
  }

  Wide AllText() const {
    Wide all;
    for (const FakeShapeRef& shape : Texts()) all += shape->Text() + u"\n";
    return all;
  }

  RunHarness run;
  FakeShapeRef title, phrase, inGroup, deepInGroup, table, note, second;
};

// Each source that a progress event showed as translated stands in the deck as translated, or is
// named in the record.
void ExpectNothingLostWithoutAName(const EveryShape& deck, const std::string& where) {
  const Wide all = deck.AllText();
  std::multiset<Wide> named;
  for (const FailedUnit& unit : deck.run.Record().failed) named.insert(unit.sourceText);
  for (const auto& request : deck.run.Requests()) {
    for (const Wide& source : request) {
      const bool inDeck = all.find(test::Translated(source)) != Wide::npos;
      EXPECT_TRUE(inDeck || named.contains(source)) << where << ": " << ToUtf8(source);
    }
  }
}

bool EndedWithOneEvent(const RunHarness& run) {
  const auto events = run.Events();
  return std::count_if(events.begin(), events.end(), [](const std::string& event) {
           return event.starts_with("complete") || event.starts_with("error") ||
                  event == "cancelled";
         }) == 1;
}

class FaultInjection : public testing::TestWithParam<FaultMode> {};

TEST_P(FaultInjection, WhateverCallFailsTheRunEndsAndNoTextIsLostWithoutAName) {
  std::int64_t calls = 0;
  for (std::int64_t k = 0; k <= calls; ++k) {
    EveryShape deck;
    FaultyHost faults(GetParam(), k);
    deck.run.wrapApplication = [&](const ObjectRef& app) { return faults.Wrap(app); };
    if (deck.run.Start()) {
      deck.run.WaitForWorker();
      deck.run.TickOnce();
    }
    deck.run.ctrl.reset();
    const std::string where = "call " + std::to_string(k);
    EXPECT_TRUE(EndedWithOneEvent(deck.run)) << where;
    ASSERT_EQ(deck.run.records.size(), 1U) << where;
    EXPECT_EQ(faults.failed(), k != 0) << where;
    ExpectNothingLostWithoutAName(deck, where);
    EXPECT_EQ(deck.run.host.liveObjects, 0) << where;
    if (k == 0) {
      calls = faults.countedCalls();
      EXPECT_EQ(deck.run.Record().written, 8 + 1);
      EXPECT_TRUE(deck.run.Record().failed.empty());
    }
  }
  EXPECT_GT(calls, 20);
  RecordProperty("calls", static_cast<int>(calls));
}

INSTANTIATE_TEST_SUITE_P(Roads, FaultInjection,
                         testing::Values(FaultMode::kLateBound, FaultMode::kTyped,
                                         FaultMode::kBoth),
                         [](const auto& mode) {
                           switch (mode.param) {
                             case FaultMode::kLateBound:
                               return "LateBound";
                             case FaultMode::kTyped:
                               return "Typed";
                             default:
                               return "Both";
                           }
                         });

TEST(FaultyHost, CountsEachRoadAndFailsTheChosenCall) {
  RunHarness run;
  // Without the fit: the fake host notes no call of a member that it has not.
  run.params.useTargetFontSize = true;
  run.deck().AddSlide({TextShape(u"a")});
  FaultyHost counting;
  run.wrapApplication = [&](const ObjectRef& app) { return counting.Wrap(app); };
  run.RunToEnd();
  run.ctrl.reset();
  const auto late = std::count_if(run.host.calls.begin(), run.host.calls.end(), [](const auto& c) {
    return c.substr(0, c.find('(')).find(':') != std::string::npos;
  });
  EXPECT_EQ(counting.lateBoundCalls(), late);
  EXPECT_EQ(counting.typedCalls(), static_cast<std::int64_t>(run.host.calls.size()) - late);
  EXPECT_FALSE(counting.failed());
}

}  // namespace

}  // namespace quillmarch::addin
