// What a slide's placeholder takes from its layout and master.
#include "host/deck/Inheritance.h"

#include <gtest/gtest.h>

#include "deck/DeckBuilder.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {

namespace {

struct Parsed {
  explicit Parsed(std::string bytes) : xml(std::move(bytes)), names(xml) {
    EXPECT_TRUE(ParseXml(document, xml));
  }
  pugi::xml_node root() const { return document.document_element(); }
  std::string xml;
  XmlNames names;
  pugi::xml_document document;
};

PlaceholderStyle Style(const std::string& type, std::uint32_t index) {
  PlaceholderStyle style;
  style.key = {type, index};
  return style;
}

const PlaceholderStyle* Layout(const std::vector<PlaceholderStyle>& styles, const char* type,
                               std::uint32_t index) {
  return MatchInLayout(styles, PlaceholderKey{type, index});
}

}  // namespace

TEST(Inheritance, TypeAndIndexTogetherWinOverIndexAndIndexOverType) {
  const std::vector<PlaceholderStyle> styles = {Style("body", 1), Style("pic", 2), Style("body", 2),
                                                Style("title", 0)};
  EXPECT_EQ(Layout(styles, "body", 2), &styles[2]);
  EXPECT_EQ(Layout(styles, "chart", 2), &styles[1]) << "the first of that index";
  EXPECT_EQ(Layout(styles, "body", 9), &styles[0]) << "the first of that type";
  EXPECT_EQ(Layout(styles, "pic", 1), &styles[0]) << "the index wins over the type";
  EXPECT_EQ(Layout(styles, "chart", 9), nullptr);
}

TEST(Inheritance, BothKindsOfTitleMatchEachOther) {
  const std::vector<PlaceholderStyle> styles = {Style("body", 1), Style("ctrTitle", 0)};
  EXPECT_EQ(Layout(styles, "title", 0), &styles[1]);
  EXPECT_EQ(MatchInMaster(styles, {"title", 0}), &styles[1]);
}

TEST(Inheritance, TheIndexZeroByItselfMatchesNothing) {
  const std::vector<PlaceholderStyle> styles = {Style("title", 0)};
  EXPECT_EQ(Layout(styles, "body", 0), nullptr);
}

TEST(Inheritance, OnTheMasterEverythingButTitlesAndFootersIsBasedOnTheBody) {
  const std::vector<PlaceholderStyle> styles = {Style("title", 0), Style("body", 1), Style("dt", 2),
                                                Style("ftr", 3)};
  EXPECT_EQ(MatchInMaster(styles, {"subTitle", 5}), &styles[1]);
  EXPECT_EQ(MatchInMaster(styles, {"tbl", 5}), &styles[1]);
  EXPECT_EQ(MatchInMaster(styles, {"ftr", 5}), &styles[3]);
  EXPECT_EQ(MatchInMaster(styles, {"sldNum", 5}), nullptr);
}

TEST(Inheritance, AMastersStylesServeTitlesFootersAndAllOthers) {
  const Parsed master("<p:sldMaster" + testdeck::kNamespaces +
                      "><p:cSld><p:spTree/></p:cSld><p:clrMap bg1=\"dk1\"/><p:txStyles>"
                      "<p:titleStyle><a:lvl1pPr><a:defRPr sz=\"4400\"/></a:lvl1pPr></p:titleStyle>"
                      "<p:bodyStyle><a:lvl2pPr><a:defRPr sz=\"2400\" b=\"1\"/></a:lvl2pPr>"
                      "</p:bodyStyle><p:otherStyle><a:defPPr><a:defRPr sz=\"1100\"/></a:defPPr>"
                      "<a:lvl1pPr><a:defRPr i=\"1\"/></a:lvl1pPr></p:otherStyle></p:txStyles>"
                      "</p:sldMaster>");
  const MasterStyles styles = ParseMaster(master.names, master.root());
  EXPECT_EQ(MasterLevels(styles, {"ctrTitle", 0})[0].size, 4400);
  EXPECT_EQ(MasterLevels(styles, {"obj", 3})[1].size, 2400);
  EXPECT_EQ(MasterLevels(styles, {"obj", 3})[1].bold, 1);
  EXPECT_EQ(MasterLevels(styles, {"obj", 3})[0].size, -1) << "the first level says nothing";
  const LevelProps& footer = MasterLevels(styles, {"sldNum", 0});
  EXPECT_EQ(footer[0].size, 1100) << "a style's common properties stand below its levels";
  EXPECT_EQ(footer[0].italic, 1);
  EXPECT_EQ(footer[8].size, 1100);
}

TEST(Inheritance, ANotesMasterHasOneStyleForAll) {
  const Parsed master("<p:notesMaster" + testdeck::kNamespaces +
                      "><p:cSld><p:spTree/></p:cSld><p:notesStyle><a:lvl1pPr>"
                      "<a:defRPr sz=\"1200\"/></a:lvl1pPr></p:notesStyle></p:notesMaster>");
  const MasterStyles styles = ParseMaster(master.names, master.root());
  for (const char* type : {"title", "body", "ftr"}) {
    EXPECT_EQ(MasterLevels(styles, {type, 0})[0].size, 1200) << type;
  }
}

TEST(Inheritance, PlaceholdersAreReadWithPlaceFrameAndLevels) {
  const Parsed layout(
      "<p:sldLayout" + testdeck::kNamespaces + "><p:cSld><p:spTree>" + testdeck::kTreeHead +
      "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"T\"/><p:cNvSpPr/><p:nvPr><p:ph type=\"title\"/>"
      "</p:nvPr></p:nvSpPr><p:spPr><a:xfrm><a:off x=\"12700\" y=\"25400\"/><a:ext cx=\"38100\" "
      "cy=\"50800\"/></a:xfrm></p:spPr><p:txBody><a:bodyPr anchor=\"b\"/><a:lstStyle><a:lvl1pPr>"
      "<a:defRPr sz=\"5000\"/></a:lvl1pPr></a:lstStyle><a:p/></p:txBody></p:sp>" +
      testdeck::Box(testdeck::TextPara("no placeholder")) + "</p:spTree></p:cSld></p:sldLayout>");
  const LayoutStyles styles = ParseLayout(layout.names, layout.root());
  ASSERT_EQ(styles.placeholders.size(), 1U);
  const PlaceholderStyle& title = styles.placeholders[0];
  EXPECT_EQ(title.levels[0].size, 5000);
  EXPECT_EQ(title.frame.anchor, FrameAnchor::kBottom);
  ASSERT_TRUE(title.box.has_value());
  EXPECT_EQ(title.box->left, 1.0);
  EXPECT_EQ(title.box->height, 4.0);
  EXPECT_FALSE(styles.colorMap.has_value());
}

TEST(Inheritance, ATransformWithoutOffsetOrExtentIsNoBox) {
  const Parsed shape("<a:xfrm" + testdeck::kNamespaces + "><a:off x=\"1\" y=\"1\"/></a:xfrm>");
  EXPECT_FALSE(BoxOf(shape.names, shape.root(), "off", "ext").has_value());
}

TEST(Inheritance, CharacterPropertiesFillOnlyWhatIsUnset) {
  CharProps own;
  own.size = 1200;
  own.bold = 0;
  CharProps above;
  above.size = 3000;
  above.bold = 1;
  above.italic = 1;
  above.latin = "Arial";
  Inherit(own, above);
  EXPECT_EQ(own.size, 1200);
  EXPECT_EQ(own.bold, 0) << "not bold is said too";
  EXPECT_EQ(own.italic, 1);
  EXPECT_EQ(own.latin, "Arial");
}

}  // namespace quillmarch::host::deck
