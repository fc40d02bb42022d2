#include <gtest/gtest.h>

#include "support/FaultyHost.h"
#include "support/LogCapture.h"
#include "support/SelectionHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::Numbered;
using test::RunHarness;
using test::TextShape;

struct SelectionRun : RunHarness {
  SelectionRun() {
    UseScope(Scope::kSelection);
    params.usageKind = u"translate_selection";
  }
  test::FakeSelection& selection() { return *window().selection; }
};

TEST(SelectionRun, OnlyTheSelectedShapeIsWritten) {
  SelectionRun run;
  const FakeShapeRef chosen = Numbered(TextShape(u"chosen"), 2);
  const FakeShapeRef other = Numbered(TextShape(u"other"), 3);
  run.deck().AddSlide({other, chosen});
  run.selection().SelectShapes({chosen});
  run.RunToEnd();
  EXPECT_EQ(chosen->Text(), u"T(chosen)");
  EXPECT_EQ(other->Text(), u"other");
  EXPECT_EQ(run.MainEvents(), (std::vector<std::string>{"started", "ready 1/1", "complete 1"}));
}

TEST(SelectionRun, OnlyTheSelectedCharactersAreReplaced) {
  SelectionRun run;
  const FakeShapeRef shape = Numbered(TextShape(u"one two three\rfour"), 2);
  run.deck().AddSlide({shape});
  run.selection().SelectText(shape, 5, 3);
  run.RunToEnd();
  EXPECT_EQ(shape->Text(), u"one T(two) three\rfour");
}

TEST(SelectionRun, TheMarkOfASelectedParagraphStays) {
  SelectionRun run;
  const FakeShapeRef shape = Numbered(TextShape(u"one\rtwo"), 2);
  run.deck().AddSlide({shape});
  run.selection().SelectText(shape, 1, 4);
  run.RunToEnd();
  EXPECT_EQ(shape->Text(), u"T(one)\rtwo");
}

TEST(SelectionRun, ASelectedPieceOfACellOnTheNotesPageIsWrittenThere) {
  SelectionRun run;
  const FakeShapeRef table = test::Numbers(test::TableShape({{u"left", u"right side"}}), 30);
  run.deck().AddSlide({Numbered(TextShape(u"a"), 2)}, {table});
  run.selection().SelectText(table->table->cells[0][1], 7, 4);
  run.RunToEnd();
  EXPECT_EQ(table->table->cells[0][1]->Text(), u"right T(side)");
  EXPECT_EQ(table->table->cells[0][0]->Text(), u"left");
}

TEST(SelectionRun, SlidesSelectedInReverseAreWrittenInThatOrder) {
  SelectionRun run;
  const FakeShapeRef first = Numbered(TextShape(u"a"), 2);
  const FakeShapeRef second = Numbered(TextShape(u"b"), 3);
  run.deck().AddSlide({first});
  run.deck().AddSlide({second});
  run.selection().SelectSlides({2, 1});
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.TickTimes(3);
  EXPECT_EQ(second->Text(), u"T(b)");
  EXPECT_EQ(first->Text(), u"a");
  run.Release();
  run.Finish();
  EXPECT_EQ(first->Text(), u"T(a)");
  EXPECT_EQ(run.Requests(), (std::vector<std::vector<Wide>>{{u"b"}, {u"a"}}));
}

// The worker is held in front of each entry in turn: what is written by then is the entries before
// it and nothing of the same slide's later entry, whose translations are not published yet.
TEST(SelectionRun, ASelectionThatAlternatesWritesInEachStepItsOwnEntry) {
  for (int held = 2; held <= 4; ++held) {
    SelectionRun run;
    std::vector<FakeShapeRef> order;
    const Wide names[] = {u"a", u"b", u"c", u"d"};
    for (std::int32_t i = 0; i < 4; ++i) order.push_back(Numbered(TextShape(names[i]), 10 + i));
    run.deck().AddSlide({order[0], order[2]});
    run.deck().AddSlide({order[1], order[3]});
    run.selection().SelectShapes({order[0], order[1], order[2], order[3]});
    run.HoldBatch(held);
    ASSERT_TRUE(run.Start());
    run.WaitUntilHeld();
    run.TickTimes(12);
    for (int i = 0; i < 4; ++i) {
      const Wide source = names[i];
      EXPECT_EQ(order[static_cast<std::size_t>(i)]->Text(),
                i < held - 1 ? test::Translated(source) : source)
          << "held at " << held << ", shape " << i;
    }
    run.Release();
    run.Finish();
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(order[static_cast<std::size_t>(i)]->Text(), test::Translated(names[i]));
    }
    EXPECT_EQ(run.Record().written, 4);
    EXPECT_TRUE(run.Record().slidesNotReached.empty());
  }
}

TEST(SelectionRun, ACollectionThatFailsEndsBeforeThereIsAWorker) {
  SelectionRun run;
  run.deck().AddSlide({TextShape(u"a")});
  EXPECT_FALSE(run.Start());
  EXPECT_EQ(run.MainEvents(),
            (std::vector<std::string>{"started", "ready 0/0",
                                      "error collect_failed: 请先选中要翻译的形状或文字"}));
  EXPECT_EQ(run.outMessage, u"收集文本失败：请先选中要翻译的形状或文字");
  EXPECT_TRUE(run.Requests().empty());
}

TEST(SelectionRun, AShapeThatIsNotLocatedIsNamedInTheSummary) {
  SelectionRun run;
  const FakeShapeRef shape = Numbered(TextShape(u"a"), 2);
  run.deck().AddSlide({shape});
  run.selection().SelectShapes({shape, Numbered(TextShape(u"cut"), 9)});
  run.RunToEnd();
  EXPECT_NE(run.Record().summary.find(u"无法定位选中的形状"), Wide::npos);
}

// Two shapes, a piece of text, two slides: whatever call fails, the run ends with one event, and a
// text that was answered stands in the deck or is named.
TEST(SelectionRun, WhateverCallFailsTheRunEndsOnceAndNoTextIsLostWithoutAName) {
  for (const std::int32_t type : {1, 2, 3}) {
    std::int64_t calls = 0;
    for (std::int64_t k = 0; k <= calls; ++k) {
      const std::string where = "type " + std::to_string(type) + ", call " + std::to_string(k);
      SelectionRun run;
      test::FaultyHost faults(test::FaultMode::kBoth, k);
      run.wrapApplication = [&](const ObjectRef& app) { return faults.Wrap(app); };
      const FakeShapeRef first = Numbered(TextShape(u"first text"), 2);
      const FakeShapeRef second = Numbered(TextShape(u"second"), 12);
      run.deck().AddSlide({first}, {Numbered(TextShape(u"note"), 20)});
      run.deck().AddSlide({second});
      run.selection().SelectSlides({2, 1});
      run.selection().SelectShapes({second, first});
      run.selection().SelectText(first, 7, 4);
      run.selection().type = type;
      run.RunToEnd();
      run.ctrl.reset();

      int ends = 0;
      for (const std::string& event : run.MainEvents()) {
        ends += event.starts_with("complete") || event.starts_with("error") ? 1 : 0;
      }
      EXPECT_EQ(ends, 1) << where;
      ASSERT_EQ(run.records.size(), 1U) << where;
      EXPECT_EQ(run.host.liveObjects, 0) << where;
      std::size_t answered = 0;
      for (const auto& request : run.Requests()) answered += request.size();
      EXPECT_EQ(static_cast<std::size_t>(run.Record().written) + run.Record().failed.size(),
                answered)
          << where;
      if (k == 0) calls = faults.countedCalls();
    }
    EXPECT_GT(calls, 20) << type;
  }
}

TEST(SelectionRun, TheSummaryCountsSeveralShapesThatWerePassedOver) {
  const FakeShapeRef nowhere = Numbered(TextShape(u"x"), 90);
  const FakeShapeRef neither = Numbered(TextShape(u"y"), 91);
  const FakeShapeRef here = Numbered(TextShape(u"a"), 2);
  SelectionRun run;
  run.deck().AddSlide({here});
  run.selection().SelectShapes({nowhere, neither, here});
  run.RunToEnd();
  EXPECT_EQ(run.Record().summary,
            u"已翻译 1 段文本（共 1 段）。\r\n跳过：无法定位选中的形状（等 2 项）");
}

TEST(SelectionRun, TheSummaryGivesNoCountForOneShapeThatWasPassedOver) {
  SelectionRun run;
  run.deck().AddSlide({Numbered(TextShape(u"b"), 2)});
  run.selection().SelectShapes({Numbered(TextShape(u"x"), 90), run.deck().slides[0]->shapes()[0]});
  run.RunToEnd();
  EXPECT_EQ(run.Record().summary, u"已翻译 1 段文本（共 1 段）。\r\n跳过：无法定位选中的形状");
}

}  // namespace

}  // namespace quillmarch::addin
