// The command's words: what it makes of any bytes, codes and widths.
#include <gtest/gtest.h>

#include "host/cli/ExitCode.h"
#include "host/cli/ProgressLine.h"
#include "host/cli/RunOutcomeText.h"
#include "host/cli/Sentences.h"
#include "host/cli/TerminalText.h"
#include "run/document/CollectCodes.h"

namespace quillmarch::host {

using namespace addin;

namespace {

TEST(ExitCode, TheGravestOfSeveralDecksWins) {
  EXPECT_EQ(GraverExit(0, 0), 0);
  EXPECT_EQ(GraverExit(0, 3), 3);
  EXPECT_EQ(GraverExit(3, 1), 1);
  EXPECT_EQ(GraverExit(1, 2), 2);
  EXPECT_EQ(GraverExit(2, 130), 130);
  EXPECT_EQ(GraverExit(130, 0), 130);
  EXPECT_EQ(GraverExit(2, 3), 2);
}

TEST(TerminalText, BytesThatAreNoUtf8BecomeTheReplacementCharacter) {
  EXPECT_EQ(PlainLine("a\xFF"
                      "b"),
            "a\xEF\xBF\xBD"
            "b");
}

TEST(TerminalText, WhatCouldSteerATerminalBecomesABlank) {
  EXPECT_EQ(PlainLine("a\x1B[31mb\nc\rd\x7F"
                      "e\xC2\x9B"
                      "f\v"),
            "a [31mb c d e f ");
}

TEST(TerminalText, WideCharactersTakeTwoColumnsAndMarksNone) {
  EXPECT_EQ(DisplayWidth("abc"), 3u);
  EXPECT_EQ(DisplayWidth("日本"), 4u);
  EXPECT_EQ(DisplayWidth("e\xCC\x81"), 1u);
  EXPECT_EQ(DisplayWidth("\xF0\x9F\x98\x80"), 2u);
}

TEST(TerminalText, ShorteningKeepsWholeCharactersWithinTheWidth) {
  EXPECT_EQ(Shorten("short", 5), "short");
  EXPECT_EQ(Shorten("longer", 5), "lo...");
  EXPECT_EQ(Shorten("日本語日本語", 8), "日本...");
  EXPECT_EQ(Shorten("longer", 2), "..");
  EXPECT_EQ(Shorten("longer", 0), "");
  EXPECT_EQ(ShortenFront("folder/deck.pptx", 12), "...deck.pptx");
  EXPECT_EQ(ShortenFront("deck", 4), "deck");
}

TEST(Sentences, EveryCodeOfTheRunAndTheServiceHasItsEnglish) {
  EXPECT_EQ(FailureSentence(u"unauthorized", u"登录已失效，请重新登录"),
            "the access token is missing or has expired");
  EXPECT_EQ(FailureSentence(u"insufficient_credits", u"积分不足"),
            "there are no credits left for this translation");
  EXPECT_EQ(FailureSentence(u"network_error", u"HTTP request failed"),
            "the translation service cannot be reached or gave no answer");
  for (const WideView code :
       {u"translate_failed", u"batch_size_mismatch", u"terminology_resolve_failed",
        u"collect_failed", u"pane_window_unavailable", u"presentation_busy",
        u"bilingual_copy_failed", u"engine_unavailable", u"rate_limited"}) {
    EXPECT_EQ(FailureSentence(code, u"").find("answered with the error"), std::string::npos)
        << ToUtf8(code);
  }
}

TEST(Sentences, AnUnknownCodeIsNamedAndTheServicesOwnEnglishFollows) {
  EXPECT_EQ(FailureSentence(u"teapot", u"short and stout"),
            "the translation service answered with the error \"teapot\" (short and stout)");
  EXPECT_EQ(FailureSentence(u"teapot", u"小茶壶"),
            "the translation service answered with the error \"teapot\"");
  EXPECT_EQ(FailureSentence(u"tea\x1B[2Jpot", u"a\nb"),
            "the translation service answered with the error \"tea [2Jpot\"");
}

TEST(Sentences, ALongMessageOfTheServiceIsCut) {
  EXPECT_LT(FailureSentence(u"teapot", Wide(5000, u'x')).size(), 300u);
}

TEST(Sentences, OneIsNoPlural) {
  EXPECT_EQ(Counted(1, "text"), "1 text");
  EXPECT_EQ(Counted(0, "text"), "0 texts");
}

TEST(ProgressLine, DurationsReadAsAClock) {
  EXPECT_EQ(FormatDuration(0), "0:00");
  EXPECT_EQ(FormatDuration(6.2), "0:07");
  EXPECT_EQ(FormatDuration(750), "12:30");
  EXPECT_EQ(FormatDuration(3723), "1:02:03");
  EXPECT_EQ(FormatDuration(-4), "0:00");
}

RunProgress Halfway() {
  RunProgress progress;
  progress.deck = "talk.pptx";
  progress.slides = 12;
  progress.texts = 200;
  progress.textsDone = 100;
  progress.seconds = 30;
  return progress;
}

TEST(ProgressLine, ShowsBarTextsSlidesAndTimeLeft) {
  EXPECT_EQ(FormatProgress(Halfway(), 79),
            "talk.pptx [##############...............] 100/200 texts on 12 slides, 0:30 left");
}

TEST(ProgressLine, NoTimeIsGuessedFromTheFirstMomentNorAtTheEnd) {
  RunProgress progress = Halfway();
  progress.seconds = 0.5;
  EXPECT_EQ(FormatProgress(progress, 200).find("left"), std::string::npos);
  progress.seconds = 30;
  progress.textsDone = 200;
  EXPECT_EQ(FormatProgress(progress, 200).find("left"), std::string::npos);
}

TEST(ProgressLine, NeverGetsWiderThanTheTerminal) {
  RunProgress progress = Halfway();
  for (const std::string& name : {std::string("t"), std::string(300, 'x') + ".pptx",
                                  std::string("日本語日本語日本語.pptx")}) {
    progress.deck = name;
    for (const std::int32_t texts : {0, 1, 200, 2000000}) {
      progress.texts = texts;
      progress.textsDone = texts / 2;
      for (std::size_t columns = 0; columns < 130; ++columns) {
        EXPECT_LE(DisplayWidth(FormatProgress(progress, columns)), columns) << columns;
      }
    }
  }
}

TEST(ProgressLine, TheDecksPlaceAndNameOutlastTheBar) {
  RunProgress progress = Halfway();
  progress.place = "[2/7]";
  EXPECT_EQ(FormatProgress(progress, 59), "[2/7] talk.pptx 100/200 texts on 12 slides, 0:30 left");
  EXPECT_EQ(FormatProgress(progress, 79),
            "[2/7] talk.pptx [###########............] 100/200 texts on 12 slides, 0:30 left");
}

TEST(ProgressLine, ANarrowTerminalStillShowsHowFarItIs) {
  EXPECT_EQ(FormatProgress(Halfway(), 10), "50%");
  EXPECT_EQ(FormatProgress(Halfway(), 40), "100/200 texts on 12 slides, 0:30 left");
}

TEST(OutcomeText, TellsWhatWasTranslatedKeptAndLost) {
  RunRecord record;
  record.units = 10;
  record.changed = 7;
  record.unchanged = 2;
  record.failed.resize(1);
  EXPECT_EQ(OutcomeLine({"a.pptx", "a.es.pptx"}, record, 1.25),
            "a.pptx: 7 texts translated, 2 left as they were, 1 not written, in 1.2 s; saved as "
            "a.es.pptx");
  EXPECT_EQ(OutcomeLine({"a.pptx", "a.pptx"}, record, 0),
            "a.pptx: 7 texts translated, 2 left as they were, 1 not written, in 0.0 s; saved in "
            "place");
}

TEST(OutcomeText, OneAndNoneAreToldAsSuch) {
  RunRecord record;
  record.units = 2;
  record.changed = 1;
  record.unchanged = 1;
  EXPECT_EQ(OutcomeLine({"a.pptx", "-"}, record, 0),
            "a.pptx: 1 text translated, 1 left as it was, in 0.0 s; saved as standard output");
  record.unchanged = 0;
  record.changed = 2;
  EXPECT_EQ(OutcomeLine({"-", "b.pptx"}, record, 0),
            "standard input: 2 texts translated in 0.0 s; saved as b.pptx");
}

TEST(OutcomeText, AProgramGetsOneObjectAtTheBeginAndOneAtTheEnd) {
  EXPECT_EQ(DeckJson({"a\".pptx", "b.pptx"}, 2, 7),
            "{\"event\":\"deck\",\"deck\":\"a\\\".pptx\",\"output\":\"b.pptx\",\"number\":2,"
            "\"count\":7}");
  DeckEnd end;
  end.exitCode = 3;
  end.seconds = 1.5;
  end.saved = true;
  end.record.units = 3;
  end.record.changed = 1;
  end.record.unchanged = 1;
  end.record.failed = {{4, u"shapes[1].tbl[1][2]", 1, 2, u"one"}};
  end.record.slidesNotReached = {4, 5};
  EXPECT_EQ(ResultJson({"a.pptx", "b.pptx"}, end),
            "{\"event\":\"result\",\"deck\":\"a.pptx\",\"output\":\"b.pptx\",\"exitCode\":3,"
            "\"seconds\":1.500,\"error\":null,\"texts\":3,\"translated\":1,\"unchanged\":1,"
            "\"notAnswered\":0,\"withoutLetters\":0,\"failures\":[{\"slide\":4,\"shape\":\"\","
            "\"place\":\"shapes[1].tbl[1][2]\",\"row\":1,\"column\":2,\"text\":\"one\","
            "\"reason\":\"not written\"}],\"left\":[],\"slidesNotWritten\":[4,5]}");
  end = {};
  end.exitCode = 2;
  end.error = "Cannot open a.pptx: no such file.";
  EXPECT_NE(ResultJson({"a.pptx", "b.pptx"}, end)
                .find("\"output\":null,\"exitCode\":2,\"seconds\":0.000,\"error\":\"Cannot open"),
            std::string::npos);
}

TEST(Sentences, WhatCannotBeDoneIsToldInOneStyle) {
  EXPECT_EQ(CannotSentence("open a.pptx", "No such file."), "Cannot open a.pptx: no such file.");
  EXPECT_EQ(CannotSentence("open a.pptx", "A part is missing"),
            "Cannot open a.pptx: a part is missing.");
  EXPECT_EQ(CannotSentence("open a.pptx", "XML is wrong"), "Cannot open a.pptx: XML is wrong.");
}

TEST(OutcomeText, ADeckWithoutTextSaysSo) {
  EXPECT_EQ(OutcomeLine({"a.pptx", "b.pptx"}, {}, 0),
            "a.pptx: there is no text to translate; copied unchanged to b.pptx");
}

TEST(OutcomeText, EachLostTextIsNamedBySlideAndSource) {
  RunRecord record;
  record.failed = {{3, u"shapes[2].p1", 0, 0, u"Energy\vis", u"Title 1", FailCause::kRefused,
                    MakeResult(0x80010001)},
                   {4, u"shapes[1].tbl[1][2]", 1, 2, Wide(300, u'x')},
                   {5, u"shapes[1].p1", 0, 0, u"a", u"Title", FailCause::kPlaceChanged}};
  record.slidesNotReached = {4, 9};
  EXPECT_FALSE(ReachedTheDeck(record));
  const auto lines = LostTextLines(record);
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines[0],
            "slide 3, \"Title 1\": not written, the host refused it (0x80010001): \"Energy is\"");
  EXPECT_EQ(lines[1], "slide 4, shapes[1].tbl[1][2], row 1, column 2: not written: \"" +
                          std::string(57, 'x') + "...\"");
  EXPECT_EQ(lines[2], "slide 5, \"Title\": not written, another text is there now: \"a\"");
  EXPECT_EQ(lines[3], "slide 9: not written");
}

TEST(OutcomeText, WhatWasLeftIsListedWithItsCause) {
  RunRecord record;
  record.left = {{1, u"p1", 0, 0, u"OK", u"Box", FailCause::kUnchanged},
                 {2, u"p1", 0, 0, u"Late", u"Box", FailCause::kNotAnswered}};
  EXPECT_EQ(
      LeftTextLines(record),
      (std::vector<std::string>{"slide 1, \"Box\": left as it was: \"OK\"",
                                "slide 2, \"Box\": not translated, no answer came: \"Late\""}));
  EXPECT_TRUE(ReachedTheDeck(record));
  record.notAnswered = 1;
  EXPECT_FALSE(ReachedTheDeck(record));
}

TEST(Sentences, ASelectionThatFailedIsToldByItsCode) {
  EXPECT_EQ(FailureSentence(u"collect_failed", u"任何句子", kSelectionTooLarge),
            "the selection is too large; select less");
  EXPECT_EQ(FailureSentence(u"collect_failed", u"任何句子", kFail),
            "the texts of the deck could not be read");
}

}  // namespace

}  // namespace quillmarch::host
