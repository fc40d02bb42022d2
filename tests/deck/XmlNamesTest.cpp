#include "host/deck/XmlNames.h"

#include <gtest/gtest.h>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host::deck {

namespace {

struct Parsed {
  explicit Parsed(std::string xml) : bytes(std::move(xml)), names(bytes) {
    EXPECT_TRUE(ParseXml(document, bytes));
    root = document.document_element();
  }
  std::string bytes;
  XmlNames names;
  pugi::xml_document document;
  pugi::xml_node root;
};

TEST(XmlNames, AnElementIsKnownByItsNamespaceWhateverThePrefix) {
  for (const char* prefix : {"a:", "draw:", ""}) {
    const std::string p = prefix;
    const std::string bound = p.empty() ? "xmlns" : "xmlns:" + p.substr(0, p.size() - 1);
    const Parsed xml("<" + p + "r " + bound +
                     " = 'http://schemas.openxmlformats.org/drawingml/2006/main'/>");
    EXPECT_TRUE(xml.names.Is(xml.root, XmlNamespace::kDrawing, "r")) << prefix;
    EXPECT_FALSE(xml.names.Is(xml.root, XmlNamespace::kDrawing, "t")) << prefix;
    EXPECT_FALSE(xml.names.Is(xml.root, XmlNamespace::kPresentation, "r")) << prefix;
  }
}

TEST(XmlNames, TheStrictNamespaceIsTheSame) {
  const Parsed xml("<a:r xmlns:a=\"http://purl.oclc.org/ooxml/drawingml/main\"/>");
  EXPECT_TRUE(xml.names.Is(xml.root, XmlNamespace::kDrawing, "r"));
}

TEST(XmlNames, APrefixThatChangesItsMeaningIsResolvedInPlace) {
  const Parsed xml(
      "<x xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><a:r/>"
      "<y xmlns:a=\"http://schemas.openxmlformats.org/presentationml/2006/main\"><a:r/></y></x>");
  EXPECT_TRUE(xml.names.Is(xml.root.first_child(), XmlNamespace::kDrawing, "r"));
  EXPECT_TRUE(xml.names.Is(xml.root.last_child().first_child(), XmlNamespace::kPresentation, "r"));
}

TEST(XmlNames, ADeclarationInATextDoesNoHarm) {
  const Parsed xml(
      "<a:t xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\">xmlns:a=\"urn:x\" "
      "xmlns xmlns:a='</a:t>");
  EXPECT_TRUE(xml.names.Is(xml.root, XmlNamespace::kDrawing, "t"));
}

TEST(XmlNames, NumbersThatAreNoneAreReplaced) {
  const Parsed xml(
      "<x a=\" 12 \" b=\"12pt\" c=\"99999999999999999999\" d=\"\" e=\"-7\" f=\"0x10\"/>");
  EXPECT_EQ(WholeAttribute(xml.root, "a", -1), 12);
  for (const char* name : {"b", "c", "d", "f", "missing"}) {
    EXPECT_EQ(WholeAttribute(xml.root, name, -1), -1) << name;
  }
  EXPECT_EQ(WholeAttribute(xml.root, "e", 0), -7);
}

TEST(XmlNames, PercentagesComeInBothForms) {
  const Parsed xml("<x a=\"92500\" b=\"92.5%\" c=\"%\" d=\"1e99%\" e=\"nan%\"/>");
  EXPECT_EQ(PercentAttribute(xml.root, "a", 1), 92500);
  EXPECT_EQ(PercentAttribute(xml.root, "b", 1), 92500);
  EXPECT_EQ(PercentAttribute(xml.root, "c", 1), 1);
  EXPECT_EQ(PercentAttribute(xml.root, "d", 1), 1);
  EXPECT_EQ(PercentAttribute(xml.root, "e", 1), 1);
}

TEST(XmlNames, AnElementsTextIsAllItsCharacterData) {
  const Parsed xml("<t>a<!-- no -->b<![CDATA[<c>]]>&#x41;<u>x</u></t>");
  EXPECT_EQ(ElementText(xml.root), "ab<c>A");
}

}  // namespace
}  // namespace quillmarch::host::deck
