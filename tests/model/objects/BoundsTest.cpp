#include "host/model/FrameMeasure.h"
#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Group;
using testdeck::Para;
using testdeck::RunXml;
using testdeck::TableFrame;

namespace {

// Of a character, at 10 points; a line is 12 points high.
constexpr float kCell = 10.0F * 1229.0F / 2048.0F;

std::string MonoRun(const std::string& text, const std::string& attributes = "sz=\"1000\"") {
  return RunXml(
      text, "<a:rPr lang=\"en-US\" " + attributes + "><a:latin typeface=\"Courier New\"/></a:rPr>");
}
std::string Fixed(const std::string& text, const std::string& properties = "") {
  return Para(properties + MonoRun(text));
}

// Boxes of Box() are 100 x 50 points at 10, 20; with the usual insets 85.6 points are left, which
// take 14 characters.
constexpr float kLeft = 17.2F;
constexpr float kTop = 23.6F;
constexpr float kNear = 0.01F;

}  // namespace

class Bounds : public ModelTest {
 protected:
  static void ExpectBox(const ObjectRef& range, float left, float top, float width, float height) {
    EXPECT_NEAR(Single(range, u"BoundLeft"), left, kNear);
    EXPECT_NEAR(Single(range, u"BoundTop"), top, kNear);
    EXPECT_NEAR(Single(range, u"BoundWidth"), width, kNear);
    EXPECT_NEAR(Single(range, u"BoundHeight"), height, kNear);
  }
  static ResultCode PutWhole(const ObjectRef& object, WideView member, std::int32_t value) {
    return AutoPut(object.get(), member, Variant::I4(value));
  }
};

TEST_F(Bounds, OneLineIsATextsBoxInSlideCoordinates) {
  OpenSlide(Box(Fixed("hello")));
  ExpectBox(Range(1), kLeft, kTop, 5 * kCell, 12.0F);
  EXPECT_FALSE(host->Edited());
}

TEST_F(Bounds, EighteenPointsGiveALineOfTwentyOnePointSix) {
  OpenSlide(Box(Para(RunXml("hello", "<a:rPr sz=\"1800\"/>"))));
  EXPECT_FLOAT_EQ(Single(Range(1), u"BoundHeight"), 21.6F);
}

TEST_F(Bounds, TypedAndNamedMembersAreTheSame) {
  OpenSlide(Box(Fixed("hello")));
  const std::pair<Member<float>, WideView> members[] = {
      {ppt::textRange::kBoundLeft, u"BoundLeft"},
      {{{ppt::kTextRange, 2007}}, u"BoundTop"},
      {ppt::textRange::kBoundWidth, u"BoundWidth"},
      {ppt::textRange::kBoundHeight, u"BoundHeight"}};
  for (const auto& [typed, name] : members) {
    Variant value;
    ASSERT_EQ(CallMember(Range(1).get(), typed, {}, value), kOk);
    EXPECT_EQ(value.single(), Single(Range(1), name));
  }
}

TEST_F(Bounds, APartOfTheTextHasItsOwnBox) {
  OpenSlide(Box(Fixed("hello") + Fixed("second")));
  ExpectBox(Part(Range(1), u"Characters", 2, 3), kLeft + kCell, kTop, 3 * kCell, 12.0F);
  ExpectBox(Part(Range(1), u"Paragraphs", 2, 1), kLeft, kTop + 12.0F, 6 * kCell, 12.0F);
}

TEST_F(Bounds, TextWrapsAtTheInsetsAndNotWithWrapOff) {
  OpenSlide(Box(Fixed("aaaa bbbb cccc dddd")));
  ExpectBox(Range(1), kLeft, kTop, 14 * kCell, 24.0F);
  ASSERT_EQ(PutWhole(Get(Shape(1), u"TextFrame"), u"WordWrap", 0), kOk);
  ExpectBox(Range(1), kLeft, kTop, 19 * kCell, 12.0F);
}

TEST_F(Bounds, WithoutWrapCenteredTextReachesPastBothSidesOfItsShape) {
  OpenSlide(
      Box(Fixed("aaaa bbbb cccc dddd eeee", "<a:pPr algn=\"ctr\"/>"), "<a:bodyPr wrap=\"none\"/>"));
  ExpectBox(Range(1), 60.0F - 12 * kCell, kTop, 24 * kCell, 12.0F);
}

TEST_F(Bounds, SizesAndPropertiesComeDownFromLayoutMasterAndDeck) {
  testdeck::DeckSource deck;
  std::string layout = testdeck::Placeholder("<p:ph type=\"body\" idx=\"1\"/>", "<a:p/>");
  layout.replace(layout.find("<p:spPr/>"), 9,
                 "<p:spPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"2540000\" "
                 "cy=\"1270000\"/></a:xfrm></p:spPr>");
  layout.replace(layout.find("<a:bodyPr/>"), 11, "<a:bodyPr lIns=\"0\" anchor=\"b\"/>");
  layout.replace(layout.find("<a:lstStyle/>"), 13,
                 "<a:lstStyle><a:lvl1pPr><a:spcBef><a:spcPts val=\"600\"/></a:spcBef>"
                 "</a:lvl1pPr></a:lstStyle>");
  deck.layoutShapes = layout;
  deck.textStyles =
      "<p:txStyles><p:titleStyle/><p:bodyStyle><a:lvl1pPr marL=\"127000\" indent=\"-127000\">"
      "<a:lnSpc><a:spcPct val=\"200000\"/></a:lnSpc><a:buChar char=\"-\"/><a:defRPr sz=\"1000\">"
      "<a:latin typeface=\"Courier New\"/></a:defRPr></a:lvl1pPr></p:bodyStyle><p:otherStyle/>"
      "</p:txStyles>";
  deck.slides.push_back({testdeck::SlideXml(testdeck::Placeholder(
                             "<p:ph type=\"body\" idx=\"1\"/>",
                             testdeck::TextPara("one") + testdeck::TextPara("two"))),
                         {},
                         {},
                         {}});
  OpenDeck(deck);
  // Two lines of 24 points and 6 before the second one; the bottom inset is the usual one.
  ExpectBox(Range(1), 10.0F, 100.0F - 3.6F - 54.0F, 3 * kCell, 54.0F);
}

TEST_F(Bounds, AnchorsPutTheBlockInTheMiddleOrAtTheBottom) {
  OpenSlide(Box(Fixed("x"), "<a:bodyPr anchor=\"ctr\"/>") +
            Box(Fixed("x"), "<a:bodyPr anchor=\"b\"/>"));
  EXPECT_NEAR(Single(Range(1), u"BoundTop"), 45.0F - 6.0F, kNear);
  EXPECT_NEAR(Single(Range(2), u"BoundTop"), 70.0F - 3.6F - 12.0F, kNear);
}

TEST_F(Bounds, TabsIndentsAndSpacingOfTheParagraphCount) {
  OpenSlide(Box(Fixed("a\tb",
                      "<a:pPr marL=\"127000\"><a:tabLst><a:tab pos=\"508000\" algn=\"l\"/>"
                      "</a:tabLst></a:pPr>") +
                Fixed("c", "<a:pPr><a:spcBef><a:spcPts val=\"1000\"/></a:spcBef></a:pPr>")));
  ExpectBox(Part(Range(1), u"Characters", 3, 1), kLeft + 40.0F, kTop, kCell, 12.0F);
  EXPECT_NEAR(Single(Part(Range(1), u"Paragraphs", 2, 1), u"BoundTop"), kTop + 22.0F, kNear);
}

TEST_F(Bounds, ColumnsAndVerticalTextAreLaidOutAsSuch) {
  OpenSlide(Box(Fixed("1") + Fixed("2") + Fixed("3") + Fixed("4") + Fixed("5"),
                "<a:bodyPr numCol=\"2\" lIns=\"0\" rIns=\"0\"/>") +
            Box(Fixed("hello"), "<a:bodyPr vert=\"vert\"/>"));
  EXPECT_NEAR(Single(Part(Range(1), u"Paragraphs", 5, 1), u"BoundLeft"), 10.0F + 50.0F, kNear);
  // Lines run down, and the first one is at the right inset.
  ExpectBox(Range(2), 110.0F - 3.6F - 12.0F + (3.6F - 7.2F), 20.0F + 3.6F, 12.0F, 5 * kCell);
}

TEST_F(Bounds, SpacingCapsAndBaselineOfRunsCount) {
  OpenSlide(Box(Para(MonoRun("ab", "sz=\"1000\" spc=\"300\""))) +
            Box(Para(MonoRun("hello") + MonoRun("2", "sz=\"1000\" baseline=\"30000\""))) +
            Box(Para(RunXml("iii", "<a:rPr sz=\"1000\"><a:latin typeface=\"Arial\"/></a:rPr>"))) +
            Box(Para(RunXml("iii",
                            "<a:rPr sz=\"1000\" cap=\"all\"><a:latin "
                            "typeface=\"Arial\"/></a:rPr>"))));
  EXPECT_NEAR(Single(Part(Range(1), u"Characters", 2, 1), u"BoundLeft"), kLeft + kCell + 3.0F,
              kNear);
  EXPECT_LT(Single(Range(2), u"BoundWidth"), 6 * kCell - 1.0F) << "a raised digit is smaller";
  EXPECT_GT(Single(Range(4), u"BoundWidth"), Single(Range(3), u"BoundWidth") + 1.0F);
}

TEST_F(Bounds, ShapesKeepTheirTextInsideTheirOutline) {
  std::string shapes;
  for (const std::string preset :
       {"ellipse", "roundRect", "diamond", "triangle", "rightArrow", "someFutureShape", "star8",
        "upArrowCallout", "verticalScroll", "flowChartInternalStorage", "notchedRightArrow",
        "snip2SameRect", "leftRightArrowCallout", "ribbon"}) {
    std::string box = Box(Fixed("x"), "<a:bodyPr lIns=\"0\" tIns=\"0\"/>");
    box.replace(box.find("</a:xfrm>"), 9,
                "</a:xfrm><a:prstGeom prst=\"" + preset + "\"><a:avLst/></a:prstGeom>");
    shapes += box;
  }
  OpenSlide(shapes);
  const float insets[][2] = {
      {14.6447F, 7.3223F}, {50 * 0.16667F * 0.292893F, 50 * 0.16667F * 0.292893F},
      {25.0F, 12.5F},      {25.0F, 25.0F},
      {0.0F, 12.5F},       {0.0F, 0.0F},
      {15.3550F, 7.6775F}, {0.0F, 17.5115F},
      {6.25F, 6.25F},      {12.5F, 6.25F},
      {12.5F, 12.5F},      {4.1668F, 4.1668F},
      {25.9385F, 0.0F},    {25.0F, 8.3335F}};
  for (int shape = 1; shape <= 14; ++shape) {
    EXPECT_NEAR(Single(Range(shape), u"BoundLeft"), 10.0F + insets[shape - 1][0], kNear) << shape;
    EXPECT_NEAR(Single(Range(shape), u"BoundTop"), 20.0F + insets[shape - 1][1], kNear) << shape;
  }
}

TEST_F(Bounds, AnAdjustmentMovesTheOutline) {
  std::string box = Box(Fixed("x"), "<a:bodyPr lIns=\"0\" tIns=\"0\"/>");
  box.replace(box.find("</a:xfrm>"), 9,
              "</a:xfrm><a:prstGeom prst=\"roundRect\"><a:avLst><a:gd name=\"adj\" "
              "fmla=\"val 50000\"/></a:avLst></a:prstGeom>");
  OpenSlide(box);
  EXPECT_NEAR(Single(Range(1), u"BoundLeft"), 10.0F + 25.0F * 0.292893F, kNear);
}

TEST_F(Bounds, ACustomOutlineSaysWhereItsTextGoes) {
  std::string box = Box(Fixed("x"), "<a:bodyPr lIns=\"0\" tIns=\"0\"/>");
  box.replace(box.find("</a:xfrm>"), 9,
              "</a:xfrm><a:custGeom><a:avLst/><a:gdLst><a:gd name=\"in\" fmla=\"*/ w 1 4\"/>"
              "</a:gdLst><a:rect l=\"in\" t=\"vc\" r=\"r\" b=\"b\"/><a:pathLst/></a:custGeom>");
  OpenSlide(box);
  ExpectBox(Range(1), 35.0F, 45.0F, kCell, 12.0F);
}

TEST_F(Bounds, TextThatIsTurnedInItsShapeIsMeasuredTurned) {
  OpenSlide(Box(Fixed("hello"), "<a:bodyPr rot=\"10800000\"/>") +
            Box(Fixed("aaaa bbbb"), "<a:bodyPr rot=\"5400000\"/>"));
  // The first line is at the bottom, from right to left.
  ExpectBox(Range(1), 110.0F - 7.2F - 5 * kCell, 70.0F - 3.6F - 12.0F, 5 * kCell, 12.0F);
  // Lines run down: 50 points less the insets take five characters, and the first line is at
  // the right.
  ExpectBox(Range(2), 110.0F - 3.6F - 24.0F, 20.0F + 7.2F, 24.0F, 4 * kCell);
}

TEST_F(Bounds, AShapeOfAGroupIsMeasuredWhereItShows) {
  OpenSlide(Group(Box(Fixed("aaaa bbbb cccc dddd"))));
  const ObjectRef leaf = Get(Get(Shape(1), u"GroupItems"), u"Item", {Variant::I4(1)});
  // The group doubles the box, not the letters.
  ExpectBox(RangeOf(leaf), 120.0F + 7.2F, 140.0F + 3.6F, 19 * kCell, 12.0F);
}

TEST_F(Bounds, ACellIsMeasuredInItsPlace) {
  OpenSlide(
      TableFrame("<a:tbl><a:tblGrid><a:gridCol w=\"1270000\"/><a:gridCol w=\"1270000\"/>"
                 "</a:tblGrid><a:tr h=\"254000\"><a:tc><a:txBody><a:bodyPr/><a:p/>"
                 "</a:txBody><a:tcPr/></a:tc><a:tc><a:txBody><a:bodyPr/>" +
                 Fixed("ab") + "</a:txBody><a:tcPr marL=\"0\" marT=\"0\"/></a:tc></a:tr></a:tbl>"));
  const ObjectRef cell =
      Get(Get(Get(Shape(1), u"Table"), u"Cell", {Variant::I4(1), Variant::I4(2)}), u"Shape");
  ExpectBox(RangeOf(cell), 100.0F, 0.0F, 2 * kCell, 12.0F);
}

TEST_F(Bounds, AnEmptyLastParagraphCountsInTheWholeText) {
  OpenSlide(Box(Fixed("one") + "<a:p><a:endParaRPr sz=\"2000\"/></a:p>"));
  ExpectBox(Range(1), kLeft, kTop, 3 * kCell, 12.0F + 24.0F);
  ExpectBox(Part(Range(1), u"Paragraphs", 1, 1), kLeft, kTop, 3 * kCell, 12.0F);
}

TEST_F(Bounds, AnEmptyFrameIsAsHighAsALineOfItsFormat) {
  OpenSlide(Box("<a:p><a:endParaRPr sz=\"1000\"/></a:p>") +
            "<p:sp><p:nvSpPr><p:cNvPr id=\"9\" name=\"bare\"/></p:nvSpPr></p:sp>");
  ExpectBox(Range(1), kLeft, kTop, 0.0F, 12.0F);
  EXPECT_TRUE(Failed(Code(Range(2), u"BoundHeight")));
}

TEST_F(Bounds, EveryChangeOfTextFontOrFrameIsSeen) {
  OpenSlide(Box(Fixed("hello")));
  ExpectBox(Range(1), kLeft, kTop, 5 * kCell, 12.0F);
  ASSERT_EQ(Put(Range(1), u"hi"), kOk);
  ExpectBox(Range(1), kLeft, kTop, 2 * kCell, 12.0F);
  ASSERT_EQ(AutoPut(Get(Range(1), u"Font").get(), u"Size", Variant::R4(20.0F)), kOk);
  ExpectBox(Range(1), kLeft, kTop, 4 * kCell, 24.0F);
  ASSERT_EQ(AutoPut(Shape(1).get(), u"Left", Variant::R4(50.0F)), kOk);
  ExpectBox(Range(1), 57.2F, kTop, 4 * kCell, 24.0F);
  ASSERT_EQ(AutoPut(Get(Shape(1), u"TextFrame").get(), u"MarginTop", Variant::R4(0.0F)), kOk);
  ExpectBox(Range(1), 57.2F, 20.0F, 4 * kCell, 24.0F);
}

TEST_F(Bounds, NumberedParagraphsCountByLevel) {
  const std::string numbered = "<a:buAutoNum type=\"arabicPeriod\"/></a:pPr>";
  std::string text;
  for (int i = 0; i < 10; ++i) text += Fixed("x", "<a:pPr indent=\"0\">" + numbered);
  OpenSlide(Box(text, "<a:bodyPr lIns=\"0\"/>"));
  const float ninth = Single(Part(Range(1), u"Paragraphs", 9, 1), u"BoundLeft");
  const float tenth = Single(Part(Range(1), u"Paragraphs", 10, 1), u"BoundLeft");
  EXPECT_NEAR(ninth, 10.0F + 2 * kCell, kNear) << "after \"9.\"";
  EXPECT_NEAR(tenth, 10.0F + 3 * kCell, kNear) << "after \"10.\"";
}

TEST_F(Bounds, ATextIsLaidOutOnceUntilSomethingChanges) {
  testdeck::DeckSource source;
  source.slides.push_back({testdeck::SlideXml(Box(Fixed("aaaa bbbb cccc dddd"))), {}, {}, {}});
  testdeck::Write(source, path());
  std::vector<std::string> sentences;
  auto opened = deck::Deck::Open(path(), sentences);
  ASSERT_TRUE(opened);
  deck::Deck& deck = **opened;
  model::FrameMeasure measure;
  const deck::ShapeAddress address{{0, false}, 0};
  deck::ShapeBox box;
  for (std::size_t start = 0; start < 5; ++start) {
    ASSERT_TRUE(measure.Bounds(deck, address, {start, 3}, true, box));
  }
  EXPECT_EQ(measure.Layouts(), 1U);
  deck::FrameProps change;
  change.wrap = false;
  ASSERT_TRUE(deck.PutFrame(address, change));
  ASSERT_TRUE(measure.Bounds(deck, address, {0, 19}, true, box));
  EXPECT_EQ(measure.Layouts(), 2U);
  // The wrap that was on before is known.
  change.wrap = true;
  ASSERT_TRUE(deck.PutFrame(address, change));
  ASSERT_TRUE(measure.Bounds(deck, address, {0, 19}, true, box));
  EXPECT_EQ(measure.Layouts(), 2U);
  EXPECT_NEAR(box.height, 24.0, kNear);
  deck::TextSpan span{0, 4};
  ASSERT_TRUE(deck.Text(address)->PutText(span, u"z"));
  ASSERT_TRUE(measure.Bounds(deck, address, {0, 19}, true, box));
  EXPECT_EQ(measure.Layouts(), 3U);
}

}  // namespace quillmarch::host
