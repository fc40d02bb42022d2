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
  // The one state takes what the second frame read after the first was put.
  EXPECT_EQ(model.autoSize, 0);
  EXPECT_EQ(model.autoSize2, 0);
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
  // Two states, so that a put back of the one is not undone by that of the other.
  FrameModel model = TwoLines();
  model.oneAutoSizeState = false;
  model.givesBounds = false;
  model.autoSize = 1;
  model.autoSize2 = 2;
  const ShapeRect place{90.0F, 40.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  EXPECT_EQ(model.autoSize, 0);
  EXPECT_EQ(model.autoSize2, 0);
  EXPECT_EQ(model.Puts().back(), "WordWrap=-1");
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

// Heights of the text with the wrap off and on; it is too wide without the wrap and not with it.
FrameModel TooWide(float unwrapped, float wrapped) {
  FrameModel model = TwoLines();
  model.bounds = [=](const FrameModel& m, float& height, float& width, float& left) {
    height = m.wrap == 0 ? unwrapped : wrapped;
    width = m.wrap == 0 ? 300.0F : 150.0F;
    left = 100.0F;
  };
  return model;
}

TEST(FitShape, ABoxBelow1Point8TimesItsUnwrappedTextIsOneLineHigh) {
  FrameModel oneLine = TooWide(55.6F, 120.0F);  // 100.08
  Fit(oneLine);
  EXPECT_EQ(oneLine.wrap, 0);
  FrameModel higher = TooWide(55.5F, 120.0F);  // 99.9
  Fit(higher);
  EXPECT_EQ(higher.wrap, -1);
}

TEST(FitShape, AHeightMayExceedTheShapeByTwoPercentAndAPoint) {
  for (const float height : {100.0F, 400.0F}) {
    const float most = height * 1.02F + 1.0F;
    FrameModel fits = TooWide(10.0F, most - 0.05F);
    fits.height = height;
    Fit(fits);
    EXPECT_FLOAT_EQ(fits.runs[0].size, 18.0F) << height;
    FrameModel over = TooWide(10.0F, most + 0.05F);
    over.height = height;
    Fit(over);
    EXPECT_LT(over.runs[0].size, 18.0F) << height;
  }
}

TEST(FitShape, AWidthMayExceedTheRoomByTwoPercentAndAPoint) {
  for (const float room : {200.0F, 500.0F}) {
    const float most = room * 1.02F + 1.0F;
    for (const bool over : {false, true}) {
      FrameModel model = TwoLines();
      model.width = room;
      model.bounds = [&](const FrameModel&, float& height, float& width, float& left) {
        height = 50.0F;
        width = most + (over ? 0.05F : -0.05F);
        left = 100.0F;
      };
      Fit(model);
      EXPECT_EQ(model.runs[0].size < 18.0F, over) << room;
    }
  }
}

TEST(FitShape, EachFurtherScaleIsNineTenthsOfTheOneBefore) {
  FrameModel model;
  model.runs = {{40, 1000.0F}};
  model.bounds = [](const FrameModel&, float& height, float&, float&) { height = 110.0F; };
  Fit(model);
  std::vector<float> sizes{1000.0F};
  float scale = 100.0F / 110.0F * 0.97F;
  for (int pass = 0; pass < 6; ++pass, scale *= 0.9F) sizes.push_back(sizes.back() * scale);
  EXPECT_NEAR(model.runs[0].size, sizes.back(), sizes.back() * 0.001F);
}

TEST(FitShape, AScaleThatFallsBelowATenthEndsTheShrink) {
  FrameModel model;
  model.runs = {{40, 1000.0F}};
  model.bounds = [](const FrameModel&, float& height, float&, float&) { height = 9000.0F; };
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 100.0F);
  EXPECT_EQ(model.Measures(), 2 + 1 + 1);
}

TEST(FitShape, ATextWhoseHeightIsNoLongerGivenIsShrunkNoFurther) {
  FrameModel model;
  model.runs = {{40, 1000.0F}};
  model.bounds = [](const FrameModel& m, float& height, float&, float&) {
    height = m.runs[0].size < 1000.0F ? 0.0F : 200.0F;
  };
  Fit(model);
  EXPECT_FLOAT_EQ(model.runs[0].size, 1000.0F * 0.5F * 0.97F);
  EXPECT_EQ(model.Measures(), 2 + 1 + 1);
}

TEST(FitShape, APlaceOfWhichOneSideCannotBeReadIsNotPutBack) {
  for (const char* side : {"Left", "Top", "Width", "Height"}) {
    FrameModel model = TwoLines();
    model.unreadable = {side};
    const ShapeRect place{90.0F, 40.0F, 200.0F, 100.0F, true};
    Fit(model, &place);
    for (const std::string& put : model.Puts()) EXPECT_FALSE(put.starts_with("Left=")) << side;
  }
}

TEST(FitShape, AShapeWhoseSizeCannotBeReadGivesUp) {
  for (const char* side : {"Width", "Height"}) {
    FrameModel model = TwoLines();
    model.oneAutoSizeState = false;
    model.autoSize = 1;
    model.autoSize2 = 2;
    model.unreadable = {side};
    Fit(model);
    EXPECT_EQ(model.Measures(), 0) << side;
    EXPECT_EQ(model.autoSize, 1) << side;
    EXPECT_EQ(model.autoSize2, 2) << side;
  }
}

TEST(FitShape, AMarginThatCannotBeReadCountsAsNone) {
  test::LogCapture log;
  FrameModel model = TwoLines();
  model.marginLeft = 20.0F;
  model.marginRight = 10.0F;
  model.unreadable = {"MarginLeft"};
  const ShapeRect place{90.0F, 50.0F, 200.0F, 100.0F, true};
  Fit(model, &place);
  EXPECT_EQ(log.CountContaining("contentW=190.0"), 1) << log.Joined();
}

TEST(FitShape, AWrapThatCannotBeReadCountsAsOff) {
  FrameModel model;
  model.runs = {{10, 18.0F}};
  model.unreadable = {"WordWrap"};
  Fit(model);
  EXPECT_EQ(model.wrap, 0);
}

TEST(FitShape, AnAutosizeThatCannotBeReadIsNotPutBack) {
  FrameModel first = TwoLines();
  first.oneAutoSizeState = false;
  first.autoSize = 1;
  first.autoSize2 = 2;
  first.unreadable = {"AutoSize"};
  Fit(first);
  EXPECT_EQ(first.autoSize, 0);
  EXPECT_EQ(first.autoSize2, 2);
  FrameModel second = TwoLines();
  second.oneAutoSizeState = false;
  second.autoSize = 1;
  second.autoSize2 = 2;
  second.unreadable = {"AutoSize2"};
  Fit(second);
  EXPECT_EQ(second.autoSize, 1);
  EXPECT_EQ(second.autoSize2, 2) << "not even switched off";
}

TEST(FitShape, AWidthThatIsNotGivenIsNotLookedAtAndALeftCountsAsZero) {
  FrameModel model;
  model.runs = {{40, 18.0F}};  // 360 points on one line of 30
  model.height = 30.0F;
  model.unreadable = {"BoundWidth"};
  Fit(model);
  EXPECT_EQ(model.wrap, -1) << "two lines are too high, and nothing tells that one is too wide";
  FrameModel left = TwoLines();
  left.left = 940.0F;  // beyond the slide's edge, were it read
  left.runs = {{10, 18.0F}};
  left.unreadable = {"BoundLeft"};
  Fit(left);
  EXPECT_FLOAT_EQ(left.runs[0].size, 18.0F);
}

}  // namespace

}  // namespace quillmarch::addin
