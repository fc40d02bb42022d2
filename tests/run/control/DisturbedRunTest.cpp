#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <new>
#include <system_error>
#include <thread>

#include "support/LogCapture.h"
#include "support/SelectionHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::Numbered;
using test::RunHarness;
using test::TextShape;

// A run of three slides that is translated and owes all its writes, so that a test can play the
// user in between.
struct Owed : RunHarness {
  Owed() {
    for (const char16_t* text : {u"one", u"two", u"three"}) {
      shapes.push_back(TextShape(text));
      shapes.back()->name = Wide(u"Title ") + text;
      deck().AddSlide({shapes.back()});
    }
    EXPECT_TRUE(Start());
    WaitForWorker();
  }

  std::vector<Wide> Texts() const {
    std::vector<Wide> texts;
    for (const FakeShapeRef& shape : shapes) texts.push_back(shape->Text());
    return texts;
  }
  std::vector<Wide> NotWritten() const {
    std::vector<Wide> sources;
    for (const FailedUnit& unit : Record().failed) sources.push_back(unit.sourceText);
    return sources;
  }

  std::vector<FakeShapeRef> shapes;
};

TEST(DisturbedRun, ASlideThatTheUserInsertsIsNotOverwrittenAndNoSlideGetsItsNeighboursText) {
  Owed run;
  const FakeShapeRef mine = TextShape(u"mine");
  run.deck().AddSlide({mine});
  std::rotate(run.deck().slides.begin() + 1, run.deck().slides.end() - 1, run.deck().slides.end());
  run.TickOnce();
  EXPECT_EQ(mine->Text(), u"mine");
  EXPECT_EQ(run.Texts(), (std::vector<Wide>{u"T(one)", u"two", u"three"}));
  EXPECT_EQ(run.NotWritten(), (std::vector<Wide>{u"two", u"three"}));
  EXPECT_EQ(run.Record().failed[0].cause, FailCause::kPlaceChanged);
  EXPECT_EQ(run.Record().failed[0].shapeName, u"Title two");
  EXPECT_EQ(run.Record().written, 1);
  EXPECT_EQ(run.Record().summary,
            u"已翻译 1 段文本（共 3 段）。\r\n部分回写失败：shapes[1].p1; shapes[1].p1");
}

TEST(DisturbedRun, AfterADeletedSlideTheOthersKeepTheirTexts) {
  Owed run;
  run.deck().slides.erase(run.deck().slides.begin());
  run.TickOnce();
  EXPECT_EQ(run.Texts(), (std::vector<Wide>{u"one", u"two", u"three"}));
  EXPECT_EQ(run.NotWritten(), (std::vector<Wide>{u"one", u"two", u"three"}));
  EXPECT_EQ(run.Record().failed[2].cause, FailCause::kNotFound);
}

TEST(DisturbedRun, MovedSlidesAreLeftAsTheyAre) {
  Owed run;
  std::swap(run.deck().slides[0], run.deck().slides[2]);
  run.TickOnce();
  EXPECT_EQ(run.Texts(), (std::vector<Wide>{u"one", u"T(two)", u"three"}));
  EXPECT_EQ(run.NotWritten(), (std::vector<Wide>{u"one", u"three"}));
}

TEST(DisturbedRun, AShapeBroughtToTheFrontAndTheOneInItsPlaceKeepTheirTexts) {
  RunHarness run;
  const FakeShapeRef a = TextShape(u"a");
  const FakeShapeRef b = TextShape(u"b");
  run.deck().AddSlide({a, b});
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  std::swap(run.deck().slides[0]->shapes()[0], run.deck().slides[0]->shapes()[1]);
  run.TickOnce();
  EXPECT_EQ(a->Text(), u"a");
  EXPECT_EQ(b->Text(), u"b");
  EXPECT_EQ(run.Record().failed.size(), 2U);
}

TEST(DisturbedRun, WhatTheUserTypedMeanwhileStays) {
  RunHarness run;
  const FakeShapeRef edited = TextShape(u"a\rb");
  const FakeShapeRef frame = TextShape(u"年度\r计划");
  const FakeShapeRef cleared = TextShape(u"c");
  run.deck().AddSlide({edited, frame, cleared});
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  edited->text->Replace(2, 1, u"my own");
  frame->text->Replace(0, 2, u"月度");
  cleared->text->Replace(0, 1, u"");
  run.TickOnce();
  EXPECT_EQ(edited->Text(), u"T(a)\rmy own");
  EXPECT_EQ(frame->Text(), u"月度\r计划");
  EXPECT_EQ(cleared->Text(), u"");
  EXPECT_EQ(run.Record().failed.size(), 3U);
}

TEST(DisturbedRun, WhiteSpaceAtTheEndsIsNoChange) {
  RunHarness run;
  const FakeShapeRef shape = TextShape(u"a");
  run.deck().AddSlide({shape});
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  shape->text->Replace(0, 1, u" a ");
  run.TickOnce();
  EXPECT_EQ(shape->Text(), u"T(a)");
}

TEST(DisturbedRun, ARepairLeavesAFrameThatTheUserChanged) {
  RunHarness run;
  const FakeShapeRef frame = TextShape(u"年度\r计划");
  run.deck().AddSlide({frame});
  run.params.targetLang = u"en";
  run.translate = [](const Wide& text) { return text; };
  ASSERT_TRUE(run.Start());
  run.WaitForWorker();
  run.translate = [](const Wide&) { return Wide(u"Annual plan"); };
  frame->text->Replace(0, 2, u"月度");
  run.TickOnce();
  EXPECT_EQ(frame->Text(), u"月度\r计划");
  EXPECT_EQ(run.Record().written, 0);
}

TEST(DisturbedRun, AMergedCellIsWrittenOnceAndCountsForEachOfItsPlaces) {
  RunHarness run;
  const FakeShapeRef table = test::TableShape({{u"x", u"gone"}, {u"y", u"z"}});
  table->table->cells[0][1] = table->table->cells[0][0];
  run.deck().AddSlide({table});
  int answers = 0;
  run.translate = [&](const Wide& text) {
    return text == u"x" ? u"X" + Decimal(++answers) : test::Translated(text);
  };
  run.RunToEnd();
  EXPECT_EQ(answers, 2);
  EXPECT_EQ(table->table->cells[0][0]->Text(), u"X1");
  EXPECT_EQ(run.Record().written, 4);
  EXPECT_TRUE(run.Record().failed.empty());
}

struct NotesSelection : RunHarness {
  NotesSelection() { UseScope(Scope::kSelection); }
};

TEST(DisturbedRun, ASelectedShapeOfTheNotesIsWrittenThoughOneOfTheSlideHasItsId) {
  NotesSelection run;
  const FakeShapeRef title = Numbered(TextShape(u"title"), 2);
  const FakeShapeRef note = Numbered(TextShape(u"note"), 2);
  run.deck().AddSlide({title}, {note});
  run.window().selection->SelectShapes({note});
  run.RunToEnd();
  EXPECT_EQ(title->Text(), u"title");
  EXPECT_EQ(note->Text(), u"T(note)");
  EXPECT_TRUE(run.Record().failed.empty());
}

TEST(DisturbedRun, SelectedCharactersOfTheNotesAreWrittenThoughAShapeOfTheSlideHasTheId) {
  NotesSelection run;
  const FakeShapeRef title = Numbered(TextShape(u"a title here"), 2);
  const FakeShapeRef note = Numbered(TextShape(u"a note"), 2);
  run.deck().AddSlide({title}, {note});
  run.window().selection->SelectText(note, 3, 4);
  run.RunToEnd();
  EXPECT_EQ(title->Text(), u"a title here");
  EXPECT_EQ(note->Text(), u"a T(note)");
}

TEST(DisturbedRun, TheHostsCodeOfARefusedTextReachesTheRecord) {
  RunHarness run;
  const FakeShapeRef shape = TextShape(u"a");
  shape->name = u"Title 1";
  run.deck().AddSlide({shape});
  run.host.Fail("TextRange.Text=");
  run.host.Fail("TextRange:Text=");
  run.RunToEnd();
  ASSERT_EQ(run.Record().failed.size(), 1U);
  EXPECT_EQ(run.Record().failed[0].cause, FailCause::kRefused);
  EXPECT_EQ(run.Record().failed[0].code, kHostException);
  EXPECT_EQ(run.Record().failed[0].shapeName, u"Title 1");
}

TEST(DisturbedRun, AMouseUsedWhileTheWorkerEndsDoesNotCostTheOwedSlides) {
  RunHarness run;
  std::vector<FakeShapeRef> shapes;
  for (const char16_t* text : {u"one", u"two", u"three"}) {
    shapes.push_back(TextShape(text));
    run.deck().AddSlide({shapes.back()});
  }
  run.params.full = false;
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.input.leftButton = true;
  run.TickOnce();
  run.Release();
  run.WaitForWorker();
  run.TickOnce();
  for (const FakeShapeRef& shape : shapes) {
    EXPECT_EQ(shape->Text().substr(0, 2), u"T(") << ToUtf8(shape->Text());
  }
  EXPECT_TRUE(run.Record().failed.empty());
}

TEST(DisturbedRun, AThreadThatCannotBeHadEndsTheRunWithItsOwnEventAndNothingUnderWay) {
  for (const bool memory : {false, true}) {
    RunHarness run;
    run.deck().AddSlide({TextShape(u"a")});
    run.startThread = [&](const std::function<void()>&) -> std::thread {
      EXPECT_NE(run.config, nullptr) << "published before the thread begins";
      if (memory) throw std::bad_alloc();
      throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    };
    EXPECT_FALSE(run.Start());
    EXPECT_EQ(run.MainEvents(),
              (std::vector<std::string>{"started", "ready 1/1",
                                        "error translate_failed: 无法启动翻译线程"}));
    EXPECT_EQ(run.outMessage, u"无法启动翻译线程");
    EXPECT_EQ(run.config, nullptr);
    EXPECT_EQ(run.thread.outsideWork(), 0);
    EXPECT_EQ(run.Record().outcome, RunOutcome::kFailed);
    EXPECT_EQ(run.Record().errorCode, u"translate_failed");
  }
}

TEST(DisturbedRun, ADeckWhoseSlidesCannotBeCountedIsNotTakenForAnEmptyOne) {
  test::LogCapture log;
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a")});
  run.host.Fail("Slides.Count");
  EXPECT_FALSE(run.Start());
  EXPECT_TRUE(log.Has("PptCtrl slides count unreadable"));
  EXPECT_EQ(run.MainEvents().back(), "error collect_failed: 无法访问 Slides");
  EXPECT_EQ(run.Record().errorCode, u"collect_failed");
}

TEST(DisturbedRun, TheRecordCountsByCause) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a\r12"), TextShape(u"same")});
  run.deck().AddSlide({TextShape(u"late")});
  run.translate = [](const Wide& text) { return text == u"same" ? text : test::Translated(text); };
  run.HoldBatch(2);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.config->cancelled.store(1, std::memory_order_relaxed);
  run.onBatch = [](const TranslateBatchRequest&) { return TranslateBatchResult{}; };
  run.Release();
  run.Finish();
  const RunRecord& record = run.Record();
  EXPECT_EQ(record.changed, 1);
  EXPECT_EQ(record.unchanged, 1);
  EXPECT_EQ(record.notAnswered, 1);
  EXPECT_EQ(record.skipped, 1);
  ASSERT_EQ(record.left.size(), 2U);
  EXPECT_EQ(record.left[0].sourceText, u"same");
  EXPECT_EQ(record.left[0].cause, FailCause::kUnchanged);
  EXPECT_EQ(record.left[1].cause, FailCause::kNotAnswered);
}

}  // namespace

}  // namespace quillmarch::addin
