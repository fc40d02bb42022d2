#include "host/deck/ColorSpec.h"

#include <gtest/gtest.h>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {

namespace {

std::uint32_t Resolve(const std::string& color) {
  const std::string xml =
      "<x xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\">" + color + "</x>";
  pugi::xml_document document;
  EXPECT_TRUE(ParseXml(document, xml));
  const XmlNames names(xml);
  return ResolveColor(ParseColor(names, document.document_element().first_child()), ColorMap{},
                      ThemeColors{});
}

TEST(ColorSpec, PlainColoursAreTakenAsTheyStand) {
  EXPECT_EQ(Resolve("<a:srgbClr val=\"12aBcD\"/>"), 0x12ABCDu);
  EXPECT_EQ(Resolve("<a:sysClr val=\"windowText\" lastClr=\"010203\"/>"), 0x010203u);
  EXPECT_EQ(Resolve("<a:sysClr val=\"window\"/>"), 0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:prstClr val=\"red\"/>"), 0xFF0000u);
  EXPECT_EQ(Resolve("<a:scrgbClr r=\"100000\" g=\"0\" b=\"100%\"/>"), 0xFF00FFu);
  EXPECT_EQ(Resolve("<a:hslClr hue=\"7200000\" sat=\"100000\" lum=\"50000\"/>"), 0x00FF00u);
}

TEST(ColorSpec, SchemeColoursGoThroughTheMapToTheTheme) {
  EXPECT_EQ(Resolve("<a:schemeClr val=\"tx1\"/>"), 0x000000u);
  EXPECT_EQ(Resolve("<a:schemeClr val=\"bg1\"/>"), 0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:schemeClr val=\"lt1\"/>"), 0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:schemeClr val=\"accent2\"/>"), 0xED7D31u);
}

TEST(ColorSpec, ModifiersWorkOnTheColour) {
  EXPECT_EQ(Resolve("<a:schemeClr val=\"bg1\"><a:lumMod val=\"75000\"/></a:schemeClr>"), 0xBFBFBFu);
  EXPECT_EQ(Resolve("<a:schemeClr val=\"tx1\"><a:lumMod val=\"50000\"/><a:lumOff val=\"50000\"/>"
                    "</a:schemeClr>"),
            0x808080u);
  EXPECT_EQ(Resolve("<a:srgbClr val=\"FF0000\"><a:shade val=\"0\"/></a:srgbClr>"), 0x000000u);
  EXPECT_EQ(Resolve("<a:srgbClr val=\"0000FF\"><a:tint val=\"0\"/></a:srgbClr>"), 0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:srgbClr val=\"336699\"><a:alpha val=\"10000\"/></a:srgbClr>"), 0x336699u);
}

TEST(ColorSpec, AbsurdNumbersStayInRange) {
  EXPECT_EQ(Resolve("<a:srgbClr val=\"80FF00\"><a:lumOff val=\"9999999999\"/></a:srgbClr>"),
            0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:srgbClr val=\"80FF00\"><a:lumMod val=\"-5\"/><a:satMod val=\"900000000\"/>"
                    "<a:tint val=\"-300000\"/></a:srgbClr>"),
            0xFFFFFFu);
  EXPECT_EQ(Resolve("<a:srgbClr val=\"nonsense\"/>"), 0x000000u);
  EXPECT_EQ(Resolve("<a:hslClr hue=\"-9\" sat=\"9e9\" lum=\"\"/>"), 0x000000u);
}

TEST(ColorSpec, EverySlotHasAWordOfItsOwn) {
  for (int i = 0; i <= static_cast<int>(SchemeSlot::kPlaceholder); ++i) {
    const auto slot = static_cast<SchemeSlot>(i);
    EXPECT_EQ(SlotOfWord(SchemeWord(slot)), slot);
  }
  EXPECT_EQ(SlotOfWord("tx9"), std::nullopt);
}

}  // namespace
}  // namespace quillmarch::host::deck
