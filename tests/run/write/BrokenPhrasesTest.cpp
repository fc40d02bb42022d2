#include "run/write/BrokenPhrases.h"

#include <gtest/gtest.h>

#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/RunHarness.h"

namespace quillmarch::addin {

namespace {

using test::FakeShapeRef;
using test::RunHarness;
using test::TextShape;

// A run of one frame whose units all come back as they went, and whose repair gets `answer`.
struct Repair {
  explicit Repair(const Wide& text) : shape(TextShape(text)) {
    run.deck().AddSlide({shape});
    run.params.targetLang = u"en";
  }

  void Run() {
    if (!run.Start()) return;
    run.WaitForWorker();
    const std::size_t batches = run.Requests().size();
    run.translate = [this](const Wide& asked) {
      repairs.push_back(asked);
      return answer;
    };
    run.TickOnce();
    EXPECT_TRUE(run.ctrl->finished());
    EXPECT_EQ(run.Requests().size(), batches + repairs.size());
  }

  RunHarness run;
  FakeShapeRef shape;
  Wide answer = u"Annual plan";
  std::vector<Wide> repairs;
};

void Unchanged(RunHarness& run) {
  run.translate = [](const Wide& text) { return text; };
}

TEST(BrokenPhrasePass, ACollapsedFrameThatCameBackAsItWasIsSentOnceMore) {
  test::LogCapture log;
  Repair r(u"年度\r计划");
  Unchanged(r.run);
  r.Run();
  EXPECT_EQ(r.repairs, (std::vector<Wide>{u"年度计划"}));
  EXPECT_EQ(r.shape->Text(), u"Annual plan");
  EXPECT_TRUE(log.Has("PptCtrl apply done totalApplied=1"));
  EXPECT_EQ(r.run.Record().written, 1);
  EXPECT_EQ(r.run.Record().unchanged, 0);
}

TEST(BrokenPhrasePass, AMarkedFrameIsReplacedAsOneAndCountsAsOne) {
  Repair r(u"年度\r\r计划");
  Unchanged(r.run);
  r.Run();
  EXPECT_EQ(r.repairs, (std::vector<Wide>{u"年度计划"}));
  EXPECT_EQ(r.shape->Text(), u"Annual plan");
  EXPECT_EQ(r.run.Record().written, 1);
  EXPECT_EQ(r.run.Record().units, 2);
  EXPECT_EQ(r.run.Record().unchanged, 0);
}

TEST(BrokenPhrasePass, AFrameOfWhichAPartWasTranslatedIsLeftAlone) {
  Repair r(u"年度\r\r计划\r目标");
  r.run.translate = [](const Wide& text) { return text == u"目标" ? Wide(u"Goals") : text; };
  r.Run();
  EXPECT_TRUE(r.repairs.empty());
  EXPECT_EQ(r.shape->Text(), u"年度\r\r计划\rGoals");
}

TEST(BrokenPhrasePass, AFrameThatIsNotMarkedIsNotAskedFor) {
  Repair r(u"Plan\rYear");
  Unchanged(r.run);
  r.Run();
  EXPECT_TRUE(r.repairs.empty());
}

TEST(BrokenPhrasePass, WithoutACandidateThereIsNoHostCall) {
  Repair r(u"Plan");
  r.run.params.useTargetFontSize = true;  // so that the write's last call is the text's
  ASSERT_TRUE(r.run.Start());
  r.run.WaitForWorker();
  std::size_t callsAtPass = 0;
  r.run.sink.onComplete = [&](std::int64_t, std::int32_t, bool) {
    callsAtPass = r.run.host.calls.size();
  };
  r.run.TickOnce();
  EXPECT_EQ(callsAtPass, r.run.host.calls.size());
  EXPECT_EQ(r.run.host.calls.back(), "Font.Italic");
}

TEST(BrokenPhrasePass, AnAnswerOfNoUseChangesNothing) {
  for (const WideView answer : {u"\r\n\v", u"年度计划", u"年度计划\r\n", u""}) {
    Repair r(u"年度\r计划");
    Unchanged(r.run);
    r.answer = answer;
    r.Run();
    EXPECT_EQ(r.shape->Text(), u"年度\r计划") << ToUtf8(answer);
    EXPECT_EQ(r.run.Record().written, 0);
  }
}

TEST(BrokenPhrasePass, AHanCharacterInTheAnswerCountsByTheTarget) {
  struct Case {
    Wide language;
    bool written;
  };
  for (const Case& c : {Case{u"en", false}, Case{u"ja", true}, Case{u"auto", true},
                        Case{u"zh-TW", true}, Case{u"es", false}}) {
    Repair r(u"年度\r计划");
    Unchanged(r.run);
    r.run.params.targetLang = c.language;
    r.answer = u"年間の計画";
    r.Run();
    EXPECT_EQ(r.shape->Text() == r.answer, c.written) << ToUtf8(c.language);
  }
}

TEST(BrokenPhrasePass, AFailedCallIsSilent) {
  Repair r(u"年度\r计划");
  Unchanged(r.run);
  ASSERT_TRUE(r.run.Start());
  r.run.WaitForWorker();
  r.run.onBatch = [](const TranslateBatchRequest&) { return TranslateBatchResult{}; };
  r.run.TickOnce();
  EXPECT_EQ(r.shape->Text(), u"年度\r计划");
  EXPECT_EQ(r.run.MainEvents().back(), "complete 1");
  EXPECT_EQ(r.run.Record().summary, u"已翻译 0 段文本（共 1 段）。");
}

TEST(BrokenPhrasePass, AGateHeldByAnotherRunLeavesTheFrameWithoutAWord) {
  test::LogCapture log;
  Repair r(u"年度\r计划");
  Unchanged(r.run);
  ASSERT_TRUE(r.run.Start());
  r.run.WaitForWorker();
  r.run.translate = [&](const Wide&) { return r.answer; };
  {
    const GateHold other(&r, r.run.thread);
    r.run.TickOnce();
  }
  EXPECT_EQ(r.shape->Text(), u"年度\r计划");
  EXPECT_TRUE(log.Has("PptCtrl apply done totalApplied=0"));
  EXPECT_EQ(r.run.Record().written, 0);
}

TEST(BrokenPhrasePass, AFailedWriteReleasesTheGateAndCountsNothing) {
  Repair r(u"年度\r计划");
  r.shape->text->refusesPut = true;
  Unchanged(r.run);
  r.Run();
  EXPECT_FALSE(StaGateHasOwner());
  EXPECT_EQ(r.run.Record().written, 0);
}

TEST(BrokenPhrasePass, EveryStepToTheFrameMayFail) {
  for (const char* call : {"Slides.Item(1)", "Slide.Shapes", "Shapes.Item(1)"}) {
    Repair r(u"年度\r计划");
    Unchanged(r.run);
    ASSERT_TRUE(r.run.Start());
    r.run.WaitForWorker();
    r.run.translate = [&](const Wide&) { return r.answer; };
    r.run.host.Fail(call);
    r.run.TickOnce();
    EXPECT_EQ(r.shape->Text(), u"年度\r计划") << call;
    EXPECT_EQ(r.run.MainEvents().back(), "complete 1") << call;
  }
}

TEST(BrokenPhrasePass, TheLookAndTheTargetFontAreKept) {
  Repair r(u"年度\r计划");
  for (auto& font : r.shape->text->fonts) font.bold = -1;
  r.shape->text->onReplaced = [](test::FakeFont& font) { font.bold = 0; };
  r.run.params.targetFont = u"Arial";
  Unchanged(r.run);
  r.Run();
  EXPECT_EQ(r.shape->text->fonts[0].bold, -1);
  EXPECT_EQ(r.shape->text->fonts[0].name, u"Arial");
}

TEST(BrokenPhrasePass, APauseAtTheRunsEndDoesNotHoldTheHostThread) {
  Repair r(u"年度\r计划");
  Unchanged(r.run);
  ASSERT_TRUE(r.run.Start());
  r.run.WaitForWorker();
  r.run.translate = [&](const Wide&) {
    r.run.thread.Advance(200);
    return r.answer;
  };
  r.run.config->paused.store(1, std::memory_order_relaxed);
  r.run.TickOnce();
  EXPECT_EQ(r.shape->Text(), u"Annual plan");
}

TEST(BrokenPhrasePass, ARunThatFailedIsNotRepaired) {
  Repair r(u"年度\r计划");
  r.run.deck().AddSlide({TextShape(u"b")});
  r.run.onBatch = [](const TranslateBatchRequest& request) {
    TranslateBatchResult result;
    result.ok = request.texts[0] != u"b";
    result.translations = request.texts;
    result.code = u"unauthorized";
    return result;
  };
  r.run.RunToEnd();
  EXPECT_EQ(r.run.Requests().size(), 2U);
  EXPECT_EQ(r.shape->Text(), u"年度\r计划");
}

TEST(IsNonCjkTarget, CjkCodesAndNamesAutoAndNothingAreNot) {
  for (const WideView language : {u"", u"auto", u"AUTO", u"zh", u"zh-CN", u"ZH-TW", u"ja", u"JA-JP",
                                  u"ko", u"Chinese (Simplified)", u"JAPANESE", u"Korean"}) {
    EXPECT_FALSE(IsNonCjkTarget(language)) << ToUtf8(language);
  }
  for (const WideView language : {u"en", u"es", u"automatic", u"ru"}) {
    EXPECT_TRUE(IsNonCjkTarget(language)) << ToUtf8(language);
  }
  // Codes that merely hold the letters count as well.
  EXPECT_FALSE(IsNonCjkTarget(u"kok"));
  EXPECT_FALSE(IsNonCjkTarget(u"Azerbaijani"));
}

}  // namespace

}  // namespace quillmarch::addin
