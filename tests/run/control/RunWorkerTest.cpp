#include "run/control/RunWorker.h"

#include <gtest/gtest.h>

#include <new>

#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::RunHarness;
using test::TextShape;
using Events = std::vector<std::string>;

// A slide with `count` one-paragraph shapes "s1", "s2"...
void AddTexts(RunHarness& run, int count) {
  test::FakeShapes shapes;
  for (int i = 1; i <= count; ++i) shapes.push_back(TextShape(u"s" + Decimal(i)));
  run.deck().AddSlide(std::move(shapes));
}

std::vector<std::size_t> BatchSizes(const RunHarness& run) {
  std::vector<std::size_t> sizes;
  for (const auto& request : run.Requests()) sizes.push_back(request.size());
  return sizes;
}

TranslateBatchResult Failure(const Wide& code, const Wide& message) {
  TranslateBatchResult result;
  result.code = code;
  result.message = message;
  return result;
}

TEST(RunWorker, ABatchHoldsAtMost20TextsAndNeverCrossesASlide) {
  RunHarness run;
  AddTexts(run, 3);
  AddTexts(run, 41);
  AddTexts(run, 20);
  run.RunToEnd();
  EXPECT_EQ(BatchSizes(run), (std::vector<std::size_t>{3, 20, 20, 1, 20}));
}

TEST(RunWorker, ProgressTellsEachUnitOfAFinishedBatch) {
  RunHarness run;
  run.deck().AddSlide({TextShape(u"a"), TextShape(u"same"), TextShape(u"none")});
  run.translate = [](const Wide& text) {
    if (text == u"none") return Wide();
    return text == u"same" ? text : test::Translated(text);
  };
  run.RunToEnd();
  Events progress;
  for (const std::string& event : run.Events()) {
    if (event.starts_with("progress")) progress.push_back(event);
  }
  EXPECT_EQ(progress, (Events{"progress 1/3 a -> T(a)", "progress 2/3 skipped same -> same",
                              "progress 3/3 skipped none -> "}));
}

TEST(RunWorker, AFailureEndsTheRunWithItsCodeAndMessage) {
  RunHarness run;
  AddTexts(run, 1);
  run.onBatch = [](const TranslateBatchRequest&) {
    return Failure(u"insufficient_credits", u"no credits");
  };
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents(),
            (Events{"started", "ready 1/1", "error insufficient_credits: no credits"}));
  EXPECT_EQ(run.Record().outcome, RunOutcome::kFailed);
  EXPECT_EQ(run.Record().summary, u"翻译失败：no credits");
  EXPECT_EQ(run.Requests().size(), 1U);
}

TEST(RunWorker, AFailureWithoutWordsGetsTheDefaults) {
  RunHarness run;
  AddTexts(run, 1);
  run.onBatch = [](const TranslateBatchRequest&) { return Failure(u"", u""); };
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents().back(), "error translate_failed: HTTP request failed");
}

TEST(RunWorker, ACancelledAnswerEndsTheRunAsCancelled) {
  RunHarness run;
  AddTexts(run, 1);
  run.onBatch = [](const TranslateBatchRequest&) { return Failure(u"cancelled", u"Cancelled"); };
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents(), (Events{"started", "ready 1/1", "cancelled"}));
  EXPECT_EQ(run.Record().summary, u"已取消");
  EXPECT_EQ(run.Record().outcome, RunOutcome::kCancelled);
}

TEST(RunWorker, TheCancelFlagIsSeenBeforeTheNextBatch) {
  RunHarness run;
  AddTexts(run, 1);
  AddTexts(run, 1);
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.config->cancelled.store(1, std::memory_order_relaxed);
  run.Release();
  run.Finish();
  EXPECT_EQ(run.MainEvents().back(), "cancelled");
  EXPECT_EQ(run.Requests().size(), 1U);
}

TEST(RunWorker, ACancelDuringABatchThatFailsIsACancel) {
  RunHarness run;
  AddTexts(run, 1);
  run.HoldBatch(1);
  run.onBatch = [](const TranslateBatchRequest&) { return Failure(u"", u"broken off"); };
  ASSERT_TRUE(run.Start());
  run.WaitUntilHeld();
  run.config->cancelled.store(1, std::memory_order_relaxed);
  run.Release();
  run.Finish();
  EXPECT_EQ(run.MainEvents().back(), "cancelled");
}

TEST(RunWorker, TerminologyIsResolvedOnceFromTheFirst200Texts) {
  RunHarness run;
  for (int slide = 0; slide < 7; ++slide) AddTexts(run, 30);
  std::vector<std::size_t> corpora;
  std::vector<Wide> instructions;
  run.params.resolveTerminology = [&](const std::vector<Wide>& texts, Wide& instruction,
                                      std::vector<GlossaryEntry>& glossary, Wide&, Wide&) {
    corpora.push_back(texts.size());
    instruction = u"be kind";
    glossary = {{u"s1", u"S1", u""}};
    return true;
  };
  run.onBatch = [&](const TranslateBatchRequest& request) {
    instructions.push_back(request.instruction);
    TranslateBatchResult result;
    result.ok = true;
    result.translations = request.texts;
    return result;
  };
  run.RunToEnd();
  EXPECT_EQ(corpora, (std::vector<std::size_t>{200}));
  EXPECT_EQ(instructions, std::vector<Wide>(14, u"be kind"));
}

TEST(RunWorker, AFailedResolveEndsTheRunBeforeAnyBatch) {
  struct Case {
    Wide code;
    Wide message;
    std::string event;
  };
  for (const Case& c : {Case{u"", u"",
                             "error terminology_resolve_failed: terminology resolve "
                             "failed"},
                        Case{u"unauthorized", u"sign in", "error unauthorized: sign in"},
                        Case{u"cancelled", u"", "cancelled"}}) {
    RunHarness run;
    AddTexts(run, 1);
    run.params.resolveTerminology = [&](const std::vector<Wide>&, Wide&,
                                        std::vector<GlossaryEntry>&, Wide& code, Wide& message) {
      code = c.code;
      message = c.message;
      return false;
    };
    run.RunToEnd();
    EXPECT_EQ(run.MainEvents().back(), c.event);
    EXPECT_TRUE(run.Requests().empty());
  }
}

TEST(RunWorker, ACallableThatThrowsFailsTheRunAndNothingElse) {
  RunHarness run;
  AddTexts(run, 1);
  run.onBatch = [](const TranslateBatchRequest&) -> TranslateBatchResult {
    throw std::bad_alloc();
  };
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents().back(), "error translate_failed: ");
}

TEST(RunWorker, OutsideWorkLastsAsLongAsTheWorker) {
  RunHarness run;
  AddTexts(run, 1);
  run.HoldBatch(1);
  ASSERT_TRUE(run.Start());
  EXPECT_EQ(run.thread.outsideWork(), 1);
  run.Release();
  run.WaitForWorker();
  EXPECT_TRUE(run.thread.WaitForOutsideWork(10000));
  EXPECT_EQ(run.thread.outsideWork(), 0);
  run.Finish();
}

TEST(RunWorker, AnAnswerOfAWrongCountFailsTheRun) {
  RunHarness run;
  AddTexts(run, 2);
  run.onBatch = [](const TranslateBatchRequest&) {
    TranslateBatchResult result;
    result.ok = true;
    result.translations = {u"one", u"two", u"three"};
    return result;
  };
  run.RunToEnd();
  EXPECT_EQ(run.MainEvents().back(), "error translate_failed: Translation count mismatch");
  EXPECT_EQ(run.Record().written, 0);
}

TEST(RunWorker, AnInstructionWithoutTermsAndTermsWithoutAnInstructionBothCount) {
  for (const bool terms : {false, true}) {
    RunHarness run;
    AddTexts(run, 1);
    run.params.resolveTerminology = [&](const std::vector<Wide>& texts, Wide& instruction,
                                        std::vector<GlossaryEntry>& glossary, Wide&, Wide&) {
      if (terms) {
        glossary = {{texts.front(), u"S", u""}};
      } else {
        instruction = u"be kind";
      }
      return true;
    };
    Wide instruction;
    std::size_t entries = 0;
    run.onBatch = [&](const TranslateBatchRequest& request) {
      instruction = request.instruction;
      entries = request.glossary.size();
      TranslateBatchResult result;
      result.ok = true;
      result.translations = request.texts;
      return result;
    };
    run.RunToEnd();
    EXPECT_EQ(instruction, terms ? u"" : u"be kind");
    EXPECT_EQ(entries, terms ? 1U : 0U);
  }
}

}  // namespace

}  // namespace quillmarch::addin
