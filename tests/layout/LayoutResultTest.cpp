#include "host/layout/LayoutResult.h"

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

void ExpectBox(const Box& wanted, const Box& found) {
  EXPECT_NEAR(wanted.left, found.left, kNear);
  EXPECT_NEAR(wanted.top, found.top, kNear);
  EXPECT_NEAR(wanted.width, found.width, kNear);
  EXPECT_NEAR(wanted.height, found.height, kNear);
}

TEST(LayoutResult, ARangeInOneLineHasTheBoxOfItsCharacters) {
  LayoutResult laid = LaidOut(Frame(9, u"one two three"));
  ExpectBox({4 * kCell, 0, 3 * kCell, kLine}, laid.Bounds(4, 3));
  ExpectBox({kCell, kLine, 2 * kCell, kLine}, laid.Bounds(9, 2));
}

TEST(LayoutResult, ARangeOverLinesHasTheBoxAroundThem) {
  LayoutResult laid = LaidOut(Frame(9, u"one two three"));
  ExpectBox({0, 0, 7 * kCell, 2 * kLine}, laid.Bounds(4, 9));
  ExpectBox({0, 0, 7 * kCell, 2 * kLine}, laid.Bounds());
}

TEST(LayoutResult, AnEmptyRangeHasAPlaceAndNoWidth) {
  LayoutResult laid = LaidOut(Frame(20, u"one two"));
  ExpectBox({4 * kCell, 0, 0, kLine}, laid.Bounds(4, 0));
  ExpectBox({7 * kCell, 0, 0, kLine}, laid.Bounds(7, 0));
}

TEST(LayoutResult, RangesBeyondTheEndAreHeldToIt) {
  LayoutResult laid = LaidOut(Frame(20, u"one two"));
  EXPECT_EQ(laid.Bounds(7, 0), laid.Bounds(100, 5));
  EXPECT_EQ(laid.Bounds(4, 3), laid.Bounds(4, 500));
}

TEST(LayoutResult, TheBoxOfAParagraphIsThatOfItsLines) {
  LayoutResult laid = LaidOut(Frame(
      20, std::vector<LayoutParagraph>{Paragraph(u"one"), Paragraph(u""), Paragraph(u"three")}));
  ExpectBox({0, 0, 3 * kCell, kLine}, laid.Bounds(0, 4));
  ExpectBox({0, kLine, 0, kLine}, laid.Bounds(4, 1));
  ExpectBox({0, 2 * kLine, 5 * kCell, kLine}, laid.Bounds(5, 5));
}

TEST(LayoutResult, AnEmptyLastParagraphTakesItsRoomOnlyInTheWholeText) {
  LayoutResult laid =
      LaidOut(Frame(20, std::vector<LayoutParagraph>{Paragraph(u"one"), Paragraph(u"")}));
  ExpectBox({0, 0, 3 * kCell, 2 * kLine}, laid.Bounds());
  ExpectBox({0, 0, 3 * kCell, kLine}, laid.Bounds(0, 4));
}

TEST(LayoutResult, AnchorsMoveTheTextDown) {
  LayoutFrame frame = Frame(20, u"one");
  frame.height = 100.0;
  frame.insetTop = 10.0;
  frame.insetBottom = 4.0;
  ExpectBox({0, 10, 3 * kCell, kLine}, LaidOut(frame).Bounds());
  frame.anchor = Anchor::kMiddle;
  EXPECT_NEAR(10.0 + (86.0 - kLine) / 2.0, LaidOut(frame).Bounds().top, kNear);
  frame.anchor = Anchor::kBottom;
  EXPECT_NEAR(96.0 - kLine, LaidOut(frame).Bounds().top, kNear);
}

TEST(LayoutResult, TextTooHighRunsOverWhereItsAnchorLetsIt) {
  LayoutFrame frame = Frame(3, u"one two");
  frame.height = kLine;
  EXPECT_NEAR(0.0, LaidOut(frame).Bounds().top, kNear);
  frame.anchor = Anchor::kMiddle;
  EXPECT_NEAR(-kLine / 2.0, LaidOut(frame).Bounds().top, kNear);
  frame.anchor = Anchor::kBottom;
  EXPECT_NEAR(-kLine, LaidOut(frame).Bounds().top, kNear);
}

TEST(LayoutResult, ACentredAnchorMovesTheBlockAndKeepsItsLinesAligned) {
  LayoutFrame frame = Frame(13, u"one\vthree");
  frame.anchorCenter = true;
  LayoutResult laid = LaidOut(frame);
  ExpectBox({4 * kCell, 0, 5 * kCell, 2 * kLine}, laid.Bounds());
  EXPECT_NEAR(4 * kCell, laid.Bounds(0, 3).left, kNear);
}

// A frame of 100 x 60 points with insets 1 to 4, for turned text.
LayoutFrame Turned(Direction direction) {
  LayoutFrame frame = Frame(1, u"ab cd");
  frame.width = 100.0;
  frame.height = 60.0;
  frame.insetLeft = 1.0;
  frame.insetTop = 2.0;
  frame.insetRight = 3.0;
  frame.insetBottom = 4.0;
  frame.direction = direction;
  return frame;
}

TEST(LayoutResult, TextTurnedClockwiseRunsDownFromTheRightEdge) {
  ExpectBox({97.0 - kLine, 2.0, kLine, 5 * kCell}, LaidOut(Turned(Direction::kClockwise)).Bounds());
}

TEST(LayoutResult, TextTurnedCounterclockwiseRunsUpFromTheLeftEdge) {
  ExpectBox({1.0, 56.0 - 5 * kCell, kLine, 5 * kCell},
            LaidOut(Turned(Direction::kCounterclockwise)).Bounds());
}

TEST(LayoutResult, TurnedTextWrapsAtTheFramesHeight) {
  LayoutFrame frame = Turned(Direction::kClockwise);
  frame.height = 6.0 + 3 * kCell;
  LayoutResult laid = LaidOut(frame);
  ASSERT_EQ(2u, laid.lines.size());
  ExpectBox({97.0 - 2 * kLine, 2.0, 2 * kLine, 2 * kCell}, laid.Bounds());
  EXPECT_NEAR(97.0 - 2 * kLine, laid.Bounds(3, 2).left, kNear);
}

TEST(LayoutResult, EastAsianCharactersAreUprightOneSizeBelowTheOther) {
  LayoutFrame frame = Turned(Direction::kEastAsian);
  frame.paragraphs[0].runs[0].text = u"中文字";
  ExpectBox({97.0 - kLine, 2.0, kLine, 30.0}, LaidOut(frame).Bounds());
  frame.direction = Direction::kMongolian;
  ExpectBox({1.0, 2.0, kLine, 30.0}, LaidOut(frame).Bounds());
}

TEST(LayoutResult, UprightCharactersTakeTheirHeightAndNotTheirWidth) {
  // A Hangul syllable of this font is 0.92 wide and 1 high.
  LayoutFrame frame = Turned(Direction::kEastAsian);
  frame.paragraphs[0].runs[0].text = u"한글";
  frame.paragraphs[0].runs[0].fonts.eastAsian = "Noto Sans CJK KR";
  EXPECT_NEAR(20.0, LaidOut(frame).Bounds().height, kNear);
  frame.direction = Direction::kClockwise;
  EXPECT_NEAR(18.4, LaidOut(frame).Bounds().height, kNear);
}

TEST(LayoutResult, StackedCharactersTakeALineEach) {
  LayoutFrame frame = Turned(Direction::kStacked);
  frame.height = 200.0;
  frame.paragraphs[0].runs[0].text = u"abc";
  ExpectBox({1.0, 2.0, kLine, 3 * kLine}, LaidOut(frame).Bounds());
}

TEST(LayoutResult, TheAnchorOfTurnedTextMovesItSideways) {
  LayoutFrame frame = Turned(Direction::kClockwise);
  frame.anchor = Anchor::kBottom;
  EXPECT_NEAR(1.0, LaidOut(frame).Bounds().left, kNear);
}

}  // namespace
}  // namespace quillmarch::host::layout
