// Edits on a text body, seen in the bytes of the part: what is spliced in and that everything
// around it stays.
#include "deck/PartUnderTest.h"
#include "host/deck/text/RunPropertiesEdit.h"
#include "host/deck/text/TextBody.h"

namespace quillmarch::host::deck {

using testdeck::Box;
using testdeck::Para;
using testdeck::RunXml;
using testdeck::TextPara;

namespace {

const std::string kBold = "<a:rPr lang=\"en-US\" b=\"1\"/>";
const std::string kEquation =
    "<mc:AlternateContent><mc:Choice Requires=\"a14\"><a14:m><m:oMath/></a14:m></mc:Choice>"
    "<mc:Fallback><a:r><a:t>x</a:t></a:r></mc:Fallback></mc:AlternateContent>";

std::string Larger(std::string_view raw, std::string_view prefix) {
  return WithRunAttribute(raw, prefix, "sz", "2400");
}

}  // namespace

TEST(TextBodyEdit, ATextBodyThatNobodyEditedGivesItsBytesBack) {
  PartUnderTest slide(Box(TextPara("One") + "<a:p  ><a:pPr lvl='1' /> <!-- c --></a:p >"));
  EXPECT_EQ(AllText(slide.Text()), u"One\r");
  EXPECT_FALSE(slide.part->Edited());
  EXPECT_EQ(slide.Bytes(), slide.xml);
}

TEST(TextBodyEdit, ANewTextReplacesTheRunsAndNoByteAroundThem) {
  const std::string runs = RunXml("Old ", kBold) + "\n  " + RunXml("text");
  PartUnderTest slide(
      Box("<a:p><a:pPr algn='ctr' />" + runs + "<a:endParaRPr dirty=\"0\"/></a:p>"));
  ASSERT_TRUE(PutText(slide.Text(), 0, 8, u"New <text>"));
  EXPECT_EQ(slide.Bytes(), slide.With(runs, RunXml("New &lt;text&gt;", kBold)));
}

TEST(TextBodyEdit, TheSameTextAgainIsNoEdit) {
  PartUnderTest slide(Box(Para(RunXml("same", kBold))));
  EXPECT_TRUE(PutText(slide.Text(), 0, 4, u"same"));
  EXPECT_FALSE(slide.part->Edited());
  EXPECT_EQ(slide.Bytes(), slide.xml);
}

TEST(TextBodyEdit, RunsOutsideTheRangeKeepTheirBytes) {
  const std::string first = "<a:r ><a:rPr i='1'/><a:t >one</a:t></a:r>";
  const std::string last = "<a:r><a:t>three</a:t></a:r>";
  PartUnderTest slide(Box(Para(first + RunXml("two", kBold) + last)));
  ASSERT_TRUE(PutText(slide.Text(), 3, 3, u"2"));
  EXPECT_EQ(slide.Bytes(), slide.With(RunXml("two", kBold), RunXml("2", kBold)));
}

TEST(TextBodyEdit, PartOfARunIsSplitFromTheRest) {
  PartUnderTest slide(Box(Para(RunXml("abcdef", kBold))));
  ASSERT_TRUE(PutText(slide.Text(), 2, 2, u"--"));
  EXPECT_EQ(AllText(slide.Text()), u"ab--ef");
  EXPECT_EQ(slide.Bytes(),
            slide.With(RunXml("abcdef", kBold),
                       RunXml("ab", kBold) + RunXml("--", kBold) + RunXml("ef", kBold)));
}

TEST(TextBodyEdit, ReturnsMakeParagraphsOfTheFirstOnesFormat) {
  PartUnderTest slide(Box("<a:p><a:pPr lvl=\"1\"/>" + RunXml("old", kBold) + "</a:p>"));
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, u"one\rtwo\nthree\r\nfour"));
  EXPECT_EQ(slide.Text().ParagraphCount(), 4U);
  EXPECT_EQ(AllText(slide.Text()), u"one\rtwo\rthree\rfour");
  const auto para = [](const std::string& text) {
    return "<a:p><a:pPr lvl=\"1\"/>" + RunXml(text, kBold) + "</a:p>";
  };
  EXPECT_EQ(slide.Bytes(),
            slide.With(para("old"), para("one") + para("two") + para("three") + para("four")));
}

TEST(TextBodyEdit, AVerticalTabBreaksTheLineInTheRunsFormat) {
  PartUnderTest slide(Box(Para(RunXml("old", kBold))));
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, u"a\vb"));
  EXPECT_EQ(slide.Bytes(), slide.With(RunXml("old", kBold), RunXml("a", kBold) + "<a:br>" + kBold +
                                                                "</a:br>" + RunXml("b", kBold)));
}

TEST(TextBodyEdit, AParagraphWithinItsMarkIsReplacedAndTheNextOneStays) {
  PartUnderTest slide(Box(TextPara("one") + TextPara("two") + TextPara("three")));
  ASSERT_TRUE(PutText(slide.Text(), 4, 4, u"2\r"));
  EXPECT_EQ(AllText(slide.Text()), u"one\r2\rthree");
  EXPECT_EQ(slide.Bytes(), slide.With("<a:t>two</a:t>", "<a:t>2</a:t>"));
}

TEST(TextBodyEdit, ARangeOverTheMarkJoinsTheParagraphs) {
  PartUnderTest slide(Box(TextPara("one") + "<a:p><a:pPr lvl=\"2\"/>" + RunXml("two") + "</a:p>"));
  ASSERT_TRUE(PutText(slide.Text(), 2, 3, u"-"));
  EXPECT_EQ(AllText(slide.Text()), u"on-wo");
  EXPECT_EQ(slide.Text().ParagraphCount(), 1U);
  const std::string bytes = slide.Bytes();
  EXPECT_EQ(bytes.find("lvl=\"2\""), std::string::npos);
}

TEST(TextBodyEdit, ManyParagraphsWrittenFromTheLastToTheFirstLandWhereTheyBelong) {
  constexpr std::size_t kCount = 300;
  std::string paragraphs;
  for (std::size_t i = 0; i < kCount; ++i) paragraphs += TextPara("p" + std::to_string(i));
  PartUnderTest slide(Box(paragraphs));
  for (std::size_t i = kCount; i-- > 0;) {
    const TextSpan place = slide.Text().Paragraph(i);
    const std::size_t length = place.length - (i + 1 < kCount ? 1 : 0);
    ASSERT_TRUE(PutText(
        slide.Text(), place.start, length,
        i % 3 == 0 ? Wide(u"longer ") + Decimal(static_cast<std::int64_t>(i)) : Wide(u"x")));
  }
  Wide expected;
  for (std::size_t i = 0; i < kCount; ++i) {
    if (i > 0) expected += u'\r';
    expected += i % 3 == 0 ? u"longer " + Decimal(static_cast<std::int64_t>(i)) : Wide(u"x");
  }
  EXPECT_EQ(AllText(slide.Text()), expected);
  PartUnderTest again("");
  again.part = SlidePart::Parse(slide.Bytes());
  EXPECT_EQ(AllText(again.Text()), expected) << "as the file now has it";
}

TEST(TextBodyEdit, PlacesAreRightAgainAfterParagraphsCameAndWent) {
  PartUnderTest slide(Box(TextPara("aa") + TextPara("bb") + TextPara("cc")));
  TextBody& body = slide.Text();
  ASSERT_TRUE(PutText(body, 3, 2, u"1\r22\r333"));
  ASSERT_EQ(AllText(body), u"aa\r1\r22\r333\rcc");
  EXPECT_EQ(body.Paragraph(4).start, 12U);
  EXPECT_EQ(body.ParagraphAt(11), 3U);
  ASSERT_TRUE(PutText(body, 0, 9, u"z"));
  ASSERT_EQ(AllText(body), u"z33\rcc");
  EXPECT_EQ(body.ParagraphCount(), 2U);
  EXPECT_EQ(body.Paragraph(1).start, 4U);
}

TEST(TextBodyEdit, ASelfClosedParagraphIsOpenedForItsText) {
  PartUnderTest slide(Box("<a:p/>"));
  ASSERT_TRUE(PutText(slide.Text(), 0, 0, u"new"));
  EXPECT_EQ(slide.Bytes(), slide.With("<a:p/>", Para(RunXml("new"))));
}

TEST(TextBodyEdit, AnEmptyParagraphsFirstTextTakesTheFormatOfItsMark) {
  PartUnderTest slide(Box("<a:p><a:endParaRPr lang=\"de-DE\" sz=\"3000\"/></a:p>"));
  ASSERT_TRUE(PutText(slide.Text(), 0, 0, u"new"));
  EXPECT_EQ(slide.Bytes(),
            slide.With("<a:endParaRPr",
                       RunXml("new", "<a:rPr lang=\"de-DE\" sz=\"3000\"/>") + "<a:endParaRPr"));
}

TEST(TextBodyEdit, EmptiedTextLeavesItsFormatOnTheMark) {
  PartUnderTest slide(Box(Para(RunXml("old", kBold))));
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, u""));
  EXPECT_EQ(slide.Bytes(),
            slide.With(RunXml("old", kBold), "<a:endParaRPr lang=\"en-US\" b=\"1\"/>"));
}

TEST(TextBodyEdit, WhatXmlCannotHoldIsDroppedAndHalfAPairIsReplaced) {
  PartUnderTest slide(Box(Para(RunXml("old"))));
  const Wide text = Wide(u"a") + u'\x01' + u'\xFFFF' + Wide(1, 0xD83D) + u"b\t";
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, text));
  EXPECT_EQ(AllText(slide.Text()), u"a\uFFFDb\t");
  EXPECT_EQ(slide.Bytes(), slide.With("old",
                                      "a\xEF\xBF\xBD"
                                      "b\t"));
}

TEST(TextBodyEdit, ARangeInsideASurrogatePairTakesThePairWhole) {
  PartUnderTest slide(Box(TextPara("a\xF0\x9F\x98\x80z")));
  ASSERT_TRUE(PutText(slide.Text(), 2, 1, u"-"));
  EXPECT_EQ(AllText(slide.Text()), u"a-z");
}

TEST(TextBodyEdit, AnEquationRefusesTheTextAndNothingChanges) {
  PartUnderTest slide(Box(Para(RunXml("is ") + kEquation + RunXml(" so"))));
  const Wide before = AllText(slide.Text());
  EXPECT_FALSE(PutText(slide.Text(), 0, before.size(), u"new"));
  EXPECT_EQ(AllText(slide.Text()), before);
  EXPECT_FALSE(slide.part->Edited());
}

TEST(TextBodyEdit, TextBesideAnEquationIsReplacedAndTheEquationKeepsItsBytes) {
  PartUnderTest slide(Box(Para(RunXml("is ") + kEquation + RunXml(" so"))));
  ASSERT_TRUE(PutText(slide.Text(), 0, 2, u"was"));
  EXPECT_EQ(slide.Bytes(), slide.With(RunXml("is "), RunXml("was") + RunXml(" ")));
}

TEST(TextBodyEdit, ASecondTextInARunIsNotLostWhenTheRunIsReplaced) {
  const std::string run = "<a:r>" + kBold + "<a:t>one </a:t><a:t>two</a:t></a:r>";
  PartUnderTest slide(Box(Para(run)));
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, u"1"));
  EXPECT_EQ(AllText(slide.Text()), u"1 two");
  EXPECT_EQ(slide.Bytes(), slide.With(run, RunXml("1", kBold) + RunXml(" two", kBold)));
}

TEST(TextBodyEdit, ARunWithUnknownContentIsReadAndNeverWrittenOver) {
  for (const char* unknown : {"<x:note xmlns:x=\"urn:x\">kept</x:note>", "<a:unheardOf/>"}) {
    PartUnderTest slide(Box(Para("<a:r><a:t>text</a:t>" + std::string(unknown) + "</a:r>")));
    EXPECT_EQ(AllText(slide.Text()), u"text");
    EXPECT_FALSE(PutText(slide.Text(), 0, 4, u"new")) << unknown;
    EXPECT_EQ(slide.Bytes(), slide.xml) << unknown;
  }
}

TEST(TextBodyEdit, AnElementInsideARunsTextIsNeverWrittenOver) {
  PartUnderTest slide(Box(Para("<a:r><a:t>a<x:b xmlns:x=\"urn:x\">c</x:b></a:t></a:r>")));
  EXPECT_FALSE(PutText(slide.Text(), 0, 1, u"new"));
  EXPECT_EQ(slide.Bytes(), slide.xml);
}

TEST(TextBodyEdit, AFieldStaysOneAsLongAsItsTextDoes) {
  const std::string field =
      "<a:fld id=\"{0}\" type=\"slidenum\"><a:rPr/><a:pPr/><a:t>7</a:t></a:fld>";
  PartUnderTest slide(Box(Para(RunXml("Page ") + field)));
  ASSERT_TRUE(PutText(slide.Text(), 0, 5, u"P. "));
  EXPECT_EQ(slide.Bytes(), slide.With("<a:t>Page </a:t>", "<a:t>P. </a:t>"));
}

TEST(TextBodyEdit, PropertiesGoToTheRunsOfTheRangeOnly) {
  PartUnderTest slide(Box(Para(RunXml("abcd", kBold) + RunXml("ef"))));
  slide.Text().EditProps({2, 2}, Larger);
  EXPECT_EQ(slide.Bytes(),
            slide.With(
                RunXml("abcd", kBold),
                RunXml("ab", kBold) + RunXml("cd", "<a:rPr sz=\"2400\" lang=\"en-US\" b=\"1\"/>")));
}

TEST(TextBodyEdit, PropertiesThatAreThereAlreadyAreNoEdit) {
  PartUnderTest slide(Box(Para(RunXml("abcd", "<a:rPr sz=\"2400\"/>"))));
  slide.Text().EditProps({0, 4}, Larger);
  EXPECT_FALSE(slide.part->Edited());
  EXPECT_EQ(slide.Bytes(), slide.xml);
}

TEST(TextBodyEdit, ARunWhosePropertiesChangeKeepsEverythingElseOfItsElement) {
  const std::string run = "<a:r ><!-- c --><a:rPr\n b='1'></a:rPr> <a:t>x</a:t ></a:r>";
  PartUnderTest slide(Box(Para(run)));
  slide.Text().EditProps({0, 1}, Larger);
  EXPECT_EQ(slide.Bytes(), slide.With("<a:rPr\n b='1'>", "<a:rPr sz=\"2400\"\n b='1'>"));
}

TEST(TextBodyEdit, AnEmptyParagraphInTheRangeTakesThePropertiesOnItsMark) {
  PartUnderTest slide(Box(TextPara("a") + "<a:p><a:pPr/></a:p>" + TextPara("b")));
  slide.Text().EditProps({0, 4}, Larger);
  const std::string size = "<a:rPr sz=\"2400\"/>";
  EXPECT_EQ(slide.Bytes(),
            slide.With(TextPara("a") + "<a:p><a:pPr/></a:p>" + TextPara("b"),
                       Para(RunXml("a", size)) + "<a:p><a:pPr/><a:endParaRPr sz=\"2400\"/></a:p>" +
                           Para(RunXml("b", size))));
}

TEST(TextBodyEdit, EachEditCountsAsARevision) {
  PartUnderTest slide(Box(TextPara("a")));
  EXPECT_EQ(slide.Text().Revision(), 0U);
  ASSERT_TRUE(PutText(slide.Text(), 0, 1, u"b"));
  const std::uint64_t once = slide.Text().Revision();
  EXPECT_GT(once, 0U);
  slide.Text().EditProps({0, 1}, Larger);
  EXPECT_GT(slide.Text().Revision(), once);
}

}  // namespace quillmarch::host::deck
