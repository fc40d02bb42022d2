#include "run/write/FitShape.h"

#include <gtest/gtest.h>

#include "run/write/FrameModel.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::FrameModel;
using test::FrameRun;
using Log = std::vector<std::string>;

constexpr float kSlideWidth = 960.0F;

void Fit(FrameModel& model, const ShapeRect* rect = nullptr, float slideWidth = kSlideWidth) {
  const ObjectRef shape = model.Shape();
  FitShape(shape.get(), rect, slideWidth);
}

ShapeRect PlaceOf(const FrameModel& model) {
  return {model.left, model.top, model.width, model.height, true};
}

// 40 units of 9 points each: two lines of 20 in 200 points.
FrameModel TwoLines() {
  FrameModel model;
  model.runs = {{40, 18.0F}};
  return model;
}

TEST(FitShape, ATextThatFitsGetsItsAutosizeAndWrapBackAndNoLogLine) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.autoSize = model.autoSize2 = 1;
  const ShapeRect place = PlaceOf(model);
  Fit(model, &place);
  EXPECT_EQ(model.log, (Log{"AutoSize=0", "AutoSize2=0", "WordWrap=0", "measure", "WordWrap=-1",
                            "measure", "WordWrap=-1", "AutoSize=1", "AutoSize2=0"}));
  EXPECT_EQ(log.CountContaining("PptFit"), 0);
}

TEST(FitShape, WithTwoAutosizeStatesEachGetsItsOwnBack) {
  FrameModel model = TwoLines();
  model.oneAutoSizeState = false;
  model.autoSize = 1;
  model.autoSize2 = 2;
  Fit(model);
  EXPECT_EQ(model.autoSize, 1);
  EXPECT_EQ(model.autoSize2, 2);
}

TEST(FitShape, ATextToFitFrameEndsWithAutofitOff) {
  // The one state reads -2 first and 0 once it was put, so nothing is left to put back.
  FrameModel model = TwoLines();
  model.autoSize = model.autoSize2 = 2;
  Fit(model);
  EXPECT_EQ(model.autoSize, 0);
  EXPECT_EQ(model.autoSize2, 0);
  EXPECT_EQ(model.Puts().back(), "AutoSize2=0");
}

TEST(FitShape, AHostWithoutTextFrame2GoesThroughTheSameSteps) {
  FrameModel model = TwoLines();
  model.hasFrame2 = false;
  model.autoSize = 1;
  Fit(model);
  EXPECT_EQ(model.Puts(),
            (Log{"AutoSize=0", "WordWrap=0", "WordWrap=-1", "WordWrap=-1", "AutoSize=1"}));
}

TEST(FitShape, AShapeThatGrewByMoreThanTheToleranceIsPutBackAndLogged) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.autoSize = model.autoSize2 = 1;
  const ShapeRect place = PlaceOf(model);
  model.height = 101.6F;
  Fit(model, &place);
  EXPECT_FLOAT_EQ(model.height, 100.0F);
  EXPECT_EQ(model.autoSize, 0);
  EXPECT_TRUE(
      log.Has("PptFit mode=wrap restored=1 shrunk=0 boundW=200.0 contentW=200.0 "
              "shape=200.0x100.0 slideW=960.0"))
      << log.Joined();
}

TEST(FitShape, WhicheverSideMovedTheShapeIsPutBackAndAFitIsLogged) {
  for (float FrameModel::*side :
       {&FrameModel::left, &FrameModel::top, &FrameModel::width, &FrameModel::height}) {
    test::LogCapture log;
    FrameModel model;
    model.runs = {{10, 18.0F}};
    model.autoSize = model.autoSize2 = 1;
    const ShapeRect place = PlaceOf(model);
    const float before = model.*side;
    model.*side += 1.6F;
    Fit(model, &place);
    EXPECT_FLOAT_EQ(model.*side, before);
    EXPECT_EQ(model.autoSize, 0);
    EXPECT_EQ(log.CountContaining("PptFit mode=fit restored=1 shrunk=0"), 1) << log.Joined();
  }
}

TEST(FitShape, TheFourPutsOfARestoreComeInOrder) {
  FrameModel model = TwoLines();
  const ShapeRect place{90.0F, 40.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  const Log puts = model.Puts();
  EXPECT_EQ(Log(puts.begin() + 2, puts.begin() + 6),
            (Log{"Left=90", "Top=40", "Width=200", "Height=100"}));
}

TEST(FitShape, ADifferenceOfOneAndAHalfPointsIsNoMove) {
  FrameModel model = TwoLines();
  const ShapeRect place = PlaceOf(model);
  model.left = 101.5F;
  model.height = 98.5F;
  Fit(model, &place);
  EXPECT_FLOAT_EQ(model.left, 101.5F);
}

TEST(FitShape, AThinTitleBoxStaysOnOneLineAndShrinksUntilItsWidthFits) {
  test::LogCapture log;
  FrameModel model;
  model.height = 30.0F;
  model.runs = {{40, 18.0F}};  // 360 points on one line
  Fit(model);
  EXPECT_EQ(model.wrap, 0);
  // 200 / 360 * 0.97 of 18 points; 40 units of half of that stay below 200.
  EXPECT_NEAR(model.runs[0].size, 9.7F, 0.01F);
  EXPECT_LE(model.BoundWidth(), 200.0F);
  EXPECT_EQ(log.CountContaining("PptFit mode=oneLine restored=0 shrunk=1"), 1) << log.Joined();
}

TEST(FitShape, ABoxThatSeveralParagraphsFillIsKeptOnTheirLinesToo) {
  test::LogCapture log;
  FrameModel model;
  model.runs = {{40, 18.0F}};
  // Four paragraphs in 100 points, six lines when wrapped.
  model.bounds = [](const FrameModel& frame, float& height, float& width, float& left) {
    const float share = frame.runs[0].size / 18.0F;
    const bool wraps = frame.wrap != 0;
    height = (wraps ? 120.0F : 80.0F) * share;
    width = (wraps ? 200.0F : 300.0F) * share;
    left = 100.0F;
  };
  Fit(model);
  EXPECT_EQ(model.wrap, 0);
  EXPECT_NEAR(model.runs[0].size, 18.0F * 200.0F / 300.0F * 0.97F, 0.01F);
  EXPECT_EQ(log.CountContaining("PptFit mode=oneLine restored=0 shrunk=1"), 1) << log.Joined();
}

TEST(FitShape, ATextTooWideThatFitsWhenWrappedIsWrappedAndNotShrunk) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.wrap = 0;
  Fit(model);
  EXPECT_EQ(model.wrap, -1);
  EXPECT_FLOAT_EQ(model.runs[0].size, 18.0F);
  EXPECT_EQ(log.CountContaining("PptFit mode=wrap restored=0 shrunk=0"), 1) << log.Joined();
}

TEST(FitShape, AWrappedFrameInWrapModeIsNothingOfNote) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  Fit(model);
  EXPECT_EQ(log.CountContaining("PptFit"), 0);
}

TEST(FitShape, ATextTooHighWhenWrappedShrinksByHeight) {
  test::LogCapture log;
  FrameModel model;
  model.runs = {{200, 18.0F}};  // ten lines of 21.6 in 100 points
  Fit(model);
  EXPECT_EQ(model.wrap, -1);
  EXPECT_LE(model.BoundHeight(), 103.0F);
  EXPECT_EQ(log.CountContaining("PptFit mode=height restored=0 shrunk=1"), 1) << log.Joined();
}

TEST(FitShape, EachRunScalesByItselfSoThatProportionsStay) {
  FrameModel model;
  model.height = 200.0F;
  model.runs = {{100, 20.0F}, {100, 10.0F}};
  Fit(model);
  EXPECT_NEAR(model.runs[0].size / model.runs[1].size, 2.0F, 0.001F);
}

TEST(FitShape, ATextThatCanNeverFitEndsAfterSixPassesAtFivePoints) {
  FrameModel model;
  model.runs = {{40, 18.0F}};
  model.bounds = [](const FrameModel&, float& height, float&, float&) { height = 110.0F; };
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 5.0F);
  // Two at the wraps, one a pass, one for the log.
  EXPECT_EQ(model.Measures(), 2 + 6 + 1);
}

TEST(FitShape, RunsAtFivePointsOrBelowStayAndTheLoopGoesOnToItsLimit) {
  test::LogCapture log;
  FrameModel model;
  model.runs = {{40, 5.0F}, {40, 4.0F}};
  model.bounds = [](const FrameModel&, float& height, float&, float&) { height = 110.0F; };
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 5.0F);
  EXPECT_FLOAT_EQ(model.runs[1].size, 4.0F);
  EXPECT_EQ(model.Measures(), 2 + 6);
  EXPECT_EQ(log.CountContaining("PptFit"), 0);  // neither moved, shrunk nor wrapped anew
}

TEST(FitShape, AFirstScaleThatIsNotBelowTheGreatestGoesANinthLower) {
  FrameModel model;
  model.width = 600.0F;
  model.runs = {{40, 20.0F}};
  // A point and a bit beyond the slide's left edge asks for a scale of 0.968, which is held to
  // 0.95.
  model.bounds = [](const FrameModel& m, float& height, float& width, float& left) {
    height = 90.0F;
    width = 500.0F;
    left = m.runs[0].size < 20.0F ? 0.0F : -1.1F;
  };
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 20.0F * (0.95F * 0.9F));
  EXPECT_EQ(model.Measures(), 2 + 1 + 1);
}

TEST(FitShape, TextBeyondTheSlidesEdgeShrinksOnlyWhenTheSlidesWidthIsKnown) {
  FrameModel model = TwoLines();
  const auto atTheEdge = [](const FrameModel& m, float& height, float& width, float& left) {
    height = 90.0F;
    width = 190.0F * m.runs[0].size / 18.0F;
    left = 800.0F;
  };
  model.bounds = atTheEdge;
  Fit(model, nullptr, 980.0F);
  EXPECT_LT(model.runs[0].size, 18.0F);

  FrameModel unknown = TwoLines();
  unknown.bounds = atTheEdge;
  Fit(unknown, nullptr, 1.0F);
  EXPECT_FLOAT_EQ(unknown.runs[0].size, 18.0F);
}

TEST(FitShape, AHostThatGivesNoBoundsKeepsTheTextAndPutsAutosizeBack) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.givesBounds = false;
  model.autoSize = model.autoSize2 = 1;
  model.wrap = 0;
  Fit(model);
  EXPECT_EQ(model.wrap, -1);
  EXPECT_EQ(model.Puts(), (Log{"AutoSize=0", "AutoSize2=0", "WordWrap=0", "WordWrap=-1",
                               "AutoSize=1", "AutoSize2=0"}));
  EXPECT_EQ(log.CountContaining("PptFit"), 0);
}

TEST(FitShape, GivingUpAfterARestoreLeavesAutosizeOff) {
  FrameModel model = TwoLines();
  model.givesBounds = false;
  model.autoSize = model.autoSize2 = 1;
  const ShapeRect place{90.0F, 40.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  EXPECT_EQ(model.autoSize, 0);
}

TEST(FitShape, AShapeWithoutASizeGivesUpBeforeAnythingIsMeasured) {
  FrameModel model = TwoLines();
  model.height = 0.0F;
  model.autoSize = model.autoSize2 = 1;
  Fit(model);
  EXPECT_EQ(model.Measures(), 0);
  EXPECT_EQ(model.Puts(), (Log{"AutoSize=0", "AutoSize2=0", "AutoSize=1", "AutoSize2=0"}));
}

TEST(FitShape, WithoutRunsTheShrinkStopsAtOnce) {
  FrameModel model;
  model.runs = {{200, 18.0F}};
  model.givesRuns = false;
  Fit(model);
  EXPECT_EQ(model.Measures(), 2);
}

TEST(FitShape, ARunThatCannotBeReadIsPassedOver) {
  FrameModel model;
  model.runs = {{100, 18.0F, true}, {100, 18.0F}};
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 18.0F);
  EXPECT_LT(model.runs[1].size, 18.0F);
}

TEST(FitShape, MarginsThatLeaveTooLittleRoomAreNotSubtracted) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.marginLeft = 60.0F;
  model.marginRight = 60.0F;
  const ShapeRect place{90.0F, 50.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  EXPECT_EQ(log.CountContaining("contentW=200.0"), 1) << log.Joined();
}

TEST(FitShape, ANegativeMarginCountsAsNone) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.marginLeft = -20.0F;
  model.marginRight = 20.0F;
  const ShapeRect place{90.0F, 50.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  EXPECT_EQ(log.CountContaining("contentW=180.0"), 1) << log.Joined();
}

}  // namespace

}  // namespace quillmarch::addin
