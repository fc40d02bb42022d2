#include <gtest/gtest.h>

#include "host/deck/text/RunPropertiesEdit.h"

namespace quillmarch::host::deck {

namespace {

TEST(RunPropertiesEdit, AnAttributeIsReplacedInPlace) {
  EXPECT_EQ(WithRunAttribute("<a:rPr lang=\"en-US\" sz='1800' b=\"1\"/>", "a:", "sz", "2400"),
            "<a:rPr lang=\"en-US\" sz=\"2400\" b=\"1\"/>");
}

TEST(RunPropertiesEdit, AnAttributeIsAddedToARunWithoutProperties) {
  EXPECT_EQ(WithRunAttribute("", "a:", "b", "1"), "<a:rPr b=\"1\"/>");
}

TEST(RunPropertiesEdit, SpellingMarksOfTheOldTextGoAndTheLanguageStays) {
  EXPECT_EQ(ForNewText("<a:rPr lang=\"de-DE\" err=\"1\" dirty=\"0\"><a:ln/></a:rPr>"),
            "<a:rPr lang=\"de-DE\"><a:ln/></a:rPr>");
}

TEST(RunPropertiesEdit, ATypefaceGoesBetweenFillAndHyperlink) {
  EXPECT_EQ(WithTypeface("<a:rPr><a:solidFill/><a:ea typeface=\"x\"/><a:hlinkClick r:id=\"r1\"/>"
                         "</a:rPr>",
                         "a:", "latin", "Arial"),
            "<a:rPr><a:solidFill/><a:latin typeface=\"Arial\"/><a:ea typeface=\"x\"/>"
            "<a:hlinkClick r:id=\"r1\"/></a:rPr>");
}

TEST(RunPropertiesEdit, AnOldTypefaceIsReplacedWithWhatDescribedIt) {
  EXPECT_EQ(WithTypeface("<a:rPr><a:latin typeface=\"Old\" panose=\"020B\"/></a:rPr>",
                         "a:", "latin", "A&B"),
            "<a:rPr><a:latin typeface=\"A&amp;B\"/></a:rPr>");
}

TEST(RunPropertiesEdit, ASolidFillReplacesAnyFillAndFollowsTheOutline) {
  EXPECT_EQ(WithSolidFill("<a:rPr><a:ln w=\"1\"><a:noFill/></a:ln><a:gradFill/><a:latin "
                          "typeface=\"x\"/></a:rPr>",
                          "a:", "<a:srgbClr val=\"FF0000\"/>"),
            "<a:rPr><a:ln w=\"1\"><a:noFill/></a:ln><a:solidFill><a:srgbClr val=\"FF0000\"/>"
            "</a:solidFill><a:latin typeface=\"x\"/></a:rPr>");
}

TEST(RunPropertiesEdit, ASelfClosedElementOpensForAChild) {
  EXPECT_EQ(WithTypeface("<a:rPr lang=\"en\" />", "a:", "ea", "M"),
            "<a:rPr lang=\"en\"><a:ea typeface=\"M\"/></a:rPr>");
}

TEST(RunPropertiesEdit, AnElementIsRenamedAtBothEnds) {
  EXPECT_EQ(RenamedElement("<a:endParaRPr lang=\"en\"><a:ln/></a:endParaRPr>", "a:rPr"),
            "<a:rPr lang=\"en\"><a:ln/></a:rPr>");
  EXPECT_EQ(RenamedElement("<a:endParaRPr/>", "a:rPr"), "<a:rPr/>");
}

}  // namespace
}  // namespace quillmarch::host::deck
