// A shape's place and its text frame's properties, read and written.
#include "host/deck/FrameEdit.h"

#include "deck/PartUnderTest.h"

namespace quillmarch::host::deck {

using testdeck::Box;
using testdeck::Placeholder;
using testdeck::TextPara;

namespace {

const std::string kTransform =
    "<a:xfrm rot=\"60000\"><a:off x=\"0\"  y='0'/><!-- c --><a:ext cx=\"12700\" cy=\"25400\"/>"
    "</a:xfrm>";

std::string Shape(const std::string& properties, const std::string& body = "<a:bodyPr/><a:p/>") {
  return "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"S\"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr>" +
         properties + "<p:txBody>" + body + "</p:txBody></p:sp>";
}

// The slide after its first shape was moved.
std::string Moved(PartUnderTest& slide, const ShapeBox& box) {
  slide.part->AddFrame(0, DefaultFrame()).moved = box;
  return slide.Bytes();
}

// The slide after a change of its first shape's frame, whose file says nothing but the defaults.
std::string Changed(PartUnderTest& slide, const FrameProps& change) {
  FrameState& frame = slide.part->AddFrame(0, DefaultFrame());
  FrameProps now = change;
  Inherit(now, frame.file);
  frame.now = now;
  return slide.Bytes();
}

FrameProps WithFit(AutofitKind kind, std::int32_t scale = kWholeShare, std::int32_t less = 0) {
  FrameProps props;
  props.autofit = Autofit{kind, scale, less};
  return props;
}

FrameProps Parsed(const std::string& bodyProperties) {
  PartUnderTest slide(Box("<a:p/>", bodyProperties));
  const XmlNames& names = slide.part->names();
  const pugi::xml_node body = TextBodyOf(names, slide.part->shapes().At(0).node);
  return ParseFrameProps(names, names.Child(body, XmlNamespace::kDrawing, "bodyPr"));
}

}  // namespace

TEST(FrameEdit, APlaceIsWrittenIntoOffsetAndExtentOnly) {
  PartUnderTest slide(Shape("<p:spPr>" + kTransform + "<a:prstGeom prst=\"rect\"/></p:spPr>"));
  std::string expected = slide.With("<a:off x=\"0\"  y='0'/>", "<a:off x=\"19050\" y=\"-12700\"/>");
  const std::string extent = "<a:ext cx=\"12700\" cy=\"25400\"/>";
  expected.replace(expected.find(extent), extent.size(), "<a:ext cx=\"127000\" cy=\"0\"/>");
  EXPECT_EQ(Moved(slide, {1.5, -1, 10, 0}), expected);
}

TEST(FrameEdit, AShapeWithoutATransformGetsOneAtTheBeginning) {
  PartUnderTest slide(Shape("<p:spPr><a:prstGeom prst=\"rect\"/></p:spPr>"));
  EXPECT_EQ(Moved(slide, {1, 2, 3, 4}),
            slide.With("<p:spPr><a:prstGeom",
                       "<p:spPr><a:xfrm><a:off x=\"12700\" y=\"25400\"/><a:ext cx=\"38100\" "
                       "cy=\"50800\"/></a:xfrm><a:prstGeom"));
}

TEST(FrameEdit, SelfClosedPropertiesAreOpenedForTheirTransform) {
  PartUnderTest slide(Shape("<p:spPr />"));
  EXPECT_EQ(Moved(slide, {0, 0, 1, 1}),
            slide.With("<p:spPr />",
                       "<p:spPr ><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"12700\" "
                       "cy=\"12700\"/></a:xfrm></p:spPr>"));
}

TEST(FrameEdit, ATransformWithHalfAPlaceIsGivenAWholeOne) {
  PartUnderTest slide(
      Shape("<p:spPr><a:xfrm rot=\"1\"><a:ext cx=\"1\" cy=\"1\"/></a:xfrm></p:spPr>"));
  EXPECT_EQ(Moved(slide, {0, 0, 1, 2}),
            slide.With("<a:ext cx=\"1\" cy=\"1\"/>",
                       "<a:off x=\"0\" y=\"0\"/><a:ext cx=\"12700\" cy=\"25400\"/>"));
}

TEST(FrameEdit, AGroupWithoutAPlaceTakesNone) {
  PartUnderTest slide("<p:grpSp><p:nvGrpSpPr/><p:grpSpPr/></p:grpSp>" + Shape("<p:spPr/>"));
  EXPECT_FALSE(TakesBox(slide.part->names(), slide.part->shapes().At(0)));
  EXPECT_TRUE(TakesBox(slide.part->names(), slide.part->shapes().At(1)));
}

TEST(FrameEdit, AFrameThatIsAsItWasIsNoEdit) {
  PartUnderTest slide(Shape("<p:spPr/>"));
  EXPECT_EQ(Changed(slide, {}), slide.xml);
}

TEST(FrameEdit, AnAutofitReplacesTheOneThatIsThere) {
  PartUnderTest slide(
      Shape("<p:spPr/>", "<a:bodyPr wrap='none'><a:noAutofit/><a:sp3d/></a:bodyPr><a:p/>"));
  EXPECT_EQ(Changed(slide, WithFit(AutofitKind::kShapeToText)),
            slide.With("<a:noAutofit/>", "<a:spAutoFit/>"));
}

TEST(FrameEdit, AnAutofitFollowsTheWarpAndPrecedesEverythingElse) {
  PartUnderTest slide(Shape("<p:spPr/>",
                            "<a:bodyPr><a:prstTxWarp prst=\"x\"/><a:sp3d/></a:bodyPr>"
                            "<a:p/>"));
  EXPECT_EQ(Changed(slide, WithFit(AutofitKind::kTextToShape, 62500, 20000)),
            slide.With("<a:sp3d/>",
                       "<a:normAutofit fontScale=\"62500\" lnSpcReduction=\"20000\"/><a:sp3d/>"));
}

TEST(FrameEdit, AWholeScaleIsNotWritten) {
  PartUnderTest slide(Shape("<p:spPr/>"));
  EXPECT_EQ(Changed(slide, WithFit(AutofitKind::kTextToShape)),
            slide.With("<a:bodyPr/>", "<a:bodyPr><a:normAutofit/></a:bodyPr>"));
}

TEST(FrameEdit, WrapAndInsetsAreAttributesAndTheOthersStay) {
  PartUnderTest slide(Shape("<p:spPr/>", "<a:bodyPr lIns='1' vert=\"vert\"/><a:p/>"));
  FrameProps change;
  change.wrap = false;
  change.insetLeft = 12700;
  EXPECT_EQ(Changed(slide, change),
            slide.With("<a:bodyPr lIns='1' vert=\"vert\"/>",
                       "<a:bodyPr wrap=\"none\" lIns=\"12700\" vert=\"vert\"/>"));
}

TEST(FrameEdit, ABodyWithoutPropertiesGetsThemFirst) {
  PartUnderTest slide(Shape("<p:spPr/>", "<a:p/>"));
  FrameProps change;
  change.wrap = false;
  EXPECT_EQ(Changed(slide, change),
            slide.With("<p:txBody><a:p/>", "<p:txBody><a:bodyPr wrap=\"none\"/><a:p/>"));
}

TEST(FrameEdit, AFrameAndTheTextInItAreEditedTogether) {
  PartUnderTest slide(
      Shape("<p:spPr>" + kTransform + "</p:spPr>", "<a:bodyPr/>" + TextPara("old")));
  ASSERT_TRUE(PutText(slide.Text(), 0, 3, u"new"));
  FrameState& frame = slide.part->AddFrame(0, DefaultFrame());
  frame.now.wrap = false;
  std::string expected = slide.With("<a:bodyPr/>", "<a:bodyPr wrap=\"none\"/>");
  expected.replace(expected.find("old"), 3, "new");
  EXPECT_EQ(slide.Bytes(), expected);
}

TEST(FrameProps, WhatIsNotSaidIsUnset) {
  EXPECT_EQ(Parsed("<a:bodyPr/>"), FrameProps{});
}

TEST(FrameProps, EveryPropertyIsRead) {
  const FrameProps props = Parsed(
      "<a:bodyPr wrap=\"none\" lIns=\"1\" tIns=\"2\" rIns=\"3\" bIns=\"4\" anchor=\"ctr\" "
      "anchorCtr=\"1\" vert=\"vert270\" rot=\"-5400000\" numCol=\"2\" spcCol=\"9\">"
      "<a:normAutofit fontScale=\"92.5%\" lnSpcReduction=\"10000\"/></a:bodyPr>");
  EXPECT_EQ(props.wrap, false);
  EXPECT_EQ(props.insetLeft, 1);
  EXPECT_EQ(props.insetTop, 2);
  EXPECT_EQ(props.insetRight, 3);
  EXPECT_EQ(props.insetBottom, 4);
  EXPECT_EQ(props.anchor, FrameAnchor::kMiddle);
  EXPECT_EQ(props.anchorCenter, true);
  EXPECT_EQ(props.direction, TextDirection::kCounterclockwise);
  EXPECT_EQ(props.turn, -5400000);
  EXPECT_EQ(props.columns, 2);
  EXPECT_EQ(props.columnSpacing, 9);
  EXPECT_EQ(props.autofit, (Autofit{AutofitKind::kTextToShape, 92500, 10000}));
}

TEST(FrameProps, WordsAndNumbersThatMeanNothingAreUnset) {
  EXPECT_EQ(Parsed("<a:bodyPr wrap=\"maybe\" lIns=\"-1\" tIns=\"x\" rIns=\"99999999999\" "
                   "anchor=\"left\" anchorCtr=\"2\" vert=\"up\" numCol=\"0\" rot=\"\"/>"),
            FrameProps{});
  EXPECT_EQ(Parsed("<a:bodyPr numCol=\"17\"/>"), FrameProps{});
}

TEST(FrameProps, ScalesOutOfRangeCountAsWhole) {
  for (const char* scale : {"0", "999", "100001", "-5", "abc"}) {
    EXPECT_EQ(Parsed("<a:bodyPr><a:normAutofit fontScale=\"" + std::string(scale) +
                     "\" lnSpcReduction=\"100000\"/></a:bodyPr>")
                  .autofit,
              (Autofit{AutofitKind::kTextToShape, kWholeShare, 0}))
        << scale;
  }
}

TEST(FrameProps, InheritingFillsOnlyWhatIsUnset) {
  FrameProps own;
  own.wrap = false;
  own.insetLeft = 0;
  Inherit(own, DefaultFrame());
  EXPECT_EQ(own.wrap, false);
  EXPECT_EQ(own.insetLeft, 0);
  EXPECT_EQ(own.insetTop, DefaultFrame().insetTop);
  EXPECT_EQ(own.autofit, Autofit{});
}

}  // namespace quillmarch::host::deck
