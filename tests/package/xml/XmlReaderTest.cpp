#include "host/package/xml/XmlReader.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmarch::host {

namespace {

// Each event in a form that a test can compare: "<a", ">a", "text".
std::string Events(const std::string& xml) {
  XmlReader reader(xml);
  std::string told;
  while (true) {
    switch (reader.Next()) {
      case XmlReader::Event::kStart:
        told += "<" + std::string(reader.local()) + std::to_string(reader.depth()) + " ";
        break;
      case XmlReader::Event::kEnd:
        told += ">" + std::string(reader.local()) + std::to_string(reader.depth()) + " ";
        break;
      case XmlReader::Event::kText: {
        std::string text;
        reader.AppendText(text);
        told += "[" + text + "] ";
        break;
      }
      case XmlReader::Event::kDone:
        return told;
    }
  }
}

const std::string kSheetSpace = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

}  // namespace

TEST(XmlReader, ElementsAndTextsComeInOrderAndDeclarationsDoNot) {
  EXPECT_EQ(Events("<?xml version=\"1.0\"?>\r\n<a>x<b/><!-- <c> --><?p > ?>y</a>\n"),
            "<a1 [x] <b2 >b2 [y] >a1 ");
}

TEST(XmlReader, ReferencesAndLineEndsAreResolvedInTextButNotInACdataSection) {
  EXPECT_EQ(Events("<a>1 &lt; &#50;\r\n3</a>"), "<a1 [1 < 2\n3] >a1 ");
  EXPECT_EQ(Events("<a><![CDATA[&lt;<b>\r\n]]></a>"), "<a1 [&lt;<b>\n] >a1 ");
}

TEST(XmlReader, AnAttributeMayHoldTheSignsThatEndATag) {
  const std::string xml = "<a one='/>' two=\"&quot;\"><b/></a>";
  EXPECT_EQ(Events(xml), "<a1 <b2 >b2 >a1 ");
  XmlReader reader(xml);
  reader.Next();
  EXPECT_EQ(reader.RawAttribute("one"), "/>");
  EXPECT_EQ(reader.Attribute("two"), "\"");
  EXPECT_EQ(reader.RawAttribute("three").data(), nullptr);
}

TEST(XmlReader, ANamespaceHoldsForItsElementOnlyWhateverThePrefix) {
  const std::string xml = "<r><x:c xmlns:x=\"" + kSheetSpace + "\"><x:v/></x:c><x:c/><c xmlns=\"" +
                          kSheetSpace + "\"/><c/></r>";
  XmlReader reader(xml);
  std::string inside;
  while (true) {
    const XmlReader::Event event = reader.Next();
    if (event == XmlReader::Event::kDone) break;
    if (event == XmlReader::Event::kStart) {
      inside += reader.space() == XmlNamespace::kSpreadsheet ? '1' : '0';
    }
  }
  EXPECT_EQ(inside, "011010");
}

TEST(XmlReader, OffsetsLeadToTheMarkupItself) {
  const std::string xml = "<a><b c='d'>text</b></a>";
  XmlReader reader(xml);
  reader.Next();
  reader.Next();
  EXPECT_EQ(xml.substr(reader.begin(), reader.end() - reader.begin()), "<b c='d'>");
  reader.Next();
  EXPECT_EQ(xml.substr(reader.begin(), reader.end() - reader.begin()), "text");
  reader.Next();
  EXPECT_EQ(xml.substr(reader.begin(), reader.end() - reader.begin()), "</b>");
}

TEST(XmlReader, AnElementIsSkippedWithAllThatItHolds) {
  XmlReader reader("<a><b><b/>x</b><c/></a>");
  reader.Next();
  reader.Next();
  reader.SkipElement();
  EXPECT_EQ(reader.Next(), XmlReader::Event::kStart);
  EXPECT_EQ(reader.local(), "c");
}

}  // namespace quillmarch::host
