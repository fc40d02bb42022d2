#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Group;
using testdeck::Para;
using testdeck::Placeholder;
using testdeck::RunXml;
using testdeck::TableFrame;
using testdeck::TextPara;

namespace {

// 10 points of a font with one width for all characters; a line is 12 points high.
std::string Fixed(const std::string& text, const std::string& more = "") {
  return Para(RunXml(text, "<a:rPr lang=\"en-US\" sz=\"1000\"" + more +
                               "><a:latin typeface=\"Courier New\"/></a:rPr>"));
}

// Boxes of Box() are 100 x 50 points at 10, 20.
constexpr const char* kNormal =
    "<a:bodyPr><a:normAutofit fontScale=\"92500\" lnSpcReduction=\"10000\"/></a:bodyPr>";
constexpr const char* kGrows = "<a:bodyPr><a:spAutoFit/></a:bodyPr>";

}  // namespace

class Frame : public ModelTest {
 protected:
  ObjectRef First(int shape = 1) { return Get(Shape(shape), u"TextFrame"); }
  ObjectRef Second(int shape = 1) { return Get(Shape(shape), u"TextFrame2"); }
  static ResultCode PutValue(const ObjectRef& object, WideView member, Variant value) {
    return AutoPut(object.get(), member, value);
  }
  static ResultCode PutWhole(const ObjectRef& object, WideView member, std::int32_t value) {
    return PutValue(object, member, Variant::I4(value));
  }
  static ResultCode PutSingle(const ObjectRef& object, WideView member, float value) {
    return PutValue(object, member, Variant::R4(value));
  }
  static Variant Typed(const ObjectRef& object, const MemberId& member) {
    Variant value;
    EXPECT_EQ(CallMember(object.get(), member, {}, value), kOk);
    return value;
  }
  std::string Expected(const std::string& from, const std::string& to) const {
    std::string xml = slideXml;
    xml.replace(xml.find(from), from.size(), to);
    return xml;
  }
};

TEST_F(Frame, AutofitOfTheFileReadsAsBothFramesNameIt) {
  OpenSlide(Box(Fixed("x")) + Box(Fixed("x"), kGrows) + Box(Fixed("x"), kNormal) +
            Box(Fixed("x"), "<a:bodyPr><a:noAutofit/></a:bodyPr>"));
  const int first[] = {0, 1, -2, 0};
  const int second[] = {0, 1, 2, 0};
  for (int shape = 1; shape <= 4; ++shape) {
    EXPECT_EQ(Whole(First(shape), u"AutoSize"), first[shape - 1]) << shape;
    EXPECT_EQ(Whole(Second(shape), u"AutoSize"), second[shape - 1]) << shape;
  }
  EXPECT_FALSE(host->Edited());
}

TEST_F(Frame, TypedAndNamedMembersAreTheSame) {
  OpenSlide(Box(Fixed("x"), "<a:bodyPr wrap=\"none\" lIns=\"12700\" rIns=\"25400\"/>"));
  EXPECT_EQ(Typed(First(), ppt::textFrame::kAutoSize).whole(), 0);
  EXPECT_EQ(Typed(First(), ppt::textFrame::kWordWrap).whole(), 0);
  EXPECT_EQ(Typed(First(), ppt::textFrame::kMarginLeft).single(), 1.0F);
  EXPECT_EQ(Typed(First(), ppt::textFrame::kMarginRight).single(), 2.0F);
  EXPECT_EQ(Whole(First(), u"WordWrap"), 0);
  EXPECT_EQ(Single(First(), u"MarginTop"), 3.6F);
  EXPECT_EQ(Single(First(), u"MarginBottom"), 3.6F);
  EXPECT_EQ(Whole(Second(), u"WordWrap"), 0);
  EXPECT_EQ(Whole(Second(), u"HasText"), -1);
}

TEST_F(Frame, AutofitWrapAndInsetsComeFromLayoutAndMaster) {
  testdeck::DeckSource deck;
  const auto holder = [](const std::string& ph, const std::string& properties) {
    std::string shape = Placeholder(ph, "<a:p/>");
    shape.replace(shape.find("<a:bodyPr/>"), 11, properties);
    return shape;
  };
  deck.masterShapes = holder("<p:ph type=\"title\"/>",
                             "<a:bodyPr lIns=\"0\" rIns=\"12700\"><a:normAutofit/></a:bodyPr>");
  deck.layoutShapes = holder("<p:ph type=\"title\"/>", "<a:bodyPr lIns=\"25400\" wrap=\"none\"/>");
  deck.slides.push_back(
      {testdeck::SlideXml(Placeholder("<p:ph type=\"title\"/>", Fixed("x"))), {}, {}, {}});
  OpenDeck(deck);
  EXPECT_EQ(Whole(Second(), u"AutoSize"), 2);
  EXPECT_EQ(Whole(First(), u"WordWrap"), 0);
  EXPECT_EQ(Single(First(), u"MarginLeft"), 2.0F);
  EXPECT_EQ(Single(First(), u"MarginRight"), 1.0F);
  EXPECT_EQ(Single(First(), u"MarginTop"), 3.6F);
}

TEST_F(Frame, APutOfNoneOnEitherFrameTurnsTextToFitOffAndNominalSizesShow) {
  for (const bool second : {false, true}) {
    OpenSlide(Box(Fixed("x"), kNormal));
    EXPECT_FLOAT_EQ(Single(Get(Range(1), u"Font"), u"Size"), 9.25F);
    ASSERT_EQ(PutWhole(second ? Second() : First(), u"AutoSize", 0), kOk);
    EXPECT_EQ(Whole(First(), u"AutoSize"), 0);
    EXPECT_EQ(Whole(Second(), u"AutoSize"), 0);
    EXPECT_EQ(Single(Get(Range(1), u"Font"), u"Size"), 10.0F);
    EXPECT_EQ(Saved(), Expected("<a:normAutofit fontScale=\"92500\" lnSpcReduction=\"10000\"/>",
                                "<a:noAutofit/>"));
  }
}

TEST_F(Frame, WhatAFrameHasNoWordForFails) {
  OpenSlide(Box(Fixed("x"), kNormal));
  for (const int value : {-2, 2, 3, -1}) {
    EXPECT_EQ(PutWhole(First(), u"AutoSize", value), kInvalidArgument) << value;
  }
  for (const int value : {-2, 3, -1}) {
    EXPECT_EQ(PutWhole(Second(), u"AutoSize", value), kInvalidArgument) << value;
  }
  EXPECT_EQ(PutValue(First(), u"AutoSize", Variant::Text(u"x")), kTypeMismatch);
  EXPECT_EQ(PutWhole(First(), u"WordWrap", -2), kInvalidArgument);
  EXPECT_EQ(PutSingle(First(), u"MarginLeft", -1.0F), kInvalidArgument);
  EXPECT_EQ(PutSingle(Shape(1), u"Width", -1.0F), kInvalidArgument);
  EXPECT_EQ(Whole(Second(), u"AutoSize"), 2);
  EXPECT_FALSE(host->Edited());
}

TEST_F(Frame, WhatIsPutAndPutBackIsNoEdit) {
  OpenSlide(Box(Fixed("x")) + Box(Fixed("x"), "<a:bodyPr wrap=\"none\"/>"));
  for (int shape = 1; shape <= 2; ++shape) {
    const int wrap = Whole(First(shape), u"WordWrap");
    ASSERT_EQ(PutWhole(First(shape), u"AutoSize", 0), kOk);
    ASSERT_EQ(PutWhole(First(shape), u"WordWrap", 0), kOk);
    ASSERT_EQ(PutWhole(First(shape), u"WordWrap", -1), kOk);
    ASSERT_EQ(PutWhole(First(shape), u"WordWrap", wrap), kOk);
    for (const WideView side : {u"Left", u"Top", u"Width", u"Height"}) {
      const float place = Single(Shape(shape), side);
      ASSERT_EQ(PutSingle(Shape(shape), side, place + 5.0F), kOk);
      EXPECT_TRUE(host->Edited());
      ASSERT_EQ(PutSingle(Shape(shape), side, place), kOk);
    }
    EXPECT_FALSE(host->Edited());
  }
}

TEST_F(Frame, WrapAndInsetsAreWrittenOnlyIntoTheFrame) {
  OpenSlide(Box(Fixed("x"),
                "<a:bodyPr vert=\"horz\"\n lIns='0' wrap=\"square\"><a:prstTxWarp "
                "prst=\"textNoShape\"><a:avLst/></a:prstTxWarp><a:flatTx/></a:bodyPr>"));
  ASSERT_EQ(PutWhole(First(), u"WordWrap", 0), kOk);
  ASSERT_EQ(PutSingle(First(), u"MarginLeft", 2.0F), kOk);
  ASSERT_EQ(PutWhole(First(), u"AutoSize", 0), kOk);
  ASSERT_EQ(PutWhole(Second(), u"AutoSize", 2), kOk);
  EXPECT_EQ(Saved(), Expected("<a:bodyPr vert=\"horz\"\n lIns='0' wrap=\"square\"><a:prstTxWarp "
                              "prst=\"textNoShape\"><a:avLst/></a:prstTxWarp>",
                              "<a:bodyPr vert=\"horz\"\n lIns=\"25400\" wrap=\"none\">"
                              "<a:prstTxWarp prst=\"textNoShape\"><a:avLst/></a:prstTxWarp>"
                              "<a:normAutofit/>"));
}

TEST_F(Frame, AnEmptyFrameElementIsOpenedForItsAutofit) {
  OpenSlide(Box(Fixed("x"), "<a:bodyPr rtlCol=\"0\" />"));
  ASSERT_EQ(PutWhole(Second(), u"AutoSize", 2), kOk);
  EXPECT_EQ(Saved(), Expected("<a:bodyPr rtlCol=\"0\" />",
                              "<a:bodyPr rtlCol=\"0\" ><a:normAutofit/></a:bodyPr>"));
}

TEST_F(Frame, TurningAnInheritedAutofitOffSaysSoInTheShape) {
  testdeck::DeckSource deck;
  std::string master = Placeholder("<p:ph type=\"title\"/>", "<a:p/>");
  master.replace(master.find("<a:bodyPr/>"), 11, "<a:bodyPr><a:normAutofit/></a:bodyPr>");
  deck.masterShapes = master;
  deck.slides.push_back(
      {testdeck::SlideXml(Placeholder("<p:ph type=\"title\"/>", Fixed("x"))), {}, {}, {}});
  slideXml = deck.slides[0].xml;
  OpenDeck(deck);
  ASSERT_EQ(PutWhole(First(), u"AutoSize", 0), kOk);
  EXPECT_EQ(Saved(), Expected("<a:bodyPr/>", "<a:bodyPr><a:noAutofit/></a:bodyPr>"));
  EXPECT_EQ(Whole(Second(), u"AutoSize"), 0);
}

TEST_F(Frame, PlaceAndSizeAreWrittenOnlyIntoTheTransform) {
  OpenSlide(Box(Fixed("x")));
  ASSERT_EQ(PutSingle(Shape(1), u"Left", 30.0F), kOk);
  ASSERT_EQ(PutSingle(Shape(1), u"Height", 70.5F), kOk);
  EXPECT_EQ(Single(Shape(1), u"Left"), 30.0F);
  EXPECT_EQ(Single(Shape(1), u"Top"), 20.0F);
  EXPECT_EQ(Single(Shape(1), u"Width"), 100.0F);
  EXPECT_EQ(Single(Shape(1), u"Height"), 70.5F);
  EXPECT_EQ(Saved(), Expected("<a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"1270000\" "
                              "cy=\"635000\"/>",
                              "<a:off x=\"381000\" y=\"254000\"/><a:ext cx=\"1270000\" "
                              "cy=\"895350\"/>"));
  EXPECT_EQ(Single(Shape(1), u"Height"), 70.5F);
}

TEST_F(Frame, APlaceholderWithoutATransformGetsAWholeOne) {
  testdeck::DeckSource deck;
  std::string layout = Placeholder("<p:ph type=\"title\"/>", "<a:p/>");
  layout.replace(layout.find("<p:spPr/>"), 9,
                 "<p:spPr><a:xfrm><a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"1270000\" "
                 "cy=\"635000\"/></a:xfrm></p:spPr>");
  deck.layoutShapes = layout;
  deck.slides.push_back(
      {testdeck::SlideXml(Placeholder("<p:ph type=\"title\"/>", Fixed("x"))), {}, {}, {}});
  slideXml = deck.slides[0].xml;
  OpenDeck(deck);
  ASSERT_EQ(PutSingle(Shape(1), u"Top", 20.0F), kOk);
  EXPECT_FALSE(host->Edited()) << "it is there already";
  ASSERT_EQ(PutSingle(Shape(1), u"Top", 40.0F), kOk);
  EXPECT_EQ(Saved(), Expected("<p:spPr/>",
                              "<p:spPr><a:xfrm><a:off x=\"127000\" y=\"508000\"/>"
                              "<a:ext cx=\"1270000\" cy=\"635000\"/></a:xfrm></p:spPr>"));
}

TEST_F(Frame, AShapeOfAGroupIsPutThroughTheGroupsScale) {
  OpenSlide(Group(Box(Fixed("x"))));
  const ObjectRef leaf = Get(Get(Shape(1), u"GroupItems"), u"Item", {Variant::I4(1)});
  ASSERT_EQ(Single(leaf, u"Left"), 120.0F);
  ASSERT_EQ(PutSingle(leaf, u"Left", 130.0F), kOk);
  ASSERT_EQ(PutSingle(leaf, u"Height", 60.0F), kOk);
  EXPECT_EQ(Single(leaf, u"Left"), 130.0F);
  EXPECT_EQ(Single(leaf, u"Top"), 140.0F);
  EXPECT_EQ(Single(leaf, u"Height"), 60.0F);
  EXPECT_EQ(Saved(), Expected("<a:off x=\"127000\" y=\"254000\"/><a:ext cx=\"1270000\" "
                              "cy=\"635000\"/>",
                              "<a:off x=\"190500\" y=\"254000\"/><a:ext cx=\"1270000\" "
                              "cy=\"381000\"/>"));
}

TEST_F(Frame, AGroupTakesItsShapesAlong) {
  OpenSlide(Group(Box(Fixed("x"))));
  ASSERT_EQ(PutSingle(Shape(1), u"Left", 200.0F), kOk);
  ASSERT_EQ(PutSingle(Shape(1), u"Width", 100.0F), kOk);
  const ObjectRef leaf = Get(Get(Shape(1), u"GroupItems"), u"Item", {Variant::I4(1)});
  EXPECT_EQ(Single(leaf, u"Left"), 210.0F);
  EXPECT_EQ(Single(leaf, u"Width"), 100.0F);
  EXPECT_EQ(Saved(), Expected("<a:off x=\"1270000\" y=\"1270000\"/><a:ext cx=\"2540000\" "
                              "cy=\"2540000\"/>",
                              "<a:off x=\"2540000\" y=\"1270000\"/><a:ext cx=\"1270000\" "
                              "cy=\"2540000\"/>"));
}

TEST_F(Frame, ACellHasAFrameThatCannotBeChanged) {
  OpenSlide(
      TableFrame("<a:tbl><a:tblGrid><a:gridCol w=\"1270000\"/></a:tblGrid><a:tr "
                 "h=\"254000\"><a:tc><a:txBody><a:bodyPr/><a:p/></a:txBody><a:tcPr "
                 "marL=\"12700\"/></a:tc></a:tr></a:tbl>"));
  const ObjectRef cell =
      Get(Get(Get(Shape(1), u"Table"), u"Cell", {Variant::I4(1), Variant::I4(1)}), u"Shape");
  const ObjectRef frame = Get(cell, u"TextFrame");
  EXPECT_EQ(Whole(frame, u"AutoSize"), 0);
  EXPECT_EQ(Whole(frame, u"WordWrap"), -1);
  EXPECT_EQ(Single(frame, u"MarginLeft"), 1.0F);
  EXPECT_TRUE(Failed(PutWhole(frame, u"AutoSize", 1)));
  EXPECT_TRUE(Failed(PutWhole(frame, u"WordWrap", 0)));
  EXPECT_TRUE(Failed(PutSingle(cell, u"Left", 1.0F)));
  EXPECT_TRUE(Failed(PutSingle(Shape(1), u"Height", 1.0F)));
  EXPECT_FALSE(host->Edited());
}

TEST_F(Frame, AShapeWithoutATextBodyTakesNoFrame) {
  OpenSlide("<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"bare\"/></p:nvSpPr></p:sp>");
  EXPECT_EQ(Whole(First(), u"AutoSize"), 0);
  EXPECT_TRUE(Failed(PutWhole(First(), u"AutoSize", 1)));
  EXPECT_TRUE(Failed(PutSingle(Shape(1), u"Left", 5.0F)));
}

TEST_F(Frame, AHostWithoutTheSecondFrameDoesNotKnowItsName) {
  OpenSlide(Box(Fixed("x"), kNormal), "no-textframe2");
  EXPECT_EQ(Code(Shape(1), u"TextFrame2"), kUnknownName);
  EXPECT_EQ(Whole(First(), u"AutoSize"), -2);
}

TEST_F(Frame, AHostWithTwoStatesKeepsThemApart) {
  OpenSlide(Box(Fixed("x"), kNormal) + Box(Fixed("x"), kGrows), "two-autosize-states");
  EXPECT_EQ(Whole(First(), u"AutoSize"), -2);
  ASSERT_EQ(PutWhole(First(), u"AutoSize", 0), kOk);
  EXPECT_EQ(Whole(Second(), u"AutoSize"), 2);
  ASSERT_EQ(PutWhole(Second(), u"AutoSize", 0), kOk);
  ASSERT_EQ(PutWhole(Second(), u"AutoSize", 2), kOk);
  EXPECT_EQ(Whole(First(), u"AutoSize"), 0);
  ASSERT_EQ(PutWhole(Second(2), u"AutoSize", 0), kOk);
  EXPECT_EQ(Whole(First(2), u"AutoSize"), 1);
  EXPECT_EQ(PutWhole(First(2), u"AutoSize", -2), kInvalidArgument);
}

TEST_F(Frame, AShapeGrowsDownwardsWithItsText) {
  OpenSlide(Box(Fixed("x"), kGrows));
  ASSERT_EQ(Put(Range(1), u"one\rtwo\rthree\rfour\rfive"), kOk);
  EXPECT_FLOAT_EQ(Single(Shape(1), u"Height"), 5 * 12.0F + 7.2F);
  EXPECT_EQ(Single(Shape(1), u"Top"), 20.0F);
  EXPECT_EQ(Single(Shape(1), u"Width"), 100.0F);
  ASSERT_EQ(Put(Range(1), u"one"), kOk);
  EXPECT_FLOAT_EQ(Single(Shape(1), u"Height"), 12.0F + 7.2F);
}

TEST_F(Frame, TheAnchorDecidesWhichEdgeMoves) {
  const auto grows = [](const std::string& anchor) {
    return "<a:bodyPr anchor=\"" + anchor + "\"><a:spAutoFit/></a:bodyPr>";
  };
  OpenSlide(Box(Fixed("x"), grows("ctr")) + Box(Fixed("x"), grows("b")));
  for (int shape = 1; shape <= 2; ++shape) {
    ASSERT_EQ(Put(Range(shape), u"1\r2\r3\r4\r5"), kOk);  // 67.2 points, 17.2 more than before
  }
  EXPECT_NEAR(Single(Shape(1), u"Top"), 20.0F - 8.6F, 0.001);
  EXPECT_NEAR(Single(Shape(2), u"Top"), 20.0F - 17.2F, 0.001);
}

TEST_F(Frame, WithoutWrapAShapeGrowsSidewaysFromItsAlignment) {
  const std::string grows =
      "<a:bodyPr wrap=\"none\" lIns=\"0\" rIns=\"0\"><a:spAutoFit/></a:bodyPr>";
  const std::string centered = Fixed("x").replace(0, 5, "<a:p><a:pPr algn=\"ctr\"/>");
  OpenSlide(Box(Fixed("x"), grows) + Box(centered, grows));
  const float width = 40 * 10.0F * 1229.0F / 2048.0F;
  for (int shape = 1; shape <= 2; ++shape) {
    ASSERT_EQ(Put(Range(shape), Wide(40, u'x')), kOk);
    EXPECT_NEAR(Single(Shape(shape), u"Width"), width, 0.01);
  }
  EXPECT_EQ(Single(Shape(1), u"Left"), 10.0F);
  EXPECT_NEAR(Single(Shape(2), u"Left"), 60.0F - width / 2, 0.01);
}

TEST_F(Frame, ATurnedShapeGrowsAwayFromItsFirstLine) {
  std::string box = Box(Fixed("x"), kGrows);
  box.replace(box.find("<a:xfrm>"), 8, "<a:xfrm rot=\"5400000\">");
  OpenSlide(box);
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  // The top edge shows at the right; it stays, so the middle moves left by half the growth.
  EXPECT_NEAR(Single(Shape(1), u"Left"), 10.0F - 8.6F, 0.001);
  EXPECT_NEAR(Single(Shape(1), u"Top"), 20.0F - 8.6F, 0.001);
}

TEST_F(Frame, AShapeGrowsTheWayItsTurnedTextRuns) {
  OpenSlide(Box(Fixed("x"), "<a:bodyPr rot=\"5400000\"><a:spAutoFit/></a:bodyPr>"));
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  // The first line is at the right edge, which stays.
  EXPECT_NEAR(Single(Shape(1), u"Width"), 67.2, 0.001);
  EXPECT_NEAR(Single(Shape(1), u"Left"), 110.0F - 67.2F, 0.001);
  EXPECT_NEAR(Single(Shape(1), u"Height"), 50.0F, 0.001);
}

TEST_F(Frame, AnEllipseGrowsSoThatItsTextHasRoom) {
  std::string box = Box(Fixed("x"), kGrows);
  box.replace(box.find("</a:xfrm>"), 9,
              "</a:xfrm><a:prstGeom prst=\"ellipse\"><a:avLst/></a:prstGeom>");
  OpenSlide(box);
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  EXPECT_NEAR(Single(Shape(1), u"Height"), 67.2 / 0.7071067811865476, 0.001);
}

TEST_F(Frame, AShapeThatIsToldToGrowTakesItsSizeAtOnce) {
  OpenSlide(Box(Fixed("x")));
  ASSERT_EQ(TextOf(Range(1), u"Text"), u"x");
  ASSERT_EQ(PutWhole(First(), u"AutoSize", 1), kOk);
  EXPECT_FLOAT_EQ(Single(Shape(1), u"Height"), 12.0F + 7.2F);
}

TEST_F(Frame, WhatAShapeHasGrownToStaysWhenItStopsGrowing) {
  OpenSlide(Box(Fixed("x"), kGrows));
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  ASSERT_EQ(PutWhole(First(), u"AutoSize", 0), kOk);
  EXPECT_FLOAT_EQ(Single(Shape(1), u"Height"), 67.2F);
  ASSERT_EQ(PutSingle(Shape(1), u"Height", 50.0F), kOk);
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5\r6\r7"), kOk);
  EXPECT_EQ(Single(Shape(1), u"Height"), 50.0F);
}

TEST_F(Frame, AGrownShapeIsSavedGrownThoughNobodyAsked) {
  OpenSlide(Box(Fixed("x"), kGrows));
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  EXPECT_NE(Saved().find("<a:ext cx=\"1270000\" cy=\"853440\"/>"), std::string::npos);
}

TEST_F(Frame, AShapeWhoseTextStaysKeepsItsSizeHoweverTheFileHasIt) {
  OpenSlide(Box(Fixed("x"), kGrows));
  EXPECT_EQ(Single(Shape(1), u"Height"), 50.0F);
  ASSERT_EQ(Put(Range(1), u"x"), kOk);
  EXPECT_EQ(Single(Shape(1), u"Height"), 50.0F);
  EXPECT_FALSE(host->Edited());
}

TEST_F(Frame, AKeptScaleIsFoundAgainForAnotherText) {
  // 50 points less the insets hold three lines of 12 points and a bit.
  OpenSlide(Box(Fixed("x"), kNormal) + Box(Fixed("x"), kNormal));
  ASSERT_EQ(Put(Range(1), u"1\r2\r3"), kOk);
  ASSERT_EQ(Put(Range(2), u"1\r2\r3\r4"), kOk);
  // Until a layout is made, what is put shows as what was put before.
  EXPECT_FLOAT_EQ(Single(Get(Range(2), u"Font"), u"Size"), 9.25F);
  const std::string saved = Saved();
  EXPECT_NE(saved.find("<a:bodyPr><a:normAutofit/></a:bodyPr>"), std::string::npos);
  EXPECT_NE(saved.find("<a:bodyPr><a:normAutofit fontScale=\"92500\" "
                       "lnSpcReduction=\"10000\"/></a:bodyPr>"),
            std::string::npos);
  EXPECT_EQ(Single(Get(Range(1), u"Font"), u"Size"), 10.0F);
}

TEST_F(Frame, AScaleIsFoundBeforeTheTextIsMeasured) {
  OpenSlide(Box(Fixed("x"), kNormal));
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5\r6\r7\r8"), kOk);
  EXPECT_LE(Single(Range(1), u"BoundHeight"), 50.0F - 7.2F + 0.1F);
  EXPECT_LT(Single(Get(Range(1), u"Font"), u"Size"), 6.0F);
}

TEST_F(Frame, AScaleThatTheLayoutNamesIsKeptWithTheSlide) {
  testdeck::DeckSource deck;
  std::string layout = Placeholder("<p:ph idx=\"3\"/>", "<a:p/>");
  layout.replace(layout.find("<p:spPr/>"), 9,
                 "<p:spPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"1270000\" "
                 "cy=\"635000\"/></a:xfrm></p:spPr>");
  layout.replace(layout.find("<a:bodyPr/>"), 11, "<a:bodyPr><a:normAutofit/></a:bodyPr>");
  deck.layoutShapes = layout;
  deck.slides.push_back({testdeck::SlideXml(Placeholder("<p:ph idx=\"3\"/>", Fixed("x")) +
                                            Placeholder("<p:ph idx=\"3\"/>", Fixed("x"))),
                         {},
                         {},
                         {}});
  OpenDeck(deck);
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5\r6"), kOk);
  ASSERT_EQ(Put(Range(2), u"2"), kOk);
  const std::string saved = Saved();
  EXPECT_NE(saved.find("<a:bodyPr><a:normAutofit fontScale="), std::string::npos);
  EXPECT_NE(saved.find("<a:bodyPr/>"), std::string::npos) << "one that fits says nothing";
}

TEST_F(Frame, APageThatMadeRoomForOthersComesBackAsItWasLeft) {
  testdeck::DeckSource deck;
  for (int slide = 0; slide < 8; ++slide) {
    deck.slides.push_back({testdeck::SlideXml(Box(Fixed("x"), kGrows)), {}, {}, {}});
  }
  OpenDeck(deck);
  ASSERT_EQ(Put(Range(1), u"1\r2\r3\r4\r5"), kOk);
  ASSERT_EQ(PutSingle(Shape(1), u"Left", 33.0F), kOk);
  ASSERT_EQ(PutWhole(First(), u"WordWrap", 0), kOk);
  for (int slide = 2; slide <= 8; ++slide) EXPECT_EQ(TextOf(Range(1, slide), u"Text"), u"x");
  EXPECT_EQ(Whole(First(), u"WordWrap"), 0);
  EXPECT_FLOAT_EQ(Single(Shape(1), u"Height"), 67.2F);
  EXPECT_EQ(Single(Shape(1), u"Left"), 33.0F);
}

}  // namespace quillmarch::host
