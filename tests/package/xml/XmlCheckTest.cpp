#include "host/package/xml/XmlCheck.h"

#include <gtest/gtest.h>

#include "package/xml/XmlJudge.h"

namespace quillmarch::host {

namespace {

XmlFault FaultOf(const std::string& xml) {
  return CheckXml(xml).fault;
}

// Our verdict and expat's are the same for everything in these lists.
void ExpectRefused(const std::string& xml) {
  EXPECT_NE(FaultOf(xml), XmlFault::kNone) << xml;
  EXPECT_FALSE(ExpatAccepts(xml)) << xml;
}

void ExpectAccepted(const std::string& xml) {
  const XmlVerdict verdict = CheckXml(xml);
  EXPECT_EQ(verdict.fault, XmlFault::kNone) << xml << ": " << DescribeXmlFault(verdict);
  EXPECT_TRUE(ExpatAccepts(xml)) << xml;
}

std::string Repeat(const std::string& text, int times) {
  std::string result;
  for (int i = 0; i < times; ++i) result += text;
  return result;
}

}  // namespace

TEST(CheckXml, GoodDocumentsPass) {
  const std::string good[] = {
      "<a/>",
      "<a></a>",
      "<a ></a >",
      "<a b='1' c = \"2\"\n/>",
      "<a>text</a>",
      "\n<a/>\n",
      "\xEF\xBB\xBF<a/>",
      "<?xml version=\"1.0\"?><a/>",
      "<?xml version='1.0' encoding='utf-8' standalone='no' ?>\r\n<a/>",
      "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<a/>",
      "<?xml-stylesheet href='a'?><!-- c --><a/><!-- d --><?pi?>",
      "<a><!-- - - --><![CDATA[<&]] ]>]]><?pi ?x ?></a>",
      "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x1F600;&#0000000000000000000000000000000000000000000"
      "0000000000000000000000000065;</a>",
      "<a b='&lt;&#10;\t\r\n>'/>",
      "<a>]] ]></a>",
      "<p:a xmlns:p='u'><p:b p:c='1' c='2'/></p:a>",
      "<a xmlns='u'><b xmlns=''/></a>",
      "<a xml:space='preserve' xmlns:xml='http://www.w3.org/XML/1998/namespace'/>",
      "<a xmlns:p='u' xmlns:q='v' p:x='1' q:x='2'/>",
      "<a>\xE5\x9B\xBE\xF0\x9F\x98\x80\xC3\xA9\x7F\xEF\xBF\xBD</a>",
      "<\xC3\x89l\xC3\xA9ment \xC3\xA9='1'/>",
      "<a.b-c_d1/>",
      "<_/>",
      "<a b1='1' b2='2' b3='3' b4='4' b5='5' b6='6' b7='7' b8='8' b9='9' c='0'/>",
  };
  for (const std::string& xml : good) ExpectAccepted(xml);
}

TEST(CheckXml, WhatAnotherReaderRefusesIsRefused) {
  const std::string bad[] = {
      "",
      " ",
      "text",
      "\xEF\xBB\xBF",
      "<!-- only -->",
      "<a>",
      "<a",
      "<",
      "<a/",
      "<a/ >",
      "</a>",
      "<a></b>",
      "<a></ab>",
      "<ab></a>",
      "<a><b></a></b>",
      "<a/><b/>",
      "<a/>text",
      "text<a/>",
      "<a/><![CDATA[x]]>",
      "< a/>",
      "<1/>",
      "<-a/>",
      "<a b/>",
      "<a b=/>",
      "<a b=1/>",
      "<a b='1/>",
      "<a b='1'c='2'/>",
      "<a b='<'/>",
      "<a b='&'/>",
      "<a b='1' b='2'/>",
      "<a =''/>",
      "<a b1='1' b2='2' b3='3' b4='4' b5='5' b6='6' b7='7' b8='8' b9='9' b1='0'/>",
      "<a>&</a>",
      "<a>&amp</a>",
      "<a>&nbsp;</a>",
      "<a>&;</a>",
      "<a>&#;</a>",
      "<a>&#x;</a>",
      "<a>&#X41;</a>",
      "<a>&#0;</a>",
      "<a>&#1;</a>",
      "<a>&#xD800;</a>",
      "<a>&#xFFFE;</a>",
      "<a>&#x110000;</a>",
      "<a>&#99999999999999999999;</a>",
      "<a>&#-1;</a>",
      "<a>]]></a>",
      "<a><!-- -- --></a>",
      "<a><!-- --",
      "<a><!- - ></a>",
      "<a><![CDATA[x]]</a>",
      "<a><![cdata[x]]></a>",
      "<a><?xml version='1.0'?></a>",
      "<a><?XML x?></a>",
      "<a><?pi",
      "<a><?\?></a>",
      "<a><?p:i x?></a>",
      " <?xml version='1.0'?><a/>",
      "<?xml?><a/>",
      "<?xml encoding='UTF-8'?><a/>",
      "<?xml version='1.0' standalone='maybe'?><a/>",
      "<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>",
      "<?xml version='1.0'encoding='UTF-8'?><a/>",
      "<?xml version='1.0' encoding='UTF-16'?><a/>",
      "<?xml version='1.0' encoding='none-such'?><a/>",
      "<?xml version='1.0' ><a/>",
      "<p:a/>",
      "<a p:b='1'/>",
      "<p:a xmlns:q='u'/>",
      "<a><b xmlns:p='u'/><p:c/></a>",
      "<a:b:c xmlns:a='u'/>",
      "<:a/>",
      "<a:/>",
      "<a xmlns:='u'/>",
      "<a xmlns:p=''/>",
      "<a xmlns:xmlns='u'/>",
      "<a xmlns:xml='u'/>",
      "<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>",
      "<a xmlns='http://www.w3.org/XML/1998/namespace'/>",
      "<a xmlns='http://www.w3.org/2000/xmlns/'/>",
      "<a xmlns:p='u' xmlns:p='v'/>",
      "<a xmlns:p='u' xmlns:q='u' p:x='1' q:x='2'/>",
      "<a xmlns:p='u' xmlns:q='&#117;' p:x='1' q:x='2'/>",
      "<a xmlns:p='u' xmlns:q='u' p:x='1' b2='' b3='' b4='' b5='' b6='' b7='' b8='' q:x='2'/>",
      "<a>\xFF</a>",
      "<a>\xC0\x80</a>",
      "<a>\xE0\x80\xAF</a>",
      "<a>\xED\xA0\x80</a>",
      "<a>\xF4\x90\x80\x80</a>",
      "<a>\xE5\x9B</a>",
      "<a>\xEF\xBF\xBE</a>",
      "<a>\xEF\xBF\xBF</a>",
      "<a b='\xFF'/>",
      "<a><!-- \xFF --></a>",
      "<\xFF/>",
      "<a>\x01</a>",
      "<a>\x0B</a>",
      "<a b='\x1F'/>",
      "<a><!-- \x02 --></a>",
      "<a\x01/>",
      std::string("<a>\0</a>", 8),
      std::string("<a/>\0", 5),
      std::string("\0<a/>", 5),
      std::string("<a b='\0'/>", 10),
      std::string("<a><!-- \0 --></a>", 17),
  };
  for (const std::string& xml : bad) ExpectRefused(xml);
}

TEST(CheckXml, ADocumentTypeIsRefusedWhateverItHolds) {
  EXPECT_EQ(FaultOf("<!DOCTYPE a><a/>"), XmlFault::kDoctype);
  EXPECT_EQ(FaultOf("<!DOCTYPE a [<!ENTITY x SYSTEM 'file:///etc/passwd'>]><a>&x;</a>"),
            XmlFault::kDoctype);
  EXPECT_EQ(FaultOf("<?xml version='1.0'?>\n<!-- c --><!DOCTYPE a><a/>"), XmlFault::kDoctype);
}

TEST(CheckXml, OtherEncodingsAndVersionsAreRefused) {
  EXPECT_EQ(FaultOf("<?xml version='1.0' encoding='ISO-8859-1'?><a/>"), XmlFault::kEncoding);
  EXPECT_EQ(FaultOf("<?xml version='2.0'?><a/>"), XmlFault::kDeclaration);
  EXPECT_EQ(FaultOf("<?xml version='1.'?><a/>"), XmlFault::kDeclaration);
  EXPECT_EQ(FaultOf("<?xml version='1.1'?><a/>"), XmlFault::kNone);
}

TEST(CheckXml, ConvertedFromUtf16ItHasToSaySo) {
  EXPECT_EQ(CheckXml("<?xml version='1.0' encoding='utf-16'?><a/>", {}, true).fault,
            XmlFault::kNone);
  EXPECT_EQ(CheckXml("<a/>", {}, true).fault, XmlFault::kNone);
  EXPECT_EQ(CheckXml("<?xml version='1.0' encoding='UTF-8'?><a/>", {}, true).fault,
            XmlFault::kEncoding);
}

TEST(CheckXml, DepthIsBounded) {
  EXPECT_EQ(FaultOf(Repeat("<a>", 1000) + Repeat("</a>", 1000)), XmlFault::kNone);
  EXPECT_EQ(FaultOf(Repeat("<a>", 1001) + Repeat("</a>", 1001)), XmlFault::kTooDeep);
  EXPECT_EQ(FaultOf(Repeat("<a>", 1000) + "<b/>" + Repeat("</a>", 1000)), XmlFault::kTooDeep);
  EXPECT_EQ(FaultOf(Repeat("<a>", 100000)), XmlFault::kTooDeep);
}

TEST(CheckXml, ElementsAttributesAndTextsAreCounted) {
  XmlLimits limits;
  limits.maxNodes = 5;
  EXPECT_EQ(CheckXml("<a b='1'>t<c/>u</a>", limits).fault, XmlFault::kNone);
  EXPECT_EQ(CheckXml("<a b='1'>t<c/>u<d/></a>", limits).fault, XmlFault::kTooManyNodes);
  EXPECT_EQ(CheckXml("<a b='1' c='2'>t<c/>u</a>", limits).fault, XmlFault::kTooManyNodes);
  EXPECT_EQ(CheckXml("<a b='1'>t<c/><![CDATA[]]>u</a>", limits).fault, XmlFault::kTooManyNodes);
}

TEST(CheckXml, NamespaceDeclarationsInForceAreBounded) {
  std::string many = "<a";
  for (int i = 0; i < 600; ++i) many += " xmlns:p" + std::to_string(i) + "='u'";
  EXPECT_EQ(FaultOf(many + "/>"), XmlFault::kTooManyNamespaces);
  EXPECT_EQ(FaultOf("<r>" + Repeat("<p:a xmlns:p='u'/>", 1000) + "</r>"), XmlFault::kNone);
}

TEST(CheckXml, AnElementWithVeryManyAttributesIsCheckedQuickly) {
  std::string xml = "<a";
  for (int i = 0; i < 200000; ++i) xml += " x" + std::to_string(i) + "=''";
  EXPECT_EQ(FaultOf(xml + "/>"), XmlFault::kNone);
  EXPECT_EQ(FaultOf(xml + " x77=''/>"), XmlFault::kDuplicate);
}

TEST(CheckXml, TheOffsetPointsAtTheFault) {
  EXPECT_EQ(CheckXml("<a>text</b>").offset, 7u);
  EXPECT_EQ(CheckXml("<a>\n&nope;</a>").offset, 4u);
  EXPECT_EQ(DescribeXmlFault(CheckXml("<a>text</b>")),
            "an end tag does not match its start tag (at byte 7)");
}

TEST(CheckXml, EveryPrefixOfADocumentIsRefusedAndNoneIsReadBeyondItsEnd) {
  const std::string xml =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?><p:a xmlns:p=\"u\" b='&amp;'><!-- c --><?pi x?>"
      "<![CDATA[d]]>\xE5\x9B\xBE&#65;<p:e/></p:a>";
  ExpectAccepted(xml);
  for (std::size_t size = 0; size < xml.size(); ++size) {
    const std::string cut(xml.substr(0, size));
    EXPECT_NE(FaultOf(cut), XmlFault::kNone) << cut;
  }
}

}  // namespace quillmarch::host
