#include "host/package/xml/XmlText.h"

#include <gtest/gtest.h>

namespace quillmarch::host {

namespace {

std::string Element(const std::string& xml, std::size_t nameOffset) {
  const ElementSpan span = FindElement(xml, nameOffset);
  return span.found ? xml.substr(span.begin, span.end - span.begin) : "<none>";
}

std::string Content(const std::string& xml, std::size_t nameOffset) {
  const ElementSpan span = FindElement(xml, nameOffset);
  return xml.substr(span.contentBegin, span.contentEnd - span.contentBegin);
}

}  // namespace

TEST(EscapeText, MarkupCharactersBecomeEntities) {
  EXPECT_EQ(EscapeText("a & b < c > d \"e\" 'f'"), "a &amp; b &lt; c &gt; d \"e\" 'f'");
}

TEST(EscapeText, TabAndLineFeedStayAndACarriageReturnBecomesAReference) {
  EXPECT_EQ(EscapeText("a\tb\nc\rd"), "a\tb\nc&#13;d");
}

TEST(EscapeText, WhatXmlCannotHoldIsDropped) {
  EXPECT_EQ(EscapeText(std::string("a\0b\x0B\x1F", 5) + "c\xEF\xBF\xBE\xEF\xBF\xBF"), "abc");
  EXPECT_EQ(EscapeText("a\xFF\xC0\x80"
                       "b\xED\xA0\x80"),
            "ab");
}

TEST(EscapeText, OtherScriptsStay) {
  EXPECT_EQ(EscapeText("\xE5\x9B\xBE \xF0\x9F\x98\x80 \xC3\xA9"),
            "\xE5\x9B\xBE \xF0\x9F\x98\x80 \xC3\xA9");
}

TEST(EscapeAttribute, QuotesAndBlanksOtherThanSpaceBecomeReferences) {
  EXPECT_EQ(EscapeAttribute("a\"b\tc\nd<"), "a&quot;b&#9;c&#10;d&lt;");
}

TEST(Unescape, EntitiesAndReferencesAreResolved) {
  EXPECT_EQ(Unescape("&lt;&gt;&amp;&quot;&apos;&#65;&#x42;&#x1F600;"), "<>&\"'AB\xF0\x9F\x98\x80");
}

TEST(Unescape, LineEndsBecomeLineFeeds) {
  EXPECT_EQ(Unescape("a\r\nb\rc\nd&#13;"), "a\nb\nc\nd\r");
}

TEST(Unescape, AnythingElseStays) {
  EXPECT_EQ(Unescape("&nbsp; & &#0; &#xD800; &"), "&nbsp; & &#0; &#xD800; &");
}

TEST(Unescape, TakesBackWhatEscapeTextDid) {
  const std::string text = "a & <b> \"c\" \r\n\t&amp;";
  EXPECT_EQ(Unescape(EscapeText(text)), text);
  EXPECT_EQ(Unescape(EscapeAttribute(text)), text);
}

TEST(FindElement, SpansFromItsStartTagToItsEndTag) {
  const std::string xml = "<r><a x=\"1\">t<b/>u</a><c/></r>";
  EXPECT_EQ(Element(xml, 4), "<a x=\"1\">t<b/>u</a>");
  EXPECT_EQ(Content(xml, 4), "t<b/>u");
  EXPECT_EQ(Element(xml, 1), xml);
}

TEST(FindElement, ASelfClosedElementHasNoContent) {
  const std::string xml = "<r><a x='/' /></r>";
  EXPECT_EQ(Element(xml, 4), "<a x='/' />");
  EXPECT_TRUE(FindElement(xml, 4).selfClosed);
  EXPECT_EQ(Content(xml, 4), "");
}

TEST(FindElement, NestedElementsOfTheSameNameAreCounted) {
  EXPECT_EQ(Element("<a><a>1</a><a/></a><a/>", 1), "<a><a>1</a><a/></a>");
}

TEST(FindElement, QuotesCommentsSectionsAndInstructionsHideTags) {
  const std::string xml =
      "<a q='>' r=\"</a>\"><!-- </a> --><![CDATA[</a>]]><?x </a>?><b s='/>'></b></a >";
  EXPECT_EQ(Element(xml, 1), xml);
}

TEST(FindElement, AnElementWithoutEndIsNotFound) {
  EXPECT_EQ(Element("<a><b>", 1), "<none>");
  EXPECT_EQ(Element("<a", 1), "<none>");
  EXPECT_EQ(Element("<a>", 0), "<none>");
  EXPECT_EQ(Element("<a></a>", 5), "<none>");
  EXPECT_EQ(Element("<a>", 99), "<none>");
}

TEST(FindElement, TakesThePlaceThatTheParserReports) {
  const std::string xml =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<r><a:t xmlns:a=\"u\"> </a:t></r>";
  pugi::xml_document document;
  ASSERT_TRUE(ParseXml(document, xml));
  const pugi::xml_node node = document.child("r").child("a:t");
  EXPECT_STREQ(node.text().get(), " ");
  EXPECT_EQ(Element(xml, *OffsetOf(xml, node)), "<a:t xmlns:a=\"u\"> </a:t>");
}

TEST(OffsetOf, AnElementsNameIsFoundBehindAByteOrderMark) {
  const std::string xml = "\xEF\xBB\xBF<r><a:t/></r>";
  pugi::xml_document document;
  ASSERT_TRUE(ParseXml(document, xml));
  EXPECT_EQ(OffsetOf(xml, document.child("r")), 4U);
  EXPECT_EQ(OffsetOf(xml, document.child("r").child("a:t")), 7U);
}

TEST(OffsetOf, WhatIsNoElementHasNone) {
  const std::string xml = "<r>text<!--c--></r>";
  pugi::xml_document document;
  ASSERT_TRUE(ParseXml(document, xml));
  EXPECT_EQ(OffsetOf(xml, {}), std::nullopt);
  EXPECT_EQ(OffsetOf(xml, document), std::nullopt);
  EXPECT_EQ(OffsetOf(xml, document.child("r").first_child()), std::nullopt);
}

TEST(OffsetOf, BytesThatChangedSinceTheParseAreNoticed) {
  const std::string xml = "<r><first/><second/></r>";
  pugi::xml_document document;
  ASSERT_TRUE(ParseXml(document, xml));
  const pugi::xml_node second = document.child("r").child("second");
  EXPECT_EQ(OffsetOf(xml, second), 12U);
  EXPECT_EQ(OffsetOf("<r><other/><another/></r>", second), std::nullopt);
  EXPECT_EQ(OffsetOf("<r><second/></r>", second), std::nullopt);
  EXPECT_EQ(OffsetOf("<r/>", second), std::nullopt);
  EXPECT_FALSE(FindElement("<r><second/></r>", second).found);
  EXPECT_FALSE(FindAttribute("<r><second a='1'/></r>", second, "a").found);
}

TEST(OffsetOf, ANodeThatWasAddedToTheTreeHasNone) {
  const std::string xml = "<r/>";
  pugi::xml_document document;
  ASSERT_TRUE(ParseXml(document, xml));
  EXPECT_EQ(OffsetOf(xml, document.child("r").append_child("added")), std::nullopt);
}

TEST(FindStartTag, EndsBehindItsOwnBracket) {
  const std::string xml = "<a x='>'><b/></a>";
  const ElementSpan span = FindStartTag(xml, 1);
  ASSERT_TRUE(span.found);
  EXPECT_FALSE(span.selfClosed);
  EXPECT_EQ(span.contentBegin, 9u);
}

TEST(FindAttribute, GivesTheValueBetweenItsQuotes) {
  const std::string xml = "<a:b xx=\"0\" x = '1' p:x=\"x='2'\"/>";
  const AttributeSpan plain = FindAttribute(xml, 1, "x");
  ASSERT_TRUE(plain.found);
  EXPECT_EQ(xml.substr(plain.valueBegin, plain.valueEnd - plain.valueBegin), "1");
  EXPECT_EQ(plain.quote, '\'');
  const AttributeSpan prefixed = FindAttribute(xml, 1, "p:x");
  ASSERT_TRUE(prefixed.found);
  EXPECT_EQ(xml.substr(prefixed.nameBegin, 3), "p:x");
  EXPECT_EQ(xml.substr(prefixed.valueBegin, prefixed.valueEnd - prefixed.valueBegin), "x='2'");
}

TEST(FindAttribute, AMissingOneIsNotFound) {
  EXPECT_FALSE(FindAttribute("<a x=\"y\">", 1, "y").found);
  EXPECT_FALSE(FindAttribute("<a>x=\"1\"</a>", 1, "x").found);
}

}  // namespace quillmarch::host
