// Character and paragraph properties as the file says them.
#include "host/deck/text/ParagraphProps.h"

#include <gtest/gtest.h>

#include "deck/DeckBuilder.h"
#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {

namespace {

struct Parsed {
  explicit Parsed(const std::string& name, const std::string& attributes,
                  const std::string& children = "")
      : xml("<a:" + name + testdeck::kNamespaces + " " + attributes + ">" + children +
            "</a:" + name + ">"),
        names(xml) {
    EXPECT_TRUE(ParseXml(document, xml)) << xml;
  }
  std::string xml;
  XmlNames names;
  pugi::xml_document document;
};

ParagraphProps Paragraph(const std::string& attributes, const std::string& children = "") {
  const Parsed parsed("pPr", attributes, children);
  return ParseParagraphProps(parsed.names, parsed.document.document_element());
}

CharProps Characters(const std::string& attributes, const std::string& children = "") {
  const Parsed parsed("rPr", attributes, children);
  return ParseCharProps(parsed.names, parsed.document.document_element());
}

TextExtras Extras(const std::string& attributes, const std::string& children = "") {
  const Parsed parsed("rPr", attributes, children);
  return ParseTextExtras(parsed.names, parsed.document.document_element());
}

}  // namespace

TEST(CharProps, SizeFlagsAndTypefacesAreRead) {
  const CharProps props =
      Characters("sz=\"2400\" b=\"1\" i=\"false\" u=\"dbl\"",
                 "<a:latin typeface=\"Arial\"/><a:ea typeface=\"+mn-ea\"/><a:cs typeface=\"\"/>");
  EXPECT_EQ(props.size, 2400);
  EXPECT_EQ(props.bold, 1);
  EXPECT_EQ(props.italic, 0);
  EXPECT_EQ(props.underline, 1);
  EXPECT_EQ(props.latin, "Arial");
  EXPECT_EQ(props.eastAsian, "+mn-ea");
  EXPECT_EQ(props.complexScript, "");
}

TEST(CharProps, NotUnderlinedIsSaidAndNothingIsUnset) {
  EXPECT_EQ(Characters("u=\"none\"").underline, 0);
  EXPECT_EQ(Characters("").underline, -1);
}

TEST(CharProps, ValuesOutsideTheFormatAreUnset) {
  for (const char* size : {"99", "400001", "-1", "12.5", "", "large"}) {
    EXPECT_EQ(Characters("sz=\"" + std::string(size) + "\"").size, -1) << size;
  }
  EXPECT_EQ(Characters("b=\"yes\"").bold, -1);
}

TEST(ParagraphProps, EachAlignmentWordHasItsSide) {
  using Side = ParagraphProps::Side;
  EXPECT_EQ(Paragraph("algn=\"l\"").side, Side::kLeft);
  EXPECT_EQ(Paragraph("algn=\"ctr\"").side, Side::kCenter);
  EXPECT_EQ(Paragraph("algn=\"r\"").side, Side::kRight);
  for (const char* word : {"just", "justLow", "dist", "thaiDist"}) {
    EXPECT_EQ(Paragraph("algn=\"" + std::string(word) + "\"").side, Side::kJustify) << word;
  }
  EXPECT_EQ(Paragraph("algn=\"centre\"").side, std::nullopt);
}

TEST(ParagraphProps, IndentsAreInPointsAndMayHang) {
  const ParagraphProps props =
      Paragraph("marL=\"342900\" indent=\"-342900\" marR=\"12700\" defTabSz=\"914400\" rtl=\"1\"");
  EXPECT_EQ(props.marginLeft, 27.0);
  EXPECT_EQ(props.indent, -27.0);
  EXPECT_EQ(props.marginRight, 1.0);
  EXPECT_EQ(props.defaultTab, 72.0);
  EXPECT_EQ(props.rightToLeft, true);
}

TEST(ParagraphProps, SpacingIsAShareOrPoints) {
  const ParagraphProps props =
      Paragraph("",
                "<a:lnSpc><a:spcPct val=\"90000\"/></a:lnSpc><a:spcBef><a:spcPts val=\"600\"/>"
                "</a:spcBef><a:spcAft/>");
  ASSERT_TRUE(props.lineSpacing && props.before);
  EXPECT_FALSE(props.lineSpacing->points);
  EXPECT_EQ(props.lineSpacing->value, 0.9);
  EXPECT_TRUE(props.before->points);
  EXPECT_EQ(props.before->value, 6.0);
  EXPECT_FALSE(props.after.has_value());
}

TEST(ParagraphProps, BulletsAreNoneACharacterANumberOrAPicture) {
  using Kind = BulletMark::Kind;
  EXPECT_EQ(Paragraph("", "<a:buNone/>").bullet->kind, Kind::kNone);
  const BulletMark character = *Paragraph("", "<a:buChar char=\"&#x2022;\"/>").bullet;
  EXPECT_EQ(character.kind, Kind::kCharacter);
  EXPECT_EQ(character.text, "\xE2\x80\xA2");
  const BulletMark number =
      *Paragraph("", "<a:buAutoNum type=\"romanUcPeriod\" startAt=\"4\"/>").bullet;
  EXPECT_EQ(number.kind, Kind::kNumber);
  EXPECT_EQ(number.text, "romanUcPeriod");
  EXPECT_EQ(number.startAt, 4);
  EXPECT_EQ(Paragraph("", "<a:buBlip/>").bullet->kind, Kind::kPicture);
  EXPECT_FALSE(Paragraph("").bullet.has_value());
}

TEST(ParagraphProps, ANumberingStartsWithinItsBounds) {
  EXPECT_EQ(Paragraph("", "<a:buAutoNum type=\"x\" startAt=\"0\"/>").bullet->startAt, 1);
  EXPECT_EQ(Paragraph("", "<a:buAutoNum type=\"x\" startAt=\"99999\"/>").bullet->startAt, 32767);
}

TEST(ParagraphProps, TabsComeInAscendingOrder) {
  const auto tabs = Paragraph("",
                              "<a:tabLst><a:tab pos=\"25400\" algn=\"r\"/><a:tab pos=\"12700\" "
                              "algn=\"dec\"/></a:tabLst>")
                        .tabs;
  ASSERT_TRUE(tabs && tabs->size() == 2);
  EXPECT_EQ((*tabs)[0].position, 1.0);
  EXPECT_EQ((*tabs)[0].side, TabMark::Side::kDecimal);
  EXPECT_EQ((*tabs)[1].side, TabMark::Side::kRight);
}

TEST(TextExtras, SpacingBaselineAndCapsAreRead) {
  const TextExtras extras =
      Extras("spc=\"-150\" baseline=\"30000\" cap=\"all\" kern=\"1200\" lang=\"de-DE\"",
             "<a:sym typeface=\"Wingdings\"/>");
  EXPECT_EQ(extras.spacing, -1.5);
  EXPECT_EQ(extras.baseline, 0.3);
  EXPECT_EQ(extras.caps, TextExtras::Caps::kAll);
  EXPECT_EQ(extras.kernFrom, 12.0);
  EXPECT_EQ(extras.language, "de-DE");
  EXPECT_EQ(extras.symbol, "Wingdings");
}

TEST(ParagraphLevels, CommonPropertiesFillWhatALevelLeavesUnset) {
  const Parsed list("lstStyle", "",
                    "<a:defPPr algn=\"r\" marL=\"12700\"/><a:lvl1pPr algn=\"ctr\"/>"
                    "<a:lvl9pPr marL=\"25400\"/><a:lvl0pPr algn=\"l\"/>");
  const auto levels = ParseParagraphLevels(list.names, list.document.document_element());
  ASSERT_NE(levels, nullptr);
  EXPECT_EQ((*levels)[0].side, ParagraphProps::Side::kCenter);
  EXPECT_EQ((*levels)[0].marginLeft, 1.0);
  EXPECT_EQ((*levels)[8].side, ParagraphProps::Side::kRight);
  EXPECT_EQ((*levels)[8].marginLeft, 2.0);
}

TEST(ParagraphLevels, AnEmptyListSaysNothing) {
  const Parsed list("lstStyle", "");
  EXPECT_EQ(ParseParagraphLevels(list.names, list.document.document_element()), nullptr);
}

}  // namespace quillmarch::host::deck
