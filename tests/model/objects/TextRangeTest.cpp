#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Para;
using testdeck::RunXml;
using testdeck::TextPara;

class TextRange : public ModelTest {};

TEST_F(TextRange, ParagraphsAreSeparatedByReturnsAndLinesByVerticalTabs) {
  OpenSlide(
      Box(TextPara("One") + Para(RunXml("Two") + "<a:br/>" + RunXml("three")) + TextPara("Four")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"One\rTwo\vthree\rFour");
  const ObjectRef all = Part(Range(1), u"Paragraphs", -1, -1);
  EXPECT_EQ(Whole(all, u"Count"), 3);
  EXPECT_EQ(TextOf(Part(Range(1), u"Paragraphs", 1, 1), u"Text"), u"One\r");
  EXPECT_EQ(TextOf(Part(Range(1), u"Paragraphs", 2, 1), u"Text"), u"Two\vthree\r");
  EXPECT_EQ(TextOf(Part(Range(1), u"Paragraphs", 3, 1), u"Text"), u"Four");
  EXPECT_EQ(Whole(Part(Range(1), u"Paragraphs", 2, 1), u"Start"), 5);
  EXPECT_EQ(Whole(Part(Range(1), u"Paragraphs", 2, 1), u"Length"), 10);
}

TEST_F(TextRange, AnEmptyFrameHasNoTextAndNoParagraphs) {
  OpenSlide(Box("<a:p><a:endParaRPr/></a:p>"));
  EXPECT_EQ(Whole(Get(Shape(1), u"TextFrame"), u"HasText"), 0);
  EXPECT_EQ(Whole(Part(Range(1), u"Paragraphs", -1, -1), u"Count"), 0);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"");
}

TEST_F(TextRange, AFieldCountsByItsShownText) {
  OpenSlide(Box(Para(RunXml("Page ") + "<a:fld id=\"{0}\" type=\"slidenum\"><a:rPr/><a:t>7</a:t>"
                                       "</a:fld>")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"Page 7");
}

TEST_F(TextRange, WhatLiesBeyondTheEndGivesTheLastUnit) {
  OpenSlide(Box(TextPara("abc") + TextPara("de")));
  EXPECT_EQ(TextOf(Part(Range(1), u"Paragraphs", 9, 1), u"Text"), u"de");
  EXPECT_EQ(TextOf(Part(Range(1), u"Characters", 99, 5), u"Text"), u"e");
  EXPECT_EQ(TextOf(Part(Range(1), u"Characters", 5, 99), u"Text"), u"de");
  EXPECT_EQ(TextOf(Get(Range(1), u"Characters", {Variant::I4(2)}), u"Text"), u"b");
}

TEST_F(TextRange, ASpaceIsText) {
  OpenSlide(Box(Para(RunXml("a") + RunXml(" ") + RunXml("b"))));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"a b");
}

TEST_F(TextRange, NewTextKeepsTheFirstRunsFormatAndEveryByteAroundIt) {
  const std::string head = "<a:p><a:pPr lvl='1'/> ";
  const std::string tail = "<a:endParaRPr lang=\"de-DE\"/></a:p>";
  OpenSlide(Box(head + RunXml("Old", "<a:rPr lang=\"en-US\" sz=\"2000\" dirty=\"0\" err=\"1\"/>") +
                RunXml("er", "<a:rPr b=\"1\"/>") + tail));
  ASSERT_EQ(Put(Range(1), u"New & <old>"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"New & <old>");
  std::string expected = slideXml;
  const std::string old =
      RunXml("Old", "<a:rPr lang=\"en-US\" sz=\"2000\" dirty=\"0\" err=\"1\"/>") +
      RunXml("er", "<a:rPr b=\"1\"/>");
  expected.replace(expected.find(old), old.size(),
                   RunXml("New &amp; &lt;old&gt;", "<a:rPr lang=\"en-US\" sz=\"2000\"/>"));
  EXPECT_EQ(Saved(), expected);
}

TEST_F(TextRange, AWriteThatLeavesTheMarkKeepsTheOtherParagraphs) {
  OpenSlide(Box(TextPara("One") + TextPara("Two")));
  const ObjectRef paragraph = Part(Range(1), u"Paragraphs", 1, 1);
  ASSERT_EQ(Put(Part(paragraph, u"Characters", 1, 3), u"Uno"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"Uno\rTwo");
}

TEST_F(TextRange, AWriteOverTheMarkJoinsTheNextParagraph) {
  OpenSlide(Box(TextPara("One") + TextPara("Two") + TextPara("Three")));
  ASSERT_EQ(Put(Part(Range(1), u"Paragraphs", 1, 1), u"Uno"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"UnoTwo\rThree");
  std::string expected = slideXml;
  const std::string old = TextPara("One") + TextPara("Two");
  expected.replace(expected.find(old), old.size(), Para(RunXml("Uno") + RunXml("Two")));
  EXPECT_EQ(Saved(), expected);
}

TEST_F(TextRange, ATextThatEndsInAReturnKeepsTheNextParagraph) {
  OpenSlide(Box(TextPara("One") + TextPara("Two")));
  ASSERT_EQ(Put(Part(Range(1), u"Paragraphs", 1, 1), u"Uno\r"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"Uno\rTwo");
}

TEST_F(TextRange, AllLineEndsSplitParagraphsAndVerticalTabsBreakLines) {
  OpenSlide(Box(Para("<a:pPr algn=\"ctr\"/>" + RunXml("Old", "<a:rPr b=\"1\"/>"))));
  ASSERT_EQ(Put(Range(1), u"a\rb\nc\r\nd\ve"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"a\rb\rc\rd\ve");
  const std::string bold = "<a:rPr b=\"1\"/>";
  const std::string center = "<a:pPr algn=\"ctr\"/>";
  EXPECT_NE(Saved().find(
                Para(center + RunXml("a", bold)) + Para(center + RunXml("b", bold)) +
                Para(center + RunXml("c", bold)) +
                Para(center + RunXml("d", bold) + "<a:br>" + bold + "</a:br>" + RunXml("e", bold))),
            std::string::npos);
}

TEST_F(TextRange, TheWholeFrameBecomesOneParagraphOfTheFirstFormat) {
  OpenSlide(Box(Para("<a:pPr algn=\"r\"/>" + RunXml("One", "<a:rPr i=\"1\"/>")) + TextPara("Two") +
                TextPara("Three")));
  ASSERT_EQ(Put(Range(1), u"All"), kOk);
  EXPECT_EQ(Whole(Part(Range(1), u"Paragraphs", -1, -1), u"Count"), 1);
  EXPECT_NE(
      Saved().find("<a:lstStyle/>" +
                   Para("<a:pPr algn=\"r\"/>" + RunXml("All", "<a:rPr i=\"1\"/>")) + "</p:txBody>"),
      std::string::npos);
}

TEST_F(TextRange, TheSameTextAgainIsNoEdit) {
  OpenSlide(Box(Para(RunXml("Same", "<a:rPr err=\"1\"/>"))));
  ASSERT_EQ(Put(Range(1), u"Same"), kOk);
  EXPECT_FALSE(host->Edited());
  EXPECT_EQ(Saved(), slideXml);
}

TEST_F(TextRange, TheEmptyParagraphsFormatGoesToItsFirstText) {
  OpenSlide(Box("<a:p><a:endParaRPr lang=\"fr-FR\" sz=\"3200\"/></a:p>"));
  ASSERT_EQ(Put(Range(1), u"Neu"), kOk);
  EXPECT_NE(Saved().find("<a:p>" + RunXml("Neu", "<a:rPr lang=\"fr-FR\" sz=\"3200\"/>") +
                         "<a:endParaRPr lang=\"fr-FR\" sz=\"3200\"/></a:p>"),
            std::string::npos);
}

TEST_F(TextRange, ASelfClosedParagraphTakesText) {
  OpenSlide(Box(TextPara("a") + "<a:p/>" + TextPara("b")));
  ASSERT_EQ(Put(Part(Range(1), u"Characters", 3, 0), u"x"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"a\rx\rb");
  EXPECT_NE(Saved().find(TextPara("a") + TextPara("x") + TextPara("b")), std::string::npos);
}

TEST_F(TextRange, EmptiedTextLeavesItsFormat) {
  OpenSlide(Box(Para(RunXml("gone", "<a:rPr sz=\"1200\"/>"))));
  ASSERT_EQ(Put(Range(1), u""), kOk);
  EXPECT_NE(Saved().find("<a:p><a:endParaRPr sz=\"1200\"/></a:p>"), std::string::npos);
}

TEST_F(TextRange, AHyperlinkOfTheFirstRunStays) {
  const std::string link = "<a:rPr><a:hlinkClick r:id=\"h1\"/></a:rPr>";
  OpenSlide(Box(Para(RunXml("click", link) + RunXml(" here"))));
  ASSERT_EQ(Put(Range(1), u"pulse"), kOk);
  EXPECT_NE(Saved().find(Para(RunXml("pulse", link))), std::string::npos);
}

TEST_F(TextRange, PartOfARunIsReplacedAndTheRestKeepsItsFormat) {
  OpenSlide(Box(Para(RunXml("abcdef", "<a:rPr b=\"1\"/>"))));
  ASSERT_EQ(Put(Part(Range(1), u"Characters", 3, 2), u"XY"), kOk);
  EXPECT_NE(Saved().find(Para(RunXml("ab", "<a:rPr b=\"1\"/>") + RunXml("XY", "<a:rPr b=\"1\"/>") +
                              RunXml("ef", "<a:rPr b=\"1\"/>"))),
            std::string::npos);
}

TEST_F(TextRange, PartOfAFieldLeavesPlainText) {
  OpenSlide(Box(Para("<a:fld id=\"{0}\" type=\"slidenum\"><a:t>123</a:t></a:fld>" + RunXml(" x"))));
  ASSERT_EQ(Put(Part(Range(1), u"Characters", 1, 1), u"9"), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"923 x");
  EXPECT_NE(Saved().find(Para(RunXml("9") + RunXml("23") + RunXml(" x"))), std::string::npos);
}

TEST_F(TextRange, WhatXmlCannotHoldIsLeftOutOfTheText) {
  OpenSlide(Box(TextPara("old")));
  ASSERT_EQ(Put(Range(1), Wide(u"a\u0001b\uFFFFc\td") + Wide(1, char16_t{0xD800})), kOk);
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"abc\td\uFFFD");
  EXPECT_NE(Saved().find("<a:t>abc\td\xEF\xBF\xBD</a:t>"), std::string::npos);
}

TEST_F(TextRange, ALineEndInsideARunReadsAsASpace) {
  OpenSlide(Box(TextPara("a&#13;b\nc")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"a b c");
  EXPECT_EQ(Whole(Part(Range(1), u"Paragraphs", -1, -1), u"Count"), 1);
}

TEST_F(TextRange, RunsAreStretchesOfEqualProperties) {
  OpenSlide(Box(Para(RunXml("ab", "<a:rPr b=\"1\"/>") +
                     RunXml("cd", "<a:rPr lang=\"x\" b=\"1\"/>") + RunXml("ef")) +
                TextPara("gh")));
  const ObjectRef runs = Part(Range(1), u"Runs", -1, -1);
  EXPECT_EQ(Whole(runs, u"Count"), 3);
  EXPECT_EQ(TextOf(Part(Range(1), u"Runs", 1, 1), u"Text"), u"abcd");
  EXPECT_EQ(TextOf(Part(Range(1), u"Runs", 2, 1), u"Text"), u"ef\r");
  EXPECT_EQ(TextOf(Part(Range(1), u"Runs", 3, 1), u"Text"), u"gh");
}

TEST_F(TextRange, AnEquationIsNeverWrittenOver) {
  const std::string equation =
      "<mc:AlternateContent><mc:Choice Requires=\"a14\"><a14:m><m:oMath><m:r><m:t>x</m:t></m:r>"
      "</m:oMath></a14:m></mc:Choice><mc:Fallback>" +
      RunXml("x") +
      "</mc:Fallback>"
      "</mc:AlternateContent>";
  OpenSlide(Box(Para(RunXml("Let ") + equation + RunXml(" be")) + Para(RunXml("E = ") + equation) +
                TextPara("free")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"Let  be\rE = \rfree");
  for (int i : {1, 2}) {
    const ObjectRef paragraph = Part(Range(1), u"Paragraphs", i, 1);
    const int length = Whole(paragraph, u"Length");
    EXPECT_TRUE(Failed(Put(Part(paragraph, u"Characters", 1, length - 1), u"no")));
  }
  EXPECT_TRUE(Failed(Put(Range(1), u"no")));
  EXPECT_FALSE(host->Edited());
  EXPECT_EQ(Put(Part(Range(1), u"Paragraphs", 3, 1), u"yes"), kOk);
  EXPECT_EQ(Put(Part(Range(1), u"Characters", 1, 3), u"Set"), kOk);
  EXPECT_NE(Saved().find(Para(RunXml("Set") + RunXml(" ") + equation + RunXml(" be"))),
            std::string::npos);
}

TEST_F(TextRange, AnEquationWithoutAlternativesIsKeptToo) {
  const std::string equation = "<a14:m><m:oMath/></a14:m>";
  OpenSlide(Box(Para(equation + RunXml("text"))));
  EXPECT_TRUE(Failed(Put(Range(1), u"no")));
  EXPECT_EQ(Saved(), slideXml);
}

TEST_F(TextRange, WritesFromTheLastParagraphToTheFirstLandWhereTheyShould) {
  OpenSlide(Box(TextPara("one") + TextPara("two") + TextPara("three")));
  for (int i = 3; i >= 1; --i) {
    const ObjectRef paragraph = Part(Range(1), u"Paragraphs", i, 1);
    const Wide text = TextOf(paragraph, u"Text");
    const int length = static_cast<int>(text.size()) - (text.back() == u'\r' ? 1 : 0);
    ASSERT_EQ(Put(Part(paragraph, u"Characters", 1, length),
                  u"[" + text.substr(0, static_cast<std::size_t>(length)) + u"]"),
              kOk);
  }
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"[one]\r[two]\r[three]");
}

TEST_F(TextRange, ARangeOutlivesItsPartsLeavingMemory) {
  testdeck::DeckSource source;
  for (int i = 0; i < 8; ++i)
    source.slides.push_back({testdeck::SlideXml(Box(TextPara("old"))), {}, {}, {}});
  OpenDeck(source);
  const ObjectRef range = Range(1, 1);
  ASSERT_EQ(Put(range, u"new"), kOk);
  for (int i = 2; i <= 8; ++i) EXPECT_EQ(TextOf(Range(1, i), u"Text"), u"old");
  EXPECT_EQ(TextOf(range, u"Text"), u"new");
  ASSERT_EQ(Put(range, u"newer"), kOk);
  EXPECT_NE(Saved().find(TextPara("newer")), std::string::npos);
}

TEST_F(TextRange, RunsOutsideTheRangeKeepTheirBytesAndTheSpacesBetweenThem) {
  OpenSlide(
      Box(Para(RunXml("ab") + "\n  " + RunXml("cd", "<a:rPr  b='1' />") + "\n  " + RunXml("ef"))));
  ASSERT_EQ(Put(Part(Range(1), u"Characters", 1, 2), u"XY"), kOk);
  std::string expected = slideXml;
  expected.replace(expected.find(">ab<"), 4, ">XY<");
  EXPECT_EQ(Saved(), expected);
}

TEST_F(TextRange, ABorderInsideASurrogatePairTakesThePairWhole) {
  const Wide film = u"\U0001F4FD";
  OpenSlide(
      Box(TextPara("a\xF0\x9F\x93\xBD"
                   "b")));
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"a" + film + u"b");
  const ObjectRef font = Get(Part(Range(1), u"Characters", 1, 2), u"Font");
  ASSERT_EQ(AutoPut(font.get(), u"Bold", Variant::I4(-1)), kOk);
  EXPECT_NE(Saved().find("<a:t>a\xF0\x9F\x93\xBD</a:t>"), std::string::npos);
  const ObjectRef half = Part(Range(1), u"Characters", 3, 1);
  ASSERT_EQ(Put(half, u"X"), kOk);
  EXPECT_EQ(TextOf(half, u"Text"), u"X");
  EXPECT_EQ(TextOf(Range(1), u"Text"), u"aXb");
}

}  // namespace quillmarch::host
