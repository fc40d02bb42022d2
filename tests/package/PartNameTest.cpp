#include "host/package/PartName.h"

#include <gtest/gtest.h>

namespace quillmarch::host {

namespace {

std::string Resolved(std::string_view source, std::string_view target) {
  const ResolvedTarget resolved = ResolveTarget(source, target);
  return resolved.inside ? resolved.name : "<outside>";
}

}  // namespace

TEST(ResolveTarget, RelativeTargetsStartAtTheSourcesFolder) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "../media/image1.png"), "ppt/media/image1.png");
  EXPECT_EQ(Resolved("ppt/presentation.xml", "slides/slide1.xml"), "ppt/slides/slide1.xml");
  EXPECT_EQ(Resolved("ppt/presentation.xml", "./theme/theme1.xml"), "ppt/theme/theme1.xml");
  EXPECT_EQ(Resolved("", "ppt/presentation.xml"), "ppt/presentation.xml");
}

TEST(ResolveTarget, AbsoluteTargetsStartAtTheRoot) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "/ppt/media/a.png"), "ppt/media/a.png");
}

TEST(ResolveTarget, PercentEncodingIsResolved) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "../media/my%20picture.png"),
            "ppt/media/my picture.png");
  EXPECT_EQ(Resolved("a.xml", "50%.png"), "50%.png");
}

TEST(ResolveTarget, BackslashesCountAsSlashes) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "..\\media\\a.png"), "ppt/media/a.png");
}

TEST(ResolveTarget, AFragmentIsDropped) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "slide2.xml#top"), "ppt/slides/slide2.xml");
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "#top"), "ppt/slides/slide1.xml");
}

TEST(ResolveTarget, ClimbingOutOfThePackageIsSeen) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "../../../etc/passwd"), "<outside>");
  EXPECT_EQ(Resolved("", "../a"), "<outside>");
  EXPECT_EQ(Resolved("", "/../a"), "<outside>");
  EXPECT_EQ(Resolved("", "%2e%2E/a"), "<outside>");
  EXPECT_EQ(Resolved("ppt/a.xml", "..%2f..%2fa"), "<outside>");
  EXPECT_EQ(Resolved("ppt/a.xml", "..%5C..%5Ca"), "<outside>");
}

TEST(ResolveTarget, ClimbingToTheRootIsNotOutside) {
  EXPECT_EQ(Resolved("ppt/slides/slide1.xml", "../../docProps/app.xml"), "docProps/app.xml");
}

TEST(PartKey, ComparesWithoutCaseAndEncoding) {
  EXPECT_EQ(PartKey("PPT/Slides/Slide%201.XML"), PartKey("ppt/slides/slide 1.xml"));
  EXPECT_NE(PartKey("a.xml"), PartKey("b.xml"));
}

TEST(RelationshipsPartName, StandsInAFolderBesideThePart) {
  EXPECT_EQ(RelationshipsPartName("ppt/slides/slide1.xml"), "ppt/slides/_rels/slide1.xml.rels");
  EXPECT_EQ(RelationshipsPartName("top.xml"), "_rels/top.xml.rels");
  EXPECT_EQ(RelationshipsPartName(""), "_rels/.rels");
}

TEST(EntryNameFault, HarmlessNamesHaveNone) {
  EXPECT_EQ(EntryNameFault("ppt/slides/slide1.xml"), "");
  EXPECT_EQ(EntryNameFault("ppt/media/"), "");
  EXPECT_EQ(EntryNameFault("a..b/...c"), "");
  EXPECT_EQ(EntryNameFault("ppt/media/\xE5\x9B\xBE.png"), "");
}

TEST(EntryNameFault, NamesThatLeadElsewhereAreTold) {
  EXPECT_NE(EntryNameFault("/ppt/a.xml"), "");
  EXPECT_NE(EntryNameFault("C:/a.xml"), "");
  EXPECT_NE(EntryNameFault("ppt\\a.xml"), "");
  EXPECT_NE(EntryNameFault("../a.xml"), "");
  EXPECT_NE(EntryNameFault("ppt/../../a.xml"), "");
  EXPECT_NE(EntryNameFault("ppt/%2e%2e/a.xml"), "");
  EXPECT_NE(EntryNameFault("ppt/.."), "");
  EXPECT_NE(EntryNameFault("a\nb"), "");
  EXPECT_NE(EntryNameFault(""), "");
}

TEST(HasUriScheme, OnlyASchemeBeforeAnySlashCounts) {
  EXPECT_TRUE(HasUriScheme("https://example.org/"));
  EXPECT_TRUE(HasUriScheme("mailto:a@example.org"));
  EXPECT_TRUE(HasUriScheme("file:///C:/a.xlsx"));
  EXPECT_FALSE(HasUriScheme("../media/a:b.png"));
  EXPECT_FALSE(HasUriScheme("media/image1.png"));
  EXPECT_FALSE(HasUriScheme(":a"));
  EXPECT_FALSE(HasUriScheme(""));
}

TEST(Printable, ControlCharactersAndBrokenBytesBecomeQuestionMarks) {
  EXPECT_EQ(Printable("a\x1B[31mb"), "a?[31mb");
  EXPECT_EQ(Printable("\xFF\xE5\x9B\xBE"), "?\xE5\x9B\xBE");
}

TEST(Printable, AVeryLongNameIsCut) {
  EXPECT_LT(Printable(std::string(60000, 'x')).size(), 200u);
}

}  // namespace quillmarch::host
