#include "host/package/xml/Namespaces.h"

#include <gtest/gtest.h>

#include "host/package/xml/XmlText.h"

namespace quillmarch::host {

TEST(NamespaceOf, TransitionalAndStrictAreTheSame) {
  EXPECT_EQ(NamespaceOf("http://schemas.openxmlformats.org/drawingml/2006/main"),
            XmlNamespace::kDrawing);
  EXPECT_EQ(NamespaceOf("http://purl.oclc.org/ooxml/drawingml/main"), XmlNamespace::kDrawing);
  EXPECT_EQ(NamespaceOf("http://purl.oclc.org/ooxml/presentationml/main"),
            XmlNamespace::kPresentation);
  EXPECT_EQ(NamespaceOf("http://purl.oclc.org/ooxml/officeDocument/relationships"),
            XmlNamespace::kRelationships);
}

TEST(NamespaceOf, UnknownOnesAreOther) {
  EXPECT_EQ(NamespaceOf("urn:x"), XmlNamespace::kOther);
  EXPECT_EQ(NamespaceOf(""), XmlNamespace::kOther);
  EXPECT_EQ(NamespaceOf("http://schemas.openxmlformats.org/drawingml/2006/main/"),
            XmlNamespace::kOther);
}

TEST(NamespaceOf, AnElementsPrefixCountsNotItsSpelling) {
  pugi::xml_document document;
  ASSERT_TRUE(
      ParseXml(document,
               "<q:r xmlns:q=\"http://schemas.openxmlformats.org/presentationml/2006/main\">"
               "<q:a xmlns:q=\"http://schemas.openxmlformats.org/drawingml/2006/main\"><q:b/></q:a>"
               "<c xmlns=\"http://purl.oclc.org/ooxml/drawingml/chart\"/><d/></q:r>"));
  const pugi::xml_node root = document.child("q:r");
  EXPECT_EQ(NamespaceOf(root), XmlNamespace::kPresentation);
  EXPECT_EQ(NamespaceOf(root.child("q:a").child("q:b")), XmlNamespace::kDrawing);
  EXPECT_EQ(NamespaceOf(root.child("c")), XmlNamespace::kChart);
  EXPECT_EQ(NamespaceOf(root.child("d")), XmlNamespace::kOther);
}

TEST(RelationshipKindOf, TransitionalAndStrictAreTheSame) {
  EXPECT_EQ(RelationshipKindOf(
                "http://schemas.openxmlformats.org/officeDocument/2006/relationships/slideLayout"),
            RelationshipKind::kSlideLayout);
  EXPECT_EQ(
      RelationshipKindOf("http://purl.oclc.org/ooxml/officeDocument/relationships/slideLayout"),
      RelationshipKind::kSlideLayout);
}

TEST(RelationshipKindOf, WhereTheTwoFormsDifferBothAreKnown) {
  EXPECT_EQ(RelationshipKindOf("http://schemas.openxmlformats.org/officeDocument/2006/"
                               "relationships/extended-properties"),
            RelationshipKind::kExtendedProperties);
  EXPECT_EQ(RelationshipKindOf(
                "http://purl.oclc.org/ooxml/officeDocument/relationships/extendedProperties"),
            RelationshipKind::kExtendedProperties);
  EXPECT_EQ(
      RelationshipKindOf("http://schemas.openxmlformats.org/package/2006/relationships/metadata/"
                         "thumbnail"),
      RelationshipKind::kThumbnail);
  EXPECT_EQ(RelationshipKindOf(
                "http://purl.oclc.org/ooxml/officeDocument/relationships/metadata/thumbnail"),
            RelationshipKind::kThumbnail);
}

TEST(RelationshipKindOf, UnknownOnesAreOther) {
  EXPECT_EQ(RelationshipKindOf("http://example.org/slide"), RelationshipKind::kOther);
  EXPECT_EQ(RelationshipKindOf(""), RelationshipKind::kOther);
}

TEST(LocalName, StandsBehindTheColon) {
  EXPECT_EQ(LocalName("a:t"), "t");
  EXPECT_EQ(LocalName("t"), "t");
  EXPECT_EQ(PrefixOf("a:t"), "a");
  EXPECT_EQ(PrefixOf("t"), "");
}

}  // namespace quillmarch::host
