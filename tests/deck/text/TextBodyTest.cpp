// Reading a text body: paragraphs, runs, breaks, fields and what is never rewritten.
#include "host/deck/text/TextBody.h"

#include "deck/PartUnderTest.h"

namespace quillmarch::host::deck {

using testdeck::Box;
using testdeck::Para;
using testdeck::RunXml;
using testdeck::TextPara;

TEST(TextBody, ParagraphsAreSeparatedByReturnsAndLinesByVerticalTabs) {
  PartUnderTest slide(Box(TextPara("One") + Para(RunXml("Two") + "<a:br/>" + RunXml("three"))));
  EXPECT_EQ(AllText(slide.Text()), u"One\rTwo\vthree");
  EXPECT_EQ(slide.Text().ParagraphCount(), 2U);
  EXPECT_EQ(slide.Text().Paragraph(0).length, 4U) << "with its mark";
  EXPECT_EQ(slide.Text().Paragraph(1).start, 4U);
  EXPECT_EQ(slide.Text().Paragraph(1).length, 9U) << "the last one has no mark";
}

TEST(TextBody, APositionBelongsToTheParagraphThatHoldsItOrItsMark) {
  PartUnderTest slide(Box(TextPara("ab") + TextPara("") + TextPara("c")));
  TextBody& body = slide.Text();
  const std::size_t expected[] = {0, 0, 0, 1, 2, 2, 2};
  for (std::size_t position = 0; position < std::size(expected); ++position) {
    EXPECT_EQ(body.ParagraphAt(position), expected[position]) << position;
  }
}

TEST(TextBody, ABodyWithoutParagraphsIsEmpty) {
  PartUnderTest slide(Box(""));
  EXPECT_EQ(slide.Text().Length(), 0U);
  EXPECT_EQ(slide.Text().ParagraphCount(), 0U);
  EXPECT_EQ(slide.Text().ParagraphAt(5), 0U);
  EXPECT_EQ(AllText(slide.Text()), u"");
  EXPECT_TRUE(slide.Text().Runs({0, 1}).empty());
  EXPECT_FALSE(PutText(slide.Text(), 0, 0, u"text")) << "there is no paragraph to hold it";
  EXPECT_FALSE(slide.part->Edited());
}

TEST(TextBody, LineEndsInsideARunReadAsSpaces) {
  PartUnderTest slide(Box(TextPara("a\nb&#13;c&#10;d")));
  EXPECT_EQ(AllText(slide.Text()), u"a b c d");
}

TEST(TextBody, EntitiesCdataAndCommentsInARunAreReadAsXmlSays) {
  PartUnderTest slide(Box(TextPara("a &lt;&amp;&#x4E2D;<!-- not this --><![CDATA[<b>]]>")));
  EXPECT_EQ(AllText(slide.Text()), u"a <&\u4E2D<b>");
}

TEST(TextBody, ASpaceIsText) {
  PartUnderTest slide(Box(Para(RunXml("a") + RunXml(" ") + RunXml("b"))));
  EXPECT_EQ(AllText(slide.Text()), u"a b");
}

TEST(TextBody, ASecondTextInARunIsReadWithTheFirst) {
  PartUnderTest slide(Box(Para("<a:r><a:rPr/><a:t>one </a:t><a:t>two</a:t></a:r>")));
  EXPECT_EQ(AllText(slide.Text()), u"one two");
}

TEST(TextBody, TextBeyondTheEndIsNone) {
  PartUnderTest slide(Box(TextPara("ab") + TextPara("cd")));
  EXPECT_EQ(slide.Text().Text({5, 9}), u"");
  EXPECT_EQ(slide.Text().Text({3, 99}), u"cd");
  EXPECT_EQ(slide.Text().Text({99, 1}), u"");
}

TEST(TextBody, OfAlternativesTheBranchThatIsUnderstoodIsRead) {
  PartUnderTest slide(
      Box(Para(RunXml("x") + "<mc:AlternateContent><mc:Choice Requires=\"unknown\">" +
               RunXml("new") + "</mc:Choice><mc:Fallback>" + RunXml("old") + "<a:br/>" +
               "</mc:Fallback></mc:AlternateContent>")));
  EXPECT_EQ(AllText(slide.Text()), u"xold\v");
}

TEST(TextBody, ALevelOutOfRangeIsTheFirst) {
  PartUnderTest slide(
      Box("<a:p><a:pPr lvl=\"3\"/></a:p><a:p><a:pPr lvl=\"9\"/></a:p>"
          "<a:p><a:pPr lvl=\"-1\"/></a:p><a:p><a:pPr lvl=\"x\"/></a:p>"));
  std::vector<std::size_t> levels;
  slide.Text().SetStyle(std::make_shared<BodyStyle>());
  slide.Text().VisitParagraphs([&](const ShownParagraph& shown) { levels.push_back(shown.level); });
  EXPECT_EQ(levels, (std::vector<std::size_t>{3, 0, 0, 0}));
}

TEST(TextBody, RunsOfEqualPropertiesAreOneStretchWithinTheirParagraph) {
  const std::string bold = "<a:rPr b=\"1\"/>";
  PartUnderTest slide(
      Box(Para(RunXml("ab", bold) + RunXml("cd", "<a:rPr  b='true' />") + RunXml("ef")) +
          Para(RunXml("gh"))));
  const std::vector<TextSpan> runs = slide.Text().Runs({1, 7});
  ASSERT_EQ(runs.size(), 3U);
  EXPECT_EQ(runs[0].start, 1U);
  EXPECT_EQ(runs[0].length, 3U);
  EXPECT_EQ(runs[1].start, 4U);
  EXPECT_EQ(runs[1].length, 3U) << "with the paragraph's mark";
  EXPECT_EQ(runs[2].start, 7U);
  EXPECT_EQ(runs[2].length, 1U);
}

TEST(TextBody, AnotherPrefixForTheDrawingNamespaceIsRead) {
  const std::string xml =
      "<s xmlns=\"http://schemas.openxmlformats.org/presentationml/2006/main\""
      " xmlns:d=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><cSld><spTree><sp>"
      "<txBody><d:bodyPr/><d:p><d:r><d:t>old</d:t></d:r></d:p></txBody></sp></spTree></cSld></s>";
  const std::unique_ptr<SlidePart> part = SlidePart::Parse(xml);
  TextBody* const body = part->ShapeText(0);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(AllText(*body), u"old");
  ASSERT_TRUE(PutText(*body, 0, 3, u"new"));
  EXPECT_NE(part->TakeBytes().find("<d:p><d:r><d:t>new</d:t></d:r></d:p>"), std::string::npos);
}

}  // namespace quillmarch::host::deck
