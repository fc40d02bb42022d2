#include "model/ModelFixture.h"

namespace quillmarch::host {

using testdeck::Box;
using testdeck::Cell;
using testdeck::Para;
using testdeck::Placeholder;
using testdeck::RunXml;
using testdeck::TableFrame;
using testdeck::TextPara;

namespace {

std::string Solid(const std::string& color) {
  return "<a:solidFill>" + color + "</a:solidFill>";
}
std::string Level(const std::string& properties) {
  return "<a:lvl1pPr><a:defRPr " + properties + "</a:defRPr></a:lvl1pPr>";
}

}  // namespace

class Font : public ModelTest {
 protected:
  ObjectRef FontOf(int shape, int slide = 1) { return Get(Range(shape, slide), u"Font"); }
  ObjectRef ColorOf(int shape) { return Get(FontOf(shape), u"Color"); }
  static ResultCode PutValue(const ObjectRef& object, WideView member, const Variant& value) {
    return AutoPut(object.get(), member, value);
  }
};

TEST_F(Font, ATextBoxShowsTheFormatsDefaults) {
  OpenSlide(Box(TextPara("x")));
  EXPECT_EQ(Single(FontOf(1), u"Size"), 18.0f);
  EXPECT_EQ(Whole(FontOf(1), u"Bold"), 0);
  EXPECT_EQ(Whole(FontOf(1), u"Italic"), 0);
  EXPECT_EQ(TextOf(FontOf(1), u"Name"), u"Body Face");
  EXPECT_EQ(TextOf(FontOf(1), u"NameFarEast"), u"Body Asia");
  EXPECT_EQ(Whole(ColorOf(1), u"Type"), 2);
  EXPECT_EQ(Whole(ColorOf(1), u"RGB"), 0x101010);
  EXPECT_EQ(Whole(ColorOf(1), u"SchemeColor"), 2);
  EXPECT_EQ(Whole(ColorOf(1), u"ObjectThemeColor"), 13);
}

TEST_F(Font, APlaceholderInheritsFromLayoutMasterAndItsTextStyles) {
  testdeck::DeckSource deck;
  deck.layoutShapes =
      "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"t\"/><p:cNvSpPr/><p:nvPr><p:ph type=\"ctrTitle\"/>"
      "</p:nvPr></p:nvSpPr><p:spPr/><p:txBody><a:bodyPr/><a:lstStyle>" +
      Level("sz=\"6000\">") + "</a:lstStyle><a:p/></p:txBody></p:sp>";
  deck.masterShapes =
      "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"t\"/><p:cNvSpPr/><p:nvPr><p:ph type=\"title\"/>"
      "</p:nvPr></p:nvSpPr><p:spPr><a:xfrm><a:off x=\"12700\" y=\"25400\"/><a:ext cx=\"38100\" "
      "cy=\"50800\"/></a:xfrm></p:spPr><p:txBody><a:bodyPr/><a:lstStyle>" +
      Level("sz=\"5000\" i=\"1\">") + "</a:lstStyle><a:p/></p:txBody></p:sp>";
  deck.slides.push_back(
      {testdeck::SlideXml(
           Placeholder("<p:ph type=\"title\"/>", TextPara("Title")) +
           Placeholder("<p:ph idx=\"1\"/>",
                       TextPara("one") + Para("<a:pPr lvl=\"1\"/>" + RunXml("two")))),
       {},
       {},
       {}});
  OpenDeck(deck);
  EXPECT_EQ(Single(FontOf(1), u"Size"), 60.0f);  // the layout's
  EXPECT_EQ(Whole(FontOf(1), u"Italic"), -1);    // the master placeholder's
  EXPECT_EQ(Whole(FontOf(1), u"Bold"), -1);      // the master's title style
  EXPECT_EQ(Single(Shape(1), u"Left"), 1.0f);
  EXPECT_EQ(Single(Shape(1), u"Height"), 4.0f);
  EXPECT_EQ(Single(FontOf(2), u"Size"), -2.0f);
  EXPECT_EQ(Single(Get(Part(Range(2), u"Paragraphs", 1, 1), u"Font"), u"Size"), 28.0f);
  const ObjectRef second = Get(Part(Range(2), u"Paragraphs", 2, 1), u"Font");
  EXPECT_EQ(Single(second, u"Size"), 24.0f);
  EXPECT_EQ(Whole(second, u"Italic"), -1);
}

TEST_F(Font, ThePresentationsDefaultsServeTextBoxes) {
  testdeck::DeckSource deck;
  deck.presentationTail =
      "<p:defaultTextStyle>" + Level("sz=\"1400\" b=\"1\">") + "</p:defaultTextStyle>";
  deck.slides.push_back({testdeck::SlideXml(Box(TextPara("x"))), {}, {}, {}});
  OpenDeck(deck);
  EXPECT_EQ(Single(FontOf(1), u"Size"), 14.0f);
  EXPECT_EQ(Whole(FontOf(1), u"Bold"), -1);
}

TEST_F(Font, MixedValuesReadAsMinusTwoAndMixedNamesAsNothing) {
  OpenSlide(
      Box(Para(RunXml("a", "<a:rPr sz=\"1000\" b=\"1\" i=\"1\"><a:latin typeface=\"A\"/></a:rPr>") +
               RunXml("b", "<a:rPr sz=\"1100\"/>"))));
  EXPECT_EQ(Single(FontOf(1), u"Size"), -2.0f);
  EXPECT_EQ(Whole(FontOf(1), u"Bold"), -2);
  EXPECT_EQ(Whole(FontOf(1), u"Italic"), -2);
  EXPECT_EQ(TextOf(FontOf(1), u"Name"), u"");
}

TEST_F(Font, AMixedColourHasATypeAndNothingElse) {
  OpenSlide(
      Box(Para(RunXml("a", "<a:rPr>" + Solid("<a:srgbClr val=\"FF0000\"/>") + "</a:rPr>") +
               RunXml("b", "<a:rPr>" + Solid("<a:schemeClr val=\"accent1\"/>") + "</a:rPr>"))));
  EXPECT_EQ(Whole(ColorOf(1), u"Type"), -2);
  EXPECT_TRUE(Failed(Code(ColorOf(1), u"RGB")));
  EXPECT_TRUE(Failed(Code(ColorOf(1), u"SchemeColor")));
}

TEST_F(Font, ColoursAreReadWithRedLowAndThroughTheirModifiers) {
  OpenSlide(Box(Para(RunXml("a", "<a:rPr>" + Solid("<a:srgbClr val=\"0A0B0C\"/>") + "</a:rPr>"))) +
            Box(Para(RunXml("a", "<a:rPr>" +
                                     Solid("<a:schemeClr val=\"bg1\"><a:lumMod val=\"50000\"/>"
                                           "</a:schemeClr>") +
                                     "</a:rPr>"))) +
            Box(Para(RunXml("a", "<a:rPr>" +
                                     Solid("<a:schemeClr val=\"accent1\"><a:shade val=\"60000\"/>"
                                           "</a:schemeClr>") +
                                     "</a:rPr>"))));
  EXPECT_EQ(Whole(ColorOf(1), u"Type"), 1);
  EXPECT_EQ(Whole(ColorOf(1), u"RGB"), 0x0C0B0A);
  EXPECT_EQ(Whole(ColorOf(1), u"SchemeColor"), 0);
  EXPECT_EQ(Whole(ColorOf(2), u"RGB"), 0x7D7D7D);
  EXPECT_EQ(Whole(ColorOf(3), u"SchemeColor"), 5);
  EXPECT_NEAR(Single(ColorOf(3), u"TintAndShade"), -0.4f, 1e-6f);
}

TEST_F(Font, PutValuesGoIntoEveryRunOfTheRangeAndNowhereElse) {
  OpenSlide(Box(Para(RunXml("ab", "<a:rPr lang=\"en-US\"/>") + RunXml("cd") + RunXml("ef"))));
  const ObjectRef font = Get(Part(Range(1), u"Characters", 2, 2), u"Font");
  ASSERT_EQ(PutValue(font, u"Bold", Variant::I4(-1)), kOk);
  ASSERT_EQ(PutValue(font, u"Size", Variant::R4(20.5f)), kOk);
  EXPECT_EQ(Whole(font, u"Bold"), -1);
  EXPECT_EQ(Single(font, u"Size"), 20.5f);
  std::string expected = slideXml;
  const std::string old = RunXml("ab", "<a:rPr lang=\"en-US\"/>") + RunXml("cd");
  expected.replace(expected.find(old), old.size(),
                   RunXml("a", "<a:rPr lang=\"en-US\"/>") +
                       RunXml("b", "<a:rPr sz=\"2050\" b=\"1\" lang=\"en-US\"/>") +
                       RunXml("c", "<a:rPr sz=\"2050\" b=\"1\"/>") + RunXml("d"));
  EXPECT_EQ(Saved(), expected);
}

TEST_F(Font, AValueThatHoldsAlreadyIsNoEdit) {
  OpenSlide(Box(TextPara("x")));
  EXPECT_EQ(PutValue(FontOf(1), u"Size", Variant::R4(18.0f)), kOk);
  EXPECT_EQ(PutValue(FontOf(1), u"Bold", Variant::I4(0)), kOk);
  EXPECT_EQ(PutValue(FontOf(1), u"Name", Variant::Text(u"Body Face")), kOk);
  EXPECT_EQ(PutValue(ColorOf(1), u"SchemeColor", Variant::I4(2)), kOk);
  EXPECT_EQ(PutValue(ColorOf(1), u"TintAndShade", Variant::R4(0.0f)), kOk);
  // The complex face is not the same, so the put of a name concerns only that one.
  const std::string face = "<a:rPr><a:cs typeface=\"Body Face\"/></a:rPr>";
  EXPECT_NE(Saved().find(Para(RunXml("x", face))), std::string::npos);
}

TEST_F(Font, ThreeNamesAreWrittenInTheOrderOfTheFormat) {
  OpenSlide(Box(Para(RunXml("x", "<a:rPr><a:hlinkClick r:id=\"h\"/></a:rPr>"))));
  ASSERT_EQ(PutValue(FontOf(1), u"NameFarEast", Variant::Text(u"Z")), kOk);
  ASSERT_EQ(PutValue(FontOf(1), u"Name", Variant::Text(u"Z")), kOk);
  ASSERT_EQ(PutValue(FontOf(1), u"NameAscii", Variant::Text(u"Z")), kOk);
  EXPECT_NE(Saved().find("<a:rPr><a:latin typeface=\"Z\"/><a:ea typeface=\"Z\"/>"
                         "<a:cs typeface=\"Z\"/><a:hlinkClick r:id=\"h\"/></a:rPr>"),
            std::string::npos);
}

TEST_F(Font, PuttingAnRgbValueEndsTheThemeLinkAndASchemeColourMakesIt) {
  OpenSlide(
      Box(Para(RunXml("x", "<a:rPr>" + Solid("<a:schemeClr val=\"accent1\"/>") + "</a:rPr>"))));
  ASSERT_EQ(PutValue(ColorOf(1), u"RGB", Variant::I4(0x332211)), kOk);
  EXPECT_EQ(Whole(ColorOf(1), u"Type"), 1);
  EXPECT_EQ(Whole(ColorOf(1), u"RGB"), 0x332211);
  ASSERT_EQ(PutValue(ColorOf(1), u"SchemeColor", Variant::I4(5)), kOk);
  EXPECT_EQ(Whole(ColorOf(1), u"Type"), 2);
  ASSERT_EQ(PutValue(ColorOf(1), u"TintAndShade", Variant::R4(0.25f)), kOk);
  EXPECT_NE(
      Saved().find(Solid("<a:schemeClr val=\"accent1\"><a:tint val=\"75000\"/></a:schemeClr>")),
      std::string::npos);
}

TEST_F(Font, AStoredScaleTurnsTheFilesSizeIntoTheShownOne) {
  OpenSlide(Box(Para(RunXml("x", "<a:rPr sz=\"2000\"/>")),
                "<a:bodyPr><a:normAutofit fontScale=\"92500\"/></a:bodyPr>"));
  EXPECT_EQ(Single(FontOf(1), u"Size"), 18.5f);
  ASSERT_EQ(Put(Range(1), u"y"), kOk);
  EXPECT_EQ(Single(FontOf(1), u"Size"), 18.5f);
  ASSERT_EQ(PutValue(FontOf(1), u"Size", Variant::R4(37.0f)), kOk);
  const std::string saved = Saved();
  EXPECT_NE(saved.find("fontScale=\"92500\""), std::string::npos);
  EXPECT_NE(saved.find(RunXml("y", "<a:rPr sz=\"4000\"/>")), std::string::npos);
}

TEST_F(Font, AScaleOfStrictFilesOrOfNonsenseIsTakenForWhatItIs) {
  OpenSlide(Box(TextPara("x"), "<a:bodyPr><a:normAutofit fontScale=\"50%\"/></a:bodyPr>") +
            Box(TextPara("x"), "<a:bodyPr><a:normAutofit fontScale=\"0\"/></a:bodyPr>") +
            Box(TextPara("x"),
                "<a:bodyPr><a:normAutofit fontScale=\"-99999999999999999999\"/></a:bodyPr>"));
  EXPECT_EQ(Single(FontOf(1), u"Size"), 9.0f);
  EXPECT_EQ(Single(FontOf(2), u"Size"), 18.0f);
  EXPECT_EQ(Single(FontOf(3), u"Size"), 18.0f);
}

TEST_F(Font, ASizePutOnAnEmptyParagraphGoesToItsMark) {
  const std::string gap = "<a:p><a:endParaRPr lang=\"de\" sz=\"2800\"/></a:p>";
  const std::string open = "<a:p><a:pPr lvl=\"1\"/></a:p>";
  OpenSlide(Box(TextPara("x") + gap + open + "<a:p/>" + TextPara("y") + gap));
  const ObjectRef text = Range(1);
  for (int run = 2; run <= 4; ++run) {
    const ObjectRef font = Get(Part(text, u"Runs", run, 1), u"Font");
    ASSERT_EQ(PutValue(font, u"Size", Variant::R4(14.0f)), kOk);
    EXPECT_EQ(Single(font, u"Size"), 14.0f) << run;
  }
  // The last paragraph's mark is no character of the text.
  EXPECT_NE(Saved().find(TextPara("x") +
                         "<a:p><a:endParaRPr lang=\"de\" sz=\"1400\"/></a:p>"
                         "<a:p><a:pPr lvl=\"1\"/><a:endParaRPr sz=\"1400\"/></a:p>"
                         "<a:p><a:endParaRPr sz=\"1400\"/></a:p>" +
                         TextPara("y") + gap),
            std::string::npos)
      << Saved();
}

TEST_F(Font, TheFontOfAWriteIsTheFirstRuns) {
  OpenSlide(
      Box(Para(RunXml("a", "<a:rPr sz=\"1000\"/>") + RunXml("b", "<a:rPr sz=\"3000\" b=\"1\"/>"))));
  ASSERT_EQ(Put(Range(1), u"c"), kOk);
  EXPECT_EQ(Single(FontOf(1), u"Size"), 10.0f);
  EXPECT_EQ(Whole(FontOf(1), u"Bold"), 0);
}

TEST_F(Font, AShapeStyleGivesColourAndThemeFont) {
  OpenSlide(
      "<p:sp><p:nvSpPr><p:cNvPr id=\"9\" name=\"s\"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr>"
      "<p:spPr/><p:style><a:lnRef idx=\"0\"/><a:fillRef idx=\"0\"/><a:effectRef idx=\"0\"/>"
      "<a:fontRef idx=\"major\"><a:schemeClr val=\"lt1\"/></a:fontRef></p:style><p:txBody>"
      "<a:bodyPr/><a:p><a:r><a:t>x</a:t></a:r></a:p></p:txBody></p:sp>");
  EXPECT_EQ(TextOf(FontOf(1), u"Name"), u"Head Face");
  EXPECT_EQ(Whole(ColorOf(1), u"RGB"), 0xFAFAFA);
}

TEST_F(Font, ATableStyleMakesItsHeaderBold) {
  OpenSlide(
      TableFrame("<a:tbl><a:tblPr firstRow=\"1\" bandRow=\"1\"><a:tableStyleId>"
                 "{5C22544A-7EE6-4342-B048-85BDC9FD1C3A}</a:tableStyleId></a:tblPr>"
                 "<a:tblGrid><a:gridCol w=\"1\"/></a:tblGrid><a:tr h=\"1\">" +
                 Cell("head") + "</a:tr><a:tr h=\"1\">" + Cell("body") + "</a:tr></a:tbl>"));
  const auto font = [&](int row) {
    const ObjectRef cell =
        Get(Get(Shape(1), u"Table"), u"Cell", {Variant::I4(row), Variant::I4(1)});
    return Get(RangeOf(Get(cell, u"Shape")), u"Font");
  };
  EXPECT_EQ(Whole(font(1), u"Bold"), -1);
  EXPECT_EQ(Whole(font(2), u"Bold"), 0);
  EXPECT_EQ(Whole(Get(font(1), u"Color"), u"RGB"), 0xFAFAFA);
  EXPECT_EQ(Whole(Get(font(2), u"Color"), u"RGB"), 0x101010);
}

TEST_F(Font, SizesOutOfRangeAreRefused) {
  OpenSlide(Box(TextPara("x")));
  for (const float size : {0.0f, -3.0f, 5000.0f}) {
    EXPECT_TRUE(Failed(PutValue(FontOf(1), u"Size", Variant::R4(size)))) << size;
  }
  EXPECT_TRUE(Failed(PutValue(FontOf(1), u"Bold", Variant::I4(-2))));
  EXPECT_FALSE(host->Edited());
}

}  // namespace quillmarch::host
