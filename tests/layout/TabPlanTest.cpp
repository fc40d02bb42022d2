#include "host/layout/TabPlan.h"

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

// Where the unit is, in cells.
double CellOf(const LayoutFrame& frame, std::size_t unit) {
  LayoutResult laid = LaidOut(frame);
  return static_cast<double>(laid.unitLeft[unit]) / kCell;
}

TEST(TabPlan, ATabLeadsToTheNextDefaultStop) {
  EXPECT_NEAR(10.0, CellOf(Frame(60, u"abc\tx"), 4), kNear);
  EXPECT_NEAR(20.0, CellOf(Frame(60, u"abc\t\tx"), 5), kNear);
  // Text that ends on a stop goes on to the next one.
  EXPECT_NEAR(20.0, CellOf(Frame(60, u"abcdefghij\tx"), 11), kNear);
}

TEST(TabPlan, AStopOfTheParagraphGoesBeforeTheDefaults) {
  LayoutFrame frame = Frame(60, u"abc\tx\ty");
  frame.paragraphs[0].tabs = {{5 * kCell, TabAlignment::kLeft}};
  EXPECT_NEAR(5.0, CellOf(frame, 4), kNear);
  EXPECT_NEAR(10.0, CellOf(frame, 6), kNear);
}

TEST(TabPlan, TextEndsAtARightStopAndIsCentredOnACentredOne) {
  LayoutFrame frame = Frame(60, u"a\txyz");
  frame.paragraphs[0].tabs = {{20 * kCell, TabAlignment::kRight}};
  EXPECT_NEAR(17.0, CellOf(frame, 2), kNear);
  frame.paragraphs[0].tabs[0].alignment = TabAlignment::kCenter;
  EXPECT_NEAR(18.5, CellOf(frame, 2), kNear);
}

TEST(TabPlan, ADecimalStopIsBeforeThePoint) {
  LayoutFrame frame = Frame(60, u"a\t12.345");
  frame.paragraphs[0].tabs = {{20 * kCell, TabAlignment::kDecimal}};
  EXPECT_NEAR(18.0, CellOf(frame, 2), kNear);
}

TEST(TabPlan, TextTooWideForARightStopPushesOn) {
  LayoutFrame frame = Frame(60, u"ab\tlonger");
  frame.paragraphs[0].tabs = {{4 * kCell, TabAlignment::kRight}};
  EXPECT_NEAR(2.0, CellOf(frame, 3), kNear);
}

TEST(TabPlan, HangingTextIsAStopOfItsOwn) {
  LayoutFrame frame = Frame(60, u"1.\tText");
  frame.paragraphs[0].marginStart = 4 * kCell;
  frame.paragraphs[0].indent = -4 * kCell;
  EXPECT_NEAR(4.0, CellOf(frame, 3), kNear);
}

TEST(TabPlan, TextAfterATabWrapsWhereTheLineEnds) {
  EXPECT_EQ((std::vector<std::u16string>{u"abc\tlong ", u"words"}),
            Lines(Frame(16, u"abc\tlong words")));
}

TEST(TabPlan, TextFromRightToLeftCountsStopsFromTheRight) {
  LayoutFrame frame = Frame(60, u"abc\tx");
  frame.paragraphs[0].rightToLeft = true;
  frame.paragraphs[0].alignment = Alignment::kRight;
  EXPECT_NEAR(60.0 - 10.0 - 1.0, CellOf(frame, 4), kNear);
}

}  // namespace
}  // namespace quillmarch::host::layout
