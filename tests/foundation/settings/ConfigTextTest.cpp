#include "foundation/settings/ConfigText.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

constexpr const char* kKey = "paneWidthPt";

std::string Patched(std::string_view text, std::int32_t value) {
  std::string out = "unchanged";
  EXPECT_TRUE(PatchIntKey(text, kKey, value, out));
  return out;
}

TEST(ReadIntKey, SkipsBlanksOfAllFourKindsOnBothSidesOfTheColon) {
  std::int32_t value = 0;
  EXPECT_TRUE(ReadIntKey("{\"paneWidthPt\" \t\r\n: \t\r\n600}", kKey, value));
  EXPECT_EQ(value, 600);
}

TEST(ReadIntKey, ReadsANegativeNumberUpToTheFirstOtherCharacter) {
  std::int32_t value = 0;
  EXPECT_TRUE(ReadIntKey("{\"paneWidthPt\":-12.5}", kKey, value));
  EXPECT_EQ(value, -12);
}

TEST(ReadIntKey, WrapsAtThirtyTwoBits) {
  std::int32_t value = 0;
  EXPECT_TRUE(ReadIntKey("{\"paneWidthPt\":4294967297}", kKey, value));
  EXPECT_EQ(value, 1);
}

TEST(ReadIntKey, IsAbsentWithoutAColonOrWithoutADigit) {
  std::int32_t value = 7;
  EXPECT_FALSE(ReadIntKey("{\"a\":\"paneWidthPt\"}", kKey, value));
  EXPECT_FALSE(ReadIntKey("{\"paneWidthPt\":\"600\"}", kKey, value));
  EXPECT_FALSE(ReadIntKey("{\"paneWidthPt\":-}", kKey, value));
  EXPECT_FALSE(ReadIntKey("{\"paneWidthPt\"", kKey, value));
  EXPECT_EQ(value, 7);
}

TEST(ReadIntKey, FindsAKeyInsideANestedObject) {
  std::int32_t value = 0;
  EXPECT_TRUE(ReadIntKey("{\"a\":{\"paneWidthPt\":300}}", kKey, value));
  EXPECT_EQ(value, 300);
}

TEST(PatchIntKey, ReplacesTheNumberAndNothingElse) {
  EXPECT_EQ(Patched("{ \"z\" :[1 ,2],\r\n\t\"paneWidthPt\" : -5 ,\"a\":true}", 640),
            "{ \"z\" :[1 ,2],\r\n\t\"paneWidthPt\" : 640 ,\"a\":true}");
}

TEST(PatchIntKey, FindsAKeyInsideANestedObjectAndBeforeALaterOne) {
  EXPECT_EQ(Patched("{\"a\":{\"paneWidthPt\":300},\"paneWidthPt\":310}", 640),
            "{\"a\":{\"paneWidthPt\":640},\"paneWidthPt\":310}");
}

TEST(PatchIntKey, PutsANewMemberBehindTheOthers) {
  EXPECT_EQ(Patched("{\n  \"uiLang\": \"ja\"\n}\n", 640),
            "{\n  \"uiLang\": \"ja\"\n,\n  \"paneWidthPt\": 640\n}\n");
}

TEST(PatchIntKey, PutsTheFirstMemberIntoAnEmptyObject) {
  EXPECT_EQ(Patched("{}", 640), "{\n  \"paneWidthPt\": 640\n}");
}

TEST(PatchIntKey, AQuoteBehindTheLastBraceIsNoMember) {
  EXPECT_EQ(Patched("{ } \"note\"", 640), "{ \n  \"paneWidthPt\": 640\n} \"note\"");
}

TEST(PatchIntKey, RefusesATextWithoutABraceAndAValueWithoutADigit) {
  std::string out;
  EXPECT_FALSE(PatchIntKey("nonsense", kKey, 640, out));
  EXPECT_FALSE(PatchIntKey("{\"paneWidthPt\":null}", kKey, 640, out));
}

TEST(ReadStringKey, ABackslashTakesTheNextCharacterAsItStands) {
  std::string value;
  EXPECT_TRUE(ReadStringKey("{\"uiLang\" : \"a\\\"b\\\\c\\n\"}", "uiLang", value));
  EXPECT_EQ(value, "a\"b\\cn");
}

TEST(ReadStringKey, AnUnclosedStringIsAbsent) {
  std::string value = "kept";
  EXPECT_FALSE(ReadStringKey("{\"uiLang\": \"ja", "uiLang", value));
  EXPECT_FALSE(ReadStringKey("{\"uiLang\": \"ja\\\"", "uiLang", value));
  EXPECT_FALSE(ReadStringKey("{\"uiLang\": 5}", "uiLang", value));
  EXPECT_EQ(value, "kept");
}

TEST(PatchStringKey, ReplacesWhatStandsBetweenTheQuotesEscapesIncluded) {
  std::string out;
  ASSERT_TRUE(PatchStringKey("{\"uiLang\": \"a\\\"b\" ,\"x\":1}", "uiLang", "th", out));
  EXPECT_EQ(out, "{\"uiLang\": \"th\" ,\"x\":1}");
}

TEST(PatchStringKey, PutsANewMemberWithQuotes) {
  std::string out;
  ASSERT_TRUE(PatchStringKey("{\n  \"paneWidthPt\": 300\n}\n", "uiLang", "zh-TW", out));
  EXPECT_EQ(out, "{\n  \"paneWidthPt\": 300\n,\n  \"uiLang\": \"zh-TW\"\n}\n");
}

}  // namespace

}  // namespace quillmarch::addin
