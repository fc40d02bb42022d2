#include "host/layout/LayoutEngine.h"

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

double HeightOf(const LayoutFrame& frame) {
  return LaidOut(frame).height;
}

LayoutFrame TwoParagraphs() {
  return Frame(40, std::vector<LayoutParagraph>{Paragraph(u"one"), Paragraph(u"two")});
}

Spacing Points(double value) {
  return {Spacing::Unit::kPoints, value};
}
Spacing Share(double value) {
  return {Spacing::Unit::kShare, value};
}

TEST(LayoutEngine, OneLineOf18PointsIs21Point6HighAndBeginsAtTheInsets) {
  LayoutFrame frame = Frame(40, std::vector<LayoutParagraph>{Paragraph(u"Hello", 18.0)});
  frame.insetLeft = frame.insetRight = 7.2;
  frame.insetTop = frame.insetBottom = 3.6;
  Box box = LaidOut(frame).Bounds();
  EXPECT_NEAR(21.6, box.height, kNear);
  EXPECT_NEAR(7.2, box.left, kNear);
  EXPECT_NEAR(3.6, box.top, kNear);
}

TEST(LayoutEngine, ALineOfTheFontIsAsHighAsTheFontSays) {
  LayoutFrame frame = Frame(40, u"Hello");
  frame.lineHeight = LineHeight::kOfFont;
  EXPECT_NEAR(10.0 * (1705.0 + 615.0) / 2048.0, HeightOf(frame), kNear);
}

TEST(LayoutEngine, TheLargestSizeOfALineMakesItsHeight) {
  LayoutFrame frame = Frame(20, u"small ");
  frame.paragraphs[0].runs.push_back(Piece(u"big", 20.0));
  frame.paragraphs[0].runs.push_back(Piece(u" and a small tail"));
  LayoutResult laid = LaidOut(frame);
  ASSERT_EQ(2u, laid.lines.size());
  EXPECT_NEAR(24.0, laid.lines[0].height, kNear);
  EXPECT_NEAR(20.0, laid.lines[0].ascent, kNear);
  EXPECT_NEAR(12.0, laid.lines[1].height, kNear);
}

TEST(LayoutEngine, AnEmptyParagraphIsAsHighAsItsMark) {
  LayoutFrame frame = TwoParagraphs();
  frame.paragraphs[0] = Paragraph(u"", 30.0);
  EXPECT_NEAR(36.0 + kLine, HeightOf(frame), kNear);
}

TEST(LayoutEngine, ALineBreakOfAnotherSizeDoesNotRaiseALineWithText) {
  LayoutFrame frame = Frame(20, u"one");
  frame.paragraphs[0].runs.push_back(Piece(u"\v", 30.0));
  frame.paragraphs[0].runs.push_back(Piece(u"two"));
  EXPECT_NEAR(2 * kLine, HeightOf(frame), kNear);
  frame.paragraphs[0].runs.erase(frame.paragraphs[0].runs.begin());
  EXPECT_NEAR(36.0 + kLine, HeightOf(frame), kNear);
}

TEST(LayoutEngine, SpacingGoesBetweenParagraphsButNotAboveTheFirstOrBelowTheLast) {
  LayoutFrame frame = TwoParagraphs();
  for (LayoutParagraph& paragraph : frame.paragraphs) {
    paragraph.before = Points(5.0);
    paragraph.after = Points(3.0);
  }
  EXPECT_NEAR(2 * kLine + 8.0, HeightOf(frame), kNear);
  EXPECT_NEAR(kLine + 8.0, LaidOut(frame).lines[1].top, kNear);
}

TEST(LayoutEngine, SpacingThatIsAShareCountsLines) {
  LayoutFrame frame = TwoParagraphs();
  frame.paragraphs[1].before = Share(0.5);
  EXPECT_NEAR(2 * kLine + 6.0, HeightOf(frame), kNear);
}

TEST(LayoutEngine, LineSpacingThatIsAShareScalesEveryLineTheFirstToo) {
  LayoutFrame frame = Frame(5, u"one two");
  for (double share : {0.5, 0.9, 1.5, 2.0}) {
    frame.paragraphs[0].lineSpacing = Share(share);
    LayoutResult laid = LaidOut(frame);
    EXPECT_NEAR(2 * kLine * share, laid.height, kNear) << share;
    EXPECT_NEAR(10.0 + kLine * (share - 1.0), laid.lines[0].ascent, kNear) << share;
  }
}

TEST(LayoutEngine, LineSpacingInPointsIsExact) {
  LayoutFrame frame = Frame(5, u"one two");
  frame.paragraphs[0].lineSpacing = Points(30.0);
  EXPECT_NEAR(60.0, HeightOf(frame), kNear);
  frame.paragraphs[0].lineSpacing = Points(6.0);
  EXPECT_NEAR(12.0, HeightOf(frame), kNear);
}

TEST(LayoutEngine, FontScaleShrinksSizesAndSpacingSharesOnlyInFramesThatShrinkText) {
  LayoutFrame frame = Frame(8, u"one two three");
  frame.fontScale = 0.5;
  frame.lineSpacingReduction = 0.2;
  EXPECT_EQ(2u, LaidOut(frame).lines.size());
  EXPECT_NEAR(2 * kLine, HeightOf(frame), kNear);
  frame.autofit = Autofit::kTextToShape;
  EXPECT_EQ(1u, LaidOut(frame).lines.size());
  EXPECT_NEAR(kLine * 0.5 * 0.8, HeightOf(frame), kNear);
}

TEST(LayoutEngine, LineSpacingInPointsIsNotReduced) {
  LayoutFrame frame = Frame(20, u"one");
  frame.autofit = Autofit::kTextToShape;
  frame.lineSpacingReduction = 0.2;
  frame.paragraphs[0].lineSpacing = Points(30.0);
  EXPECT_NEAR(30.0, HeightOf(frame), kNear);
}

TEST(LayoutEngine, RaisedTextIsSmallerAndKeepsTheHeightOfItsLine) {
  LayoutFrame frame = Frame(20, u"m2");
  frame.paragraphs[0].runs[0].baseline = 0.3;
  LayoutResult laid = LaidOut(frame);
  EXPECT_NEAR(2 * kCell * 2.0 / 3.0, laid.width, kNear);
  EXPECT_NEAR(kLine, laid.height, kNear);
  frame.paragraphs[0].runs[0].baseline = -0.25;
  EXPECT_GT(HeightOf(frame), kLine);
}

TEST(LayoutEngine, CharacterSpacingFollowsEveryCharacter) {
  LayoutFrame frame = Frame(20, u"abc");
  frame.paragraphs[0].runs[0].spacing = 2.0;
  EXPECT_NEAR(3 * (kCell + 2.0), LaidOut(frame).width, kNear);
  frame.paragraphs[0].runs[0].spacing = -100.0;
  EXPECT_NEAR(0.0, LaidOut(frame).width, kNear);
}

TEST(LayoutEngine, CapitalsAreMeasuredAsCapitals) {
  LayoutFrame frame = Frame(40, u"iii");
  frame.paragraphs[0].runs[0].fonts.latin = "Arial";
  double lower = LaidOut(frame).width;
  frame.paragraphs[0].runs[0].caps = Caps::kAll;
  double capitals = LaidOut(frame).width;
  frame.paragraphs[0].runs[0].caps = Caps::kSmall;
  double small = LaidOut(frame).width;
  EXPECT_GT(capitals, lower * 1.1);
  EXPECT_NEAR(capitals * 0.8, small, kNear);
}

TEST(LayoutEngine, BoldIsWiderWhereTheFontIsSo) {
  LayoutFrame frame = Frame(40, u"Quarterly review");
  frame.paragraphs[0].runs[0].fonts.latin = "Arial";
  double regular = LaidOut(frame).width;
  frame.paragraphs[0].runs[0].bold = true;
  EXPECT_GT(LaidOut(frame).width, regular);
}

TEST(LayoutEngine, KerningDrawsPairsTogetherWhereItIsOn) {
  LayoutFrame frame = Frame(40, u"AVAVAV");
  frame.paragraphs[0].runs[0].fonts.latin = "Arial";
  double kerned = LaidOut(frame).width;
  frame.paragraphs[0].runs[0].kerning = false;
  EXPECT_LT(kerned, LaidOut(frame).width);
}

TEST(LayoutEngine, EachScriptTakesItsOwnFont) {
  // Chinese from the East Asian font is one size wide, Latin from the other one a cell.
  LayoutResult laid = LaidOut(Frame(40, u"ab中文"));
  EXPECT_NEAR(2 * kCell + 20.0, laid.width, kNear);
}

TEST(LayoutEngine, ACharacterThatTheFontLacksComesFromAnother) {
  LayoutFrame frame = Frame(40, u"中");
  frame.paragraphs[0].runs[0].fonts.eastAsian = "Courier New";
  EXPECT_NEAR(10.0, LaidOut(frame).width, kNear);
}

TEST(LayoutEngine, ALineIsAsHighAsTheNamedFontAsksWhicheverShowsItsCharacters) {
  LayoutFrame frame = Frame(40, u"abc");
  frame.lineHeight = LineHeight::kOfFont;
  double height = HeightOf(frame);
  frame.paragraphs[0].runs[0].text = u"abc中";
  frame.paragraphs[0].runs[0].fonts.eastAsian = "Courier New";
  EXPECT_NEAR(height, HeightOf(frame), kNear);
  frame.paragraphs[0].runs[0].fonts.eastAsian = "Noto Sans CJK SC";
  EXPECT_GT(HeightOf(frame), height * 1.2);
}

TEST(LayoutEngine, ANoBreakSpaceIsAsWideAsTheSpaceOfItsFont) {
  // Carlito has none of its own.
  LayoutFrame frame = Frame(40, u"\u00a0\u00a0x");
  frame.paragraphs[0].runs[0].fonts.latin = "Calibri";
  double noBreak = LaidOut(frame).width;
  frame.paragraphs[0].runs[0].text = u"  x";
  EXPECT_NEAR(LaidOut(frame).width, noBreak, kNear);
}

TEST(LayoutEngine, ColumnsFillOneAfterTheOther) {
  LayoutFrame frame = Frame(13, u"aaaa bbbb cccc dddd eeee");
  frame.columns = 2;
  frame.columnSpacing = 3 * kCell;
  frame.height = 3 * kLine;
  LayoutResult laid = LaidOut(frame);
  ASSERT_EQ(5u, laid.lines.size());
  EXPECT_EQ(0, laid.lines[2].column);
  EXPECT_EQ(1, laid.lines[3].column);
  EXPECT_NEAR(0.0, laid.lines[3].top, kNear);
  EXPECT_NEAR(8 * kCell, laid.lines[3].left, kNear);
  EXPECT_NEAR(3 * kLine, laid.height, kNear);
  EXPECT_NEAR(12 * kCell, laid.width, kNear);
}

TEST(LayoutEngine, ALineHigherThanTheFrameLeavesNoColumnEmpty) {
  LayoutFrame frame = Frame(9, u"aaaa bbbb");
  frame.columns = 2;
  frame.columnSpacing = kCell;
  frame.height = kLine / 2.0;
  LayoutResult laid = LaidOut(frame);
  ASSERT_EQ(2u, laid.lines.size());
  EXPECT_EQ(0, laid.lines[0].column);
  EXPECT_EQ(1, laid.lines[1].column);
}

TEST(LayoutEngine, TheLastColumnRunsOver) {
  LayoutFrame frame = Frame(9, u"aaaa bbbb cccc dddd eeee");
  frame.columns = 2;
  frame.columnSpacing = kCell;
  frame.height = 2 * kLine;
  EXPECT_NEAR(3 * kLine, HeightOf(frame), kNear);
}

TEST(LayoutEngine, TheSameFrameMeasuresTheSameWhateverWasMeasuredBetween) {
  LayoutEngine layout;
  LayoutFrame frame = Frame(12, u"one two عام 2024 中文 three");
  LayoutResult first = layout.LayOut(frame);
  for (double size = 5.0; size < 30.0; size += 1.5) {
    LayoutFrame other = frame;
    other.paragraphs[0].runs[0].size = size;
    layout.LayOut(other);
  }
  LayoutResult again = layout.LayOut(frame);
  EXPECT_EQ(first.unitLeft, again.unitLeft);
  EXPECT_EQ(first.height, again.height);
  EXPECT_EQ(first.Bounds(), LaidOut(frame).Bounds());
}

TEST(LayoutEngine, TheSameWordInAnotherFontIsMeasuredAgain) {
  LayoutEngine layout;
  LayoutFrame frame = Frame(40, u"illicit");
  double even = layout.LayOut(frame).width;
  frame.paragraphs[0].runs[0].fonts.latin = "Arial";
  EXPECT_LT(layout.LayOut(frame).width, even * 0.8);
}

TEST(LayoutEngine, MoreWordsThanAreKeptStillMeasureRight) {
  LayoutEngine layout;
  std::u16string text;
  for (int i = 0; i < 90000; ++i) {
    for (int rest = i + 1; rest > 0; rest /= 10) text += static_cast<char16_t>(u'a' + rest % 10);
    text += u' ';
  }
  LayoutFrame frame = Frame(100, text);
  frame.wrap = false;
  auto cells = static_cast<double>(text.size());
  for (int i = 0; i < 2; ++i) {
    EXPECT_NEAR(cells * kCell, layout.LayOut(frame).width, cells * kCell * 1e-4);
  }
}

TEST(LayoutEngine, LoneSurrogatesAndControlsAreMeasuredAsSomething) {
  std::u16string text = u"a";
  text += static_cast<char16_t>(0xD800);
  text += u'b';
  text += static_cast<char16_t>(0xDC00);
  text += static_cast<char16_t>(1);
  LayoutResult laid = LaidOut(Frame(40, text));
  EXPECT_EQ(1u, laid.lines.size());
  EXPECT_EQ(5u, laid.length);
}

}  // namespace
}  // namespace quillmarch::host::layout
