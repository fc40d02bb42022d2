#include "run/write/FitScale.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

FitRoom Room(float contentW = 100.0F, float shapeH = 50.0F, float slideW = 0.0F) {
  FitRoom room;
  room.shapeW = contentW;
  room.shapeH = shapeH;
  room.contentW = contentW;
  room.tolW = contentW * 0.02F + 1.0F;
  room.tolH = shapeH * 0.02F + 1.0F;
  room.slideW = slideW;
  return room;
}

TextMeasure Text(float height, float width, float left = 0.0F) {
  return {height, width, left, true, true};
}

TEST(ComputeShrinkScale, AWidthOf110InARoomOf100GivesTheirRatioLessTheSlack) {
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(40.0F, 110.0F), Room()), 100.0F / 110.0F * 0.97F);
}

TEST(ComputeShrinkScale, AHeightWithinItsToleranceIsNotLookedAt) {
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(52.0F, 90.0F), Room()), 0.95F);
}

TEST(ComputeShrinkScale, TheHeightsRatioIsAtMostTheGreatestScale) {
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(100.0F, 90.0F), Room()), 0.5F * 0.97F);
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(52.1F, 90.0F), Room()), 50.0F / 52.1F * 0.97F);
}

TEST(ComputeShrinkScale, WithoutAWidthTheHeightDecides) {
  TextMeasure text = Text(100.0F, 500.0F);
  text.validWidth = false;
  EXPECT_FLOAT_EQ(ComputeShrinkScale(text, Room()), 0.5F * 0.97F);
}

TEST(ComputeShrinkScale, TheSmallerOfHeightAndWidthWins) {
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(60.0F, 400.0F), Room()), 0.25F * 0.97F);
}

TEST(ComputeShrinkScale, WhatStandsBeyondBothEdgesOfTheSlideIsTakenOff) {
  // 20 beyond the left, 30 beyond the right.
  const TextMeasure text = Text(40.0F, 150.0F, -20.0F);
  EXPECT_FLOAT_EQ(ComputeShrinkScale(text, Room(200.0F, 50.0F, 100.0F)), 100.0F / 150.0F * 0.97F);
}

TEST(ComputeShrinkScale, AtLeastEightPointsOfRoomAreCountedOn) {
  const TextMeasure text = Text(40.0F, 150.0F, 200.0F);
  EXPECT_FLOAT_EQ(ComputeShrinkScale(text, Room(200.0F, 50.0F, 100.0F)), 8.0F / 150.0F * 0.97F);
}

TEST(ComputeShrinkScale, OnePointBeyondTheEdgesIsTolerated) {
  EXPECT_FLOAT_EQ(ComputeShrinkScale(Text(40.0F, 90.0F, 11.0F), Room(100.0F, 50.0F, 100.0F)),
                  0.95F);
}

TEST(HeldScale, IsHeldBetweenATenthAndTheGreatest) {
  EXPECT_FLOAT_EQ(HeldScale(Text(5000.0F, 90.0F), Room()), 0.1F);
  EXPECT_FLOAT_EQ(HeldScale(Text(40.0F, 90.0F), Room()), 0.95F);
}

TEST(OverWidth, LooksAtTheSlidesEdgesOnlyAboveAWidthOfOne) {
  const TextMeasure text = Text(40.0F, 90.0F, -1.5F);
  EXPECT_TRUE(OverWidth(text, Room(100.0F, 50.0F, 100.0F)));
  EXPECT_FALSE(OverWidth(text, Room(100.0F, 50.0F, 1.0F)));
  EXPECT_FALSE(OverWidth(Text(40.0F, 90.0F, -1.0F), Room(100.0F, 50.0F, 100.0F)));
  EXPECT_TRUE(OverWidth(Text(40.0F, 90.0F, 11.5F), Room(100.0F, 50.0F, 100.0F)));
}

TEST(FitsHeight, NeedsAValidHeight) {
  TextMeasure text = Text(0.0F, 90.0F);
  text.validHeight = false;
  EXPECT_FALSE(FitsHeight(text, Room()));
  EXPECT_TRUE(FitsHeight(Text(52.0F, 90.0F), Room()));
  EXPECT_FALSE(FitsHeight(Text(52.1F, 90.0F), Room()));
}

}  // namespace

}  // namespace quillmarch::addin
