#include "host/layout/PlaceLine.h"

#include <cmath>

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

std::vector<double> LeftsInCells(const LayoutResult& laid) {
  std::vector<double> lefts;
  for (const LaidLine& line : laid.lines)
    lefts.push_back(std::round(line.left / kCell * 100) / 100);
  return lefts;
}

LayoutFrame Aligned(Alignment alignment) {
  LayoutFrame frame = Frame(11, u"one two three");
  frame.paragraphs[0].alignment = alignment;
  return frame;
}

TEST(PlaceLine, LinesAreAlignedWithoutTheirHangingSpaces) {
  EXPECT_EQ((std::vector<double>{0, 0}), LeftsInCells(LaidOut(Aligned(Alignment::kLeft))));
  EXPECT_EQ((std::vector<double>{2, 3}), LeftsInCells(LaidOut(Aligned(Alignment::kCenter))));
  EXPECT_EQ((std::vector<double>{4, 6}), LeftsInCells(LaidOut(Aligned(Alignment::kRight))));
}

TEST(PlaceLine, JustifiedLinesFillTheWidthButForTheLastOne) {
  LayoutResult laid = LaidOut(Aligned(Alignment::kJustify));
  EXPECT_NEAR(11 * kCell, laid.lines[0].width, kNear);
  EXPECT_NEAR(8 * kCell, static_cast<double>(laid.unitLeft[4]), kNear);
  EXPECT_NEAR(5 * kCell, laid.lines[1].width, kNear);
}

TEST(PlaceLine, TheLastLineOfAJustifiedParagraphIsNotStretched) {
  LayoutFrame frame = Frame(11, u"one two three a b");
  frame.paragraphs[0].alignment = Alignment::kJustify;
  LayoutResult laid = LaidOut(frame);
  ASSERT_EQ(2u, laid.lines.size());
  EXPECT_NEAR(9 * kCell, laid.lines[1].width, kNear);
}

TEST(PlaceLine, HangingSpacesShowNothingAtTheLinesEnd) {
  LayoutResult left = LaidOut(Frame(9, u"one two three"));
  EXPECT_NEAR(7 * kCell, static_cast<double>(left.unitLeft[7]), kNear);
  EXPECT_EQ(left.unitLeft[7], left.unitRight[7]);
  LayoutFrame frame =
      Frame(9, u"\u05d0\u05d1\u05d2 \u05d3\u05d4\u05d5 \u05d6\u05d7\u05d8\u05d9\u05da");
  frame.paragraphs[0].rightToLeft = true;
  frame.paragraphs[0].alignment = Alignment::kRight;
  LayoutResult right = LaidOut(frame);
  ASSERT_EQ(2u, right.lines.size());
  EXPECT_NEAR(right.lines[0].left, static_cast<double>(right.unitLeft[7]), kNear);
  EXPECT_EQ(right.unitLeft[7], right.unitRight[7]);
}

TEST(PlaceLine, AHangingIndentPullsTheFirstLineOut) {
  LayoutFrame frame = Frame(12, u"one two three four");
  frame.paragraphs[0].marginStart = 4 * kCell;
  frame.paragraphs[0].indent = -4 * kCell;
  LayoutResult laid = LaidOut(frame);
  EXPECT_EQ((std::vector<std::u16string>{u"one two ", u"three ", u"four"}), Lines(frame, laid));
  EXPECT_EQ((std::vector<double>{0, 4, 4}), LeftsInCells(laid));
}

TEST(PlaceLine, AFirstLineIndentPushesItIn) {
  LayoutFrame frame = Frame(12, u"one two three");
  frame.paragraphs[0].indent = 2 * kCell;
  EXPECT_EQ((std::vector<double>{2, 0}), LeftsInCells(LaidOut(frame)));
}

TEST(PlaceLine, ABulletTakesTheHangingSpaceAndPushesOnlyWhenItIsWider) {
  LayoutFrame frame = Frame(40, u"text");
  LayoutParagraph& paragraph = frame.paragraphs[0];
  paragraph.marginStart = 4 * kCell;
  paragraph.indent = -4 * kCell;
  paragraph.bullet.text = u"-";
  EXPECT_EQ((std::vector<double>{4}), LeftsInCells(LaidOut(frame)));
  paragraph.bullet.text = u"1234.)";
  EXPECT_EQ((std::vector<double>{6}), LeftsInCells(LaidOut(frame)));
  paragraph.bullet.size = {Spacing::Unit::kShare, 0.5};
  EXPECT_EQ((std::vector<double>{4}), LeftsInCells(LaidOut(frame)));
  paragraph.bullet.size = {Spacing::Unit::kPoints, 20.0};
  EXPECT_EQ((std::vector<double>{12}), LeftsInCells(LaidOut(frame)));
}

TEST(PlaceLine, AnEmptyParagraphShowsNoBullet) {
  LayoutFrame frame = Frame(40, u"");
  frame.paragraphs[0].bullet.text = u"12345";
  EXPECT_EQ((std::vector<double>{0}), LeftsInCells(LaidOut(frame)));
}

TEST(PlaceLine, MarginsOfBothSidesNarrowTheLine) {
  LayoutFrame frame = Frame(12, u"one two three");
  frame.paragraphs[0].marginStart = 2 * kCell;
  frame.paragraphs[0].marginEnd = 3 * kCell;
  EXPECT_EQ((std::vector<std::u16string>{u"one two ", u"three"}), Lines(frame));
  frame.paragraphs[0].alignment = Alignment::kRight;
  EXPECT_EQ((std::vector<double>{2, 4}), LeftsInCells(LaidOut(frame)));
}

TEST(PlaceLine, HebrewRunsFromRightToLeft) {
  LayoutFrame frame = Frame(40, u"\u05d0\u05d1\u05d2");
  frame.paragraphs[0].rightToLeft = true;
  frame.paragraphs[0].alignment = Alignment::kRight;
  LayoutResult laid = LaidOut(frame);
  EXPECT_NEAR(frame.width, static_cast<double>(laid.unitRight[0]), kNear);
  EXPECT_GT(laid.unitLeft[0], laid.unitLeft[1]);
  EXPECT_GT(laid.unitLeft[1], laid.unitLeft[2]);
  EXPECT_NEAR(laid.lines[0].left, static_cast<double>(laid.unitLeft[2]), kNear);
}

TEST(PlaceLine, LatinWordsInsideHebrewKeepTheirDirection) {
  // As seen: gimel, ab, alef.
  LayoutFrame frame = Frame(40, u"\u05d0 ab \u05d2");
  frame.paragraphs[0].rightToLeft = true;
  LayoutResult laid = LaidOut(frame);
  EXPECT_LT(laid.unitLeft[2], laid.unitLeft[3]);
  EXPECT_LT(laid.unitLeft[3], laid.unitLeft[0]);
  EXPECT_LT(laid.unitLeft[5], laid.unitLeft[2]);
}

TEST(PlaceLine, HebrewInsideLatinIsPlacedBetweenItsNeighbours) {
  LayoutResult laid = LaidOut(Frame(40, u"a \u05d0\u05d1 b"));
  EXPECT_LT(laid.unitLeft[0], laid.unitLeft[3]);
  EXPECT_LT(laid.unitLeft[3], laid.unitLeft[2]);
  EXPECT_LT(laid.unitLeft[2], laid.unitLeft[5]);
}

TEST(PlaceLine, DigitsInsideArabicKeepTheirOrder) {
  LayoutFrame frame = Frame(40, u"\u0639\u0627\u0645 2024");
  frame.paragraphs[0].rightToLeft = true;
  LayoutResult laid = LaidOut(frame);
  EXPECT_LT(laid.unitLeft[4], laid.unitLeft[7]);
  EXPECT_LT(laid.unitLeft[7], laid.unitLeft[0]);
}

TEST(PlaceLine, ArabicLettersJoinAcrossTheWord) {
  // Joined, the word is narrower than its letters one by one.
  LayoutResult joined = LaidOut(Frame(400, u"\u0628\u0628\u0628"));
  LayoutResult apart = LaidOut(Frame(400, u"\u0628 \u0628 \u0628"));
  EXPECT_LT(joined.width, apart.width);
  EXPECT_GT(joined.width, 0.0);
}

TEST(PlaceLine, WithWrapOffACentredLineReachesOverBothEdges) {
  LayoutFrame frame = Frame(5, u"one two three");
  frame.wrap = false;
  frame.paragraphs[0].alignment = Alignment::kCenter;
  EXPECT_NEAR(-4.0 * kCell, LaidOut(frame).Bounds().left, kNear);
}

}  // namespace
}  // namespace quillmarch::host::layout
