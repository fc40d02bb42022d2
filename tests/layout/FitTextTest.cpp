#include "host/layout/FitText.h"

#include "gtest/gtest.h"
#include "tests/layout/Frames.h"

namespace quillmarch::host::layout {

namespace {

LayoutFrame FiveLines() {
  return Frame(4, u"aaaa bbbb cccc dddd eeee");
}

TEST(FitTextToShape, TextThatFitsKeepsItsSize) {
  LayoutEngine layout;
  LayoutFrame frame = FiveLines();
  frame.height = 5 * kLine;
  EXPECT_EQ((TextFit{1.0, 0.0}), FitTextToShape(layout, frame, FitSteps::kBody));
  EXPECT_EQ((TextFit{1.0, 0.0}), FitTextToShape(layout, frame, FitSteps::kTitle));
}

TEST(FitTextToShape, LineSpacingGivesWayBeforeTheSizeDoes) {
  LayoutEngine layout;
  LayoutFrame frame = FiveLines();
  frame.height = 5 * kLine * 0.9;
  EXPECT_EQ((TextFit{1.0, 0.1}), FitTextToShape(layout, frame, FitSteps::kBody));
}

TEST(FitTextToShape, TheFirstStepThatFitsIsTaken) {
  LayoutEngine layout;
  LayoutFrame frame = FiveLines();
  frame.wrap = true;
  frame.height = 5 * kLine * 0.85 * 0.8;
  EXPECT_EQ((TextFit{0.85, 0.2}), FitTextToShape(layout, frame, FitSteps::kBody));
}

TEST(FitTextToShape, WhatNeverFitsEndsAtTheLastStep) {
  LayoutEngine layout;
  LayoutFrame frame = FiveLines();
  frame.height = 1.0;
  EXPECT_EQ((TextFit{0.25, 0.2}), FitTextToShape(layout, frame, FitSteps::kBody));
  EXPECT_EQ((TextFit{0.9, 0.0}), FitTextToShape(layout, frame, FitSteps::kTitle));
}

TEST(FitTextToShape, TheStoredScaleIsNotLookedAt) {
  LayoutEngine layout;
  LayoutFrame frame = FiveLines();
  frame.height = 5 * kLine;
  frame.autofit = Autofit::kTextToShape;
  frame.fontScale = 0.4;
  EXPECT_EQ((TextFit{1.0, 0.0}), FitTextToShape(layout, frame, FitSteps::kBody));
}

TEST(FitShapeToText, TheHeightFollowsTheLinesAndTheInsets) {
  LayoutFrame frame = FiveLines();
  frame.insetTop = 3.6;
  frame.insetBottom = 1.4;
  FrameSize size = FitShapeToText(frame, LaidOut(frame));
  EXPECT_NEAR(5 * kLine + 5.0, size.height, kNear);
  EXPECT_EQ(frame.width, size.width);
}

TEST(FitShapeToText, WithWrapOffTheWidthFollowsToo) {
  LayoutFrame frame = Frame(4, u"one two");
  frame.wrap = false;
  frame.insetLeft = 7.0;
  frame.insetRight = 2.0;
  frame.paragraphs[0].marginStart = 5.0;
  frame.paragraphs[0].marginEnd = 1.0;
  FrameSize size = FitShapeToText(frame, LaidOut(frame));
  EXPECT_NEAR(7 * kCell + 15.0, size.width, kNear);
  EXPECT_NEAR(kLine, size.height, kNear);
}

TEST(FitShapeToText, AFrameOfTurnedTextGrowsSideways) {
  LayoutFrame frame = Frame(50, u"one two");
  frame.direction = Direction::kClockwise;
  frame.height = 4 * kCell;
  FrameSize size = FitShapeToText(frame, LaidOut(frame));
  EXPECT_NEAR(2 * kLine, size.width, kNear);
  EXPECT_EQ(frame.height, size.height);
}

}  // namespace
}  // namespace quillmarch::host::layout
