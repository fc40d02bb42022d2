#include "host/layout/FillLines.h"

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

using Texts = std::vector<std::u16string>;

TEST(FillLines, WordsWrapAtSpacesAndTheSpaceHangs) {
  EXPECT_EQ((Texts{u"one two ", u"three"}), Lines(Frame(9, u"one two three")));
  EXPECT_EQ((Texts{u"one two ", u"three"}), Lines(Frame(7, u"one two three")));
  EXPECT_EQ((Texts{u"one ", u"two ", u"three"}), Lines(Frame(6.9, u"one two three")));
}

TEST(FillLines, AWidthThatFitsExactlyFits) {
  EXPECT_EQ((Texts{u"one two three"}), Lines(Frame(13, u"one two three")));
}

TEST(FillLines, ManySpacesHangTogether) {
  EXPECT_EQ((Texts{u"one      ", u"two"}), Lines(Frame(4, u"one      two")));
}

TEST(FillLines, AFrameWithoutTextHasOneEmptyLine) {
  LayoutFrame frame = Frame(10, u"");
  EXPECT_EQ((Texts{u""}), Lines(frame));
  EXPECT_NEAR(kLine, LaidOut(frame).height, kNear);
}

TEST(FillLines, AFrameWithoutParagraphsHasNoLine) {
  LayoutResult laid = LaidOut(Frame(10, std::vector<LayoutParagraph>{}));
  EXPECT_TRUE(laid.lines.empty());
  EXPECT_EQ(0.0, laid.height);
  EXPECT_EQ(0.0, laid.Bounds().width);
}

TEST(FillLines, AWordLongerThanTheLineIsCutInTheMiddle) {
  EXPECT_EQ((Texts{u"abcde", u"fghij", u"k"}), Lines(Frame(5, u"abcdefghijk")));
  EXPECT_EQ((Texts{u"ab ", u"cdefg", u"hi"}), Lines(Frame(5, u"ab cdefghi")));
}

TEST(FillLines, ALineNarrowerThanACharacterStillHoldsOne) {
  EXPECT_EQ((Texts{u"a", u"b", u"c"}), Lines(Frame(0.2, u"abc")));
  LayoutFrame narrow = Frame(1, u"ab");
  narrow.insetLeft = 100.0;
  EXPECT_EQ((Texts{u"a", u"b"}), Lines(narrow));
}

TEST(FillLines, ASurrogatePairAndACombiningMarkAreNotCut) {
  EXPECT_EQ((Texts{u"\U00020000", u"\U00020001"}), Lines(Frame(0.2, u"\U00020000\U00020001")));
  EXPECT_EQ((Texts{u"e\u0301", u"e\u0301"}), Lines(Frame(1, u"e\u0301e\u0301")));
}

TEST(FillLines, ChineseTextBreaksWithoutSpaces) {
  // A Chinese character is as wide as the size: six to a line of 60 points.
  EXPECT_EQ((Texts{u"本季度的评审", u"表明每个地区", u"都完成"}),
            Lines(Frame(60.0 / kCell, u"本季度的评审表明每个地区都完成")));
}

TEST(FillLines, NoLineBeginsWithAClosingMarkOrEndsWithAnOpeningOne) {
  LayoutFrame frame = Frame(60.0 / kCell, u"本季度的评审」表明");
  frame.paragraphs[0].hangingPunctuation = false;
  EXPECT_EQ((Texts{u"本季度的评", u"审」表明"}), Lines(frame));
  frame.paragraphs[0].runs[0].text = u"本季度的评「表明";
  EXPECT_EQ((Texts{u"本季度的评", u"「表明"}), Lines(frame));
}

TEST(FillLines, AStopHangsOverTheEdgeOnlyWhereThatIsOn) {
  LayoutFrame frame = Frame(60.0 / kCell, u"本季度的评审。表明");
  EXPECT_EQ((Texts{u"本季度的评审。", u"表明"}), Lines(frame));
  frame.paragraphs[0].hangingPunctuation = false;
  EXPECT_EQ((Texts{u"本季度的评", u"审。表明"}), Lines(frame));
}

TEST(FillLines, AHyphenMayEndALineAndANoBreakSpaceMayNot) {
  EXPECT_EQ((Texts{u"well-", u"known"}), Lines(Frame(6, u"well-known")));
  EXPECT_EQ((Texts{u"on ", u"10\u00a0km"}), Lines(Frame(6, u"on 10\u00a0km")));
}

TEST(FillLines, ALineBreakBeginsANewLineAndOneAtTheEndAnEmptyOne) {
  EXPECT_EQ((Texts{u"one\v", u"two"}), Lines(Frame(20, u"one\vtwo")));
  EXPECT_EQ((Texts{u"one\v", u"\v", u"two"}), Lines(Frame(20, u"one\v\vtwo")));
  LayoutFrame frame = Frame(20, u"one\v");
  EXPECT_EQ((Texts{u"one\v", u""}), Lines(frame));
  EXPECT_NEAR(2 * kLine, LaidOut(frame).height, kNear);
}

TEST(FillLines, ParagraphsBeginNewLines) {
  LayoutFrame frame = Frame(
      20, std::vector<LayoutParagraph>{Paragraph(u"one"), Paragraph(u""), Paragraph(u"two three")});
  EXPECT_EQ((Texts{u"one", u"", u"two three"}), Lines(frame));
  LayoutResult laid = LaidOut(frame);
  EXPECT_EQ(4u, laid.lines[1].start);
  EXPECT_EQ(5u, laid.lines[2].start);
  EXPECT_EQ(2u, laid.lines[2].paragraph);
  EXPECT_EQ(14u, laid.length);
}

TEST(FillLines, WithWrapOffOnlyLineBreaksBreak) {
  LayoutFrame frame = Frame(5, u"one two three\vfour");
  frame.wrap = false;
  EXPECT_EQ((Texts{u"one two three\v", u"four"}), Lines(frame));
  EXPECT_NEAR(13 * kCell, LaidOut(frame).width, kNear);
}

TEST(FillLines, RunsOfOneWordAreNotTornApart) {
  LayoutFrame frame = Frame(9, u"one tw");
  frame.paragraphs[0].runs.push_back(Piece(u"o"));
  frame.paragraphs[0].runs.back().bold = true;
  frame.paragraphs[0].runs.push_back(Piece(u"three four"));
  EXPECT_EQ((Texts{u"one ", u"twothree ", u"four"}), Lines(frame));
}

TEST(FillLines, LongTextKeepsEveryUnitOnce) {
  std::u16string text;
  for (int i = 0; i < 400; ++i) text += u"alpha be 中文。gamma-delta\t";
  LayoutFrame frame = Frame(23, text);
  std::u16string joined;
  for (const std::u16string& line : Lines(frame)) joined += line;
  EXPECT_EQ(text, joined);
}

}  // namespace
}  // namespace quillmarch::host::layout
