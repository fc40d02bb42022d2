#include "foundation/settings/TargetStyle.h"
#include "foundation/text/JsonText.h"

#include <cmath>
#include <random>

#include "gtest/gtest.h"

namespace quillmarch::addin {

using List = std::vector<Wide>;

TEST(JsonEscape, ControlsQuotesAndBackslashesAreEscapedAndTheRestIsCopied) {
  EXPECT_EQ(u"\\t\\n\\r\\\"\\\\\\u0000\\u0008\\u001f /\u007f\u4e2d",
            JsonEscape(Wide(u"\t\n\r\"\\\0\b\x1f /\x7f\u4e2d", 12)));
}

TEST(JsonEscape, SurrogatesAreCopiedAsTheyStand) {
  EXPECT_EQ(Wide({0xD83D, 0xDE00, 0xD800}), JsonEscape(Wide({0xD83D, 0xDE00, 0xD800})));
}

TEST(JsonEscape, WhatIsEscapedIsReadBackAsItWas) {
  Wide text;
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) text.push_back(static_cast<char16_t>(unit));
  EXPECT_EQ(text, JsonGetString(u"{\"k\":\"" + JsonEscape(text) + u"\"}", u"k"));
}

TEST(JsonGetString, TheValueOfAKeyIsFoundAtAnyDepth) {
  EXPECT_EQ(u"v", JsonGetString(u"{\"a\":{\"b\" \t: \"v\"}}", u"b"));
}

TEST(JsonGetString, AMissingKeyGivesTheEmptyString) {
  EXPECT_EQ(u"", JsonGetString(u"{\"a\":\"v\"}", u"b"));
  EXPECT_EQ(u"", JsonGetString(u"", u"b"));
  EXPECT_EQ(u"", JsonGetString(u"\"b\"", u"b"));
  EXPECT_EQ(u"", JsonGetString(u"\"b\":", u"b"));
}

TEST(JsonGetString, AHitWithoutAColonIsPassedOver) {
  EXPECT_EQ(u"v", JsonGetString(u"[\"k\",\"k\"\n:1,\"k\":\"v\"]", u"k"));
}

TEST(JsonGetString, AKeyInsideAStringValueIsFoundAsIfItWereAKey) {
  EXPECT_EQ(u"inner", JsonGetString(u"{\"note\":\"x \"k\":\"inner\" y\",\"k\":\"outer\"}", u"k"));
}

TEST(JsonGetString, AnEscapedQuotedKeyInAValueIsNoHit) {
  EXPECT_EQ(u"outer", JsonGetString(u"{\"note\":\"\\\"k\\\":1\",\"k\":\"outer\"}", u"k"));
}

TEST(JsonGetString, ANullValueGivesTheNextStringOfTheDocument) {
  EXPECT_EQ(u"other", JsonGetString(u"{\"k\":null,\"other\":1}", u"k"));
  EXPECT_EQ(u"other", JsonGetString(u"{\"k\":12,\"other\":1}", u"k"));
  EXPECT_EQ(u"", JsonGetString(u"{\"k\":null}", u"k"));
}

TEST(JsonGetString, EscapesAreRead) {
  EXPECT_EQ(u"a\nb\rc\td\"e\\f/gbf",
            JsonGetString(u"\"k\":\"a\\nb\\rc\\td\\\"e\\\\f\\/g\\b\\f\"", u"k"));
}

TEST(JsonGetString, AnEscapedQuoteDoesNotEndTheValue) {
  EXPECT_EQ(u"a\"b", JsonGetString(u"{\"k\":\"a\\\"b\",\"l\":\"c\"}", u"k"));
}

TEST(JsonGetString, TheEscapeOfALetterGivesTheLetter) {
  EXPECT_EQ(u"A", JsonGetString(u"{\"k\":\"\\u0041\"}", u"k"));
  EXPECT_EQ(u"\u4e2dx", JsonGetString(u"{\"k\":\"\\u4E2dx\"}", u"k"));
}

TEST(JsonGetString, AnEscapeWithTwoDigitsAtTheEndOfTheTextStaysLetters) {
  EXPECT_EQ(u"u41", JsonGetString(u"{\"k\":\"\\u41", u"k"));
}

TEST(JsonGetString, AnEscapeNeedsMoreThanFourUnitsBehindTheU) {
  EXPECT_EQ(u"u0041", JsonGetString(u"{\"k\":\"\\u0041", u"k"));
  EXPECT_EQ(u"A", JsonGetString(u"{\"k\":\"\\u0041\"", u"k"));
  EXPECT_EQ(u"Ax", JsonGetString(u"{\"k\":\"\\u0041x", u"k"));
}

TEST(JsonGetString, AnEscapeIsReadUpToItsFirstUnitThatIsNoHexDigit) {
  EXPECT_EQ(Wide({0x12, u'!'}), JsonGetString(u"{\"k\":\"\\u12zz!\"}", u"k"));
  EXPECT_EQ(Wide({0, u'!'}), JsonGetString(u"{\"k\":\"\\uzzzz!\"}", u"k"));
  EXPECT_EQ(Wide({0, u'!'}), JsonGetString(u"{\"k\":\"\\u0x41!\"}", u"k"));
  EXPECT_EQ(Wide({0, u'!'}), JsonGetString(u"{\"k\":\"\\u +41!\"}", u"k"));
}

TEST(JsonGetString, TheFourUnitsOfAnEscapeAreTakenEvenWithAQuoteAmongThem) {
  EXPECT_EQ(Wide({0x4, u'b'}), JsonGetString(u"{\"k\":\"\\u4\"}ab\"", u"k"));
}

TEST(JsonGetString, AnUnclosedValueIsGivenAsFarAsItGot) {
  EXPECT_EQ(u"abc", JsonGetString(u"{\"k\":\"abc", u"k"));
  EXPECT_EQ(u"abc\\", JsonGetString(u"{\"k\":\"abc\\", u"k"));
}

TEST(JsonFindString, TheFirstOccurrenceCountsWithoutAColon) {
  EXPECT_EQ(u"k", JsonFindString(u"{\"a\":\"k\",\"k\":\"v\"}", u"k"));
  EXPECT_EQ(u"v", JsonFindString(u"{\"k\":\"v\"}", u"k"));
  EXPECT_EQ(u"v", JsonFindString(u"\"k\" 12 null \"v\"", u"k"));
  EXPECT_EQ(u"", JsonFindString(u"{\"k\":1}", u"k"));
  EXPECT_EQ(u"", JsonFindString(u"{}", u"k"));
}

TEST(JsonGetBool, TrueAndADigitOneInFrontAreTrue) {
  EXPECT_TRUE(JsonGetBool(u"{\"k\":true}", u"k"));
  EXPECT_TRUE(JsonGetBool(u"{\"k\" : : true}", u"k"));
  EXPECT_TRUE(JsonGetBool(u"{\"k\":1}", u"k"));
  EXPECT_TRUE(JsonGetBool(u"{\"k\":10}", u"k"));
  EXPECT_TRUE(JsonGetBool(u"{\"k\":trueish}", u"k"));
}

TEST(JsonGetBool, EverythingElseIsFalse) {
  EXPECT_FALSE(JsonGetBool(u"{\"k\":false}", u"k"));
  EXPECT_FALSE(JsonGetBool(u"{\"k\":True}", u"k"));
  EXPECT_FALSE(JsonGetBool(u"{\"k\":\"true\"}", u"k"));
  EXPECT_FALSE(JsonGetBool(u"{\"k\":\ttrue}", u"k"));  // a tab is not skipped
  EXPECT_FALSE(JsonGetBool(u"{\"k\":2}", u"k"));
  EXPECT_FALSE(JsonGetBool(u"{}", u"k"));
  EXPECT_FALSE(JsonGetBool(u"\"k\"", u"k"));
  EXPECT_FALSE(JsonGetBool(u"\"k\":tru", u"k"));
}

TEST(JsonGetFlag, OnlyAPlainFalseIsFalse) {
  EXPECT_FALSE(JsonGetFlag(u"{\"k\": \tfalse}", u"k"));
  EXPECT_FALSE(JsonGetFlag(u"{\"k\" x :falsehood}", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"{\"k\":\"false\"}", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"{\"k\":0}", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"{\"k\":False}", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"{\"k\":\nfalse}", u"k"));
}

TEST(JsonGetFlag, AMissingKeyOrColonIsTrue) {
  EXPECT_TRUE(JsonGetFlag(u"{}", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"[\"k\" false]", u"k"));
  EXPECT_TRUE(JsonGetFlag(u"\"k\":", u"k"));
}

TEST(JsonGetNumber, NumbersAreReadAsTheCLibraryReadsThem) {
  EXPECT_EQ(18.5, JsonGetNumber(u"{\"k\": 18.5}", u"k"));
  EXPECT_EQ(-2.0, JsonGetNumber(u"{\"k\":\t-2,\"l\":3}", u"k"));
  EXPECT_EQ(3.0, JsonGetNumber(u"{\"k\":+3}", u"k"));
  EXPECT_EQ(1200.0, JsonGetNumber(u"{\"k\":1.2e3x}", u"k"));
  EXPECT_EQ(0.5, JsonGetNumber(u"{\"k\":.5}", u"k"));
  EXPECT_EQ(7.0, JsonGetNumber(u"{\"k\":7.}", u"k"));
  EXPECT_EQ(1.0, JsonGetNumber(u"{\"k\":1e}", u"k"));
  EXPECT_EQ(26.0, JsonGetNumber(u"{\"k\":0x1A}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":0xg}", u"k"));
  EXPECT_EQ(12.0, JsonGetNumber(u"{\"k\":12\u4e2d}", u"k"));
}

TEST(JsonGetNumber, WhatIsNoNumberGivesZero) {
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":\"12\"}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":null}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":--5}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":+-5}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"\"k\"", u"k"));
}

TEST(JsonGetNumber, NumbersBeyondTheRangeBecomeInfiniteOrZero) {
  EXPECT_EQ(HUGE_VAL, JsonGetNumber(u"{\"k\":1e999}", u"k"));
  EXPECT_EQ(-HUGE_VAL, JsonGetNumber(u"{\"k\":-1e999}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":1e-999}", u"k"));
}

TEST(JsonGetNumber, BeyondTheRangeTheDigitsCountAsMuchAsTheExponent) {
  const Wide zeros(500, u'0');
  EXPECT_EQ(HUGE_VAL, JsonGetNumber(u"{\"k\":1" + zeros + u"}", u"k"));
  EXPECT_EQ(HUGE_VAL, JsonGetNumber(u"{\"k\":1" + zeros + u".5e-9}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":0." + zeros + u"1}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":." + zeros + u"1e+9}", u"k"));
  EXPECT_EQ(HUGE_VAL, JsonGetNumber(u"{\"k\":0x1" + zeros + u"p-9}", u"k"));
  EXPECT_EQ(HUGE_VAL, JsonGetNumber(u"{\"k\":1e" + Wide(30, u'9') + u"}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":1e-" + Wide(30, u'9') + u"}", u"k"));
  EXPECT_EQ(0.0, JsonGetNumber(u"{\"k\":0e" + Wide(30, u'9') + u"}", u"k"));
}

TEST(JsonGetStringArray, StringsAreGivenInTheirOrderTheEmptyOnesToo) {
  EXPECT_EQ(List({u"a", u"", u"b]\"", u"c"}),
            JsonGetStringArray(u"{\"k\":[\"a\", \"\" ,\"b]\\\"\",\"c\"],\"l\":[\"d\"]}", u"k"));
}

TEST(JsonGetStringArray, AMissingKeyOrBracketGivesNothing) {
  EXPECT_EQ(List(), JsonGetStringArray(u"{\"l\":[\"a\"]}", u"k"));
  EXPECT_EQ(List(), JsonGetStringArray(u"{\"k\":\"a\"}", u"k"));
}

TEST(JsonGetStringArray, AnEmptyArrayRunsOnIntoTheDocument) {
  EXPECT_EQ(List({u"code", u"x"}),
            JsonGetStringArray(u"{\"translations\":[],\"code\":\"x\"}", u"translations"));
  EXPECT_EQ(List(), JsonGetStringArray(u"{\"k\":[]}", u"k"));
}

TEST(JsonGetStringArray, WhatIsNoStringIsPassedOver) {
  EXPECT_EQ(List({u"a", u"b"}), JsonGetStringArray(u"{\"k\":[1,null,\"a\",2,\"b\",3]}", u"k"));
}

TEST(JsonGetStringArray, ObjectsInTheArrayGiveTheirStrings) {
  EXPECT_EQ(List({u"s", u"a", u"t", u"b"}),
            JsonGetStringArray(u"{\"k\":[{\"s\":\"a\"},{\"t\":\"b\"}]}", u"k"));
}

TEST(JsonGetStringArray, AStringThatIsNeverClosedIsTheLast) {
  EXPECT_EQ(List({u"a", u"b"}), JsonGetStringArray(u"{\"k\":[\"a\",\"b", u"k"));
  EXPECT_EQ(List({u"a"}), JsonGetStringArray(u"{\"k\":[\"a\"", u"k"));
}

TEST(JsonGetStringArray, TheBracketIsSoughtAtAnyDistance) {
  EXPECT_EQ(List({u"a"}), JsonGetStringArray(u"{\"k\":null,\"l\":[\"a\"]}", u"k"));
}

TEST(JsonGetObject, TheObjectIsGivenWithItsBraces) {
  EXPECT_EQ(u"{\"a\":{\"b\":{}}}", JsonGetObject(u"{\"k\":{\"a\":{\"b\":{}}},\"l\":{}}", u"k"));
}

TEST(JsonGetObject, BracesInStringsAreNotCounted) {
  EXPECT_EQ(u"{\"a\":\"}{\\\"}\"}", JsonGetObject(u"{\"k\":{\"a\":\"}{\\\"}\"}}", u"k"));
  EXPECT_EQ(u"{\"a\":\"\\\\\"}", JsonGetObject(u"{\"k\":{\"a\":\"\\\\\"}}", u"k"));
}

TEST(JsonGetObject, AnUnbalancedOrMissingObjectGivesTheEmptyString) {
  EXPECT_EQ(u"", JsonGetObject(u"{\"k\":{\"a\":1", u"k"));
  EXPECT_EQ(u"", JsonGetObject(u"{\"k\":1}", u"k"));
  EXPECT_EQ(u"", JsonGetObject(u"{}", u"k"));
}

TEST(JsonGetObject, ANullValueGivesTheNextObjectOfTheDocument) {
  EXPECT_EQ(u"{\"a\":1}", JsonGetObject(u"{\"k\":null,\"l\":{\"a\":1}}", u"k"));
}

TEST(JsonHasKey, TheKeyMustStandWithItsQuotes) {
  EXPECT_TRUE(JsonHasKey(u"[\"k\"]", u"k"));
  EXPECT_FALSE(JsonHasKey(u"{\"kk\":k}", u"k"));
}

TEST(ParseHexColor, RedIsTheLowestByte) {
  std::int32_t value = 0;
  EXPECT_TRUE(ParseHexColor(u"#12aBcD", value));
  EXPECT_EQ(0x12 + 0xAB * 256 + 0xCD * 65536, value);
}

TEST(ParseHexColor, AnythingElseThanSixDigitsBehindAHashIsRefused) {
  std::int32_t value = 77;
  for (const WideView text : {u"", u"#12345", u"#1234567", u"1234567", u"#12345g", u"# 12345"}) {
    EXPECT_FALSE(ParseHexColor(text, value)) << ToUtf8(text);
  }
  EXPECT_EQ(77, value);
}

TEST(ReadTargetStyle, MissingKeysLeaveTheFields) {
  TargetStyle style{u"Arial", 12.0, 5, 1};
  ReadTargetStyle(u"{}", style);
  EXPECT_EQ(u"Arial", style.font);
  EXPECT_EQ(12.0, style.size);
  EXPECT_EQ(5, style.color);
  EXPECT_EQ(1, style.bold);
}

TEST(ReadTargetStyle, AllFourFieldsAreRead) {
  TargetStyle style;
  ReadTargetStyle(
      u"{\"targetFont\":\"Noto Sans\",\"targetFontSize\":18.5,"
      u"\"targetFontColor\":\"#FF0000\",\"targetFontBold\":1}",
      style);
  EXPECT_EQ(u"Noto Sans", style.font);
  EXPECT_EQ(18.5, style.size);
  EXPECT_EQ(255, style.color);
  EXPECT_EQ(1, style.bold);
}

TEST(ReadTargetStyle, BadValuesUnsetTheFields) {
  TargetStyle style{u"Arial", 12.0, 5, 1};
  ReadTargetStyle(
      u"{\"targetFont\":\"\",\"targetFontSize\":\"x\","
      u"\"targetFontColor\":\"red\",\"targetFontBold\":0.5}",
      style);
  EXPECT_EQ(u"", style.font);
  EXPECT_EQ(0.0, style.size);
  EXPECT_EQ(-1, style.color);
  EXPECT_EQ(-1, style.bold);
  ReadTargetStyle(u"{\"targetFontBold\":0.0}", style);
  EXPECT_EQ(0, style.bold);
}

// Long texts are searched block by block, which must miss nothing.
TEST(JsonHasKey, FindsInATextOfAnyLengthWhatAPlainSearchFinds) {
  std::mt19937 chance(7);
  const Wide units = u"abc\"\"";
  const auto text = [&](std::size_t length) {
    Wide made;
    for (std::size_t i = 0; i < length; ++i) made += units[chance() % units.size()];
    return made;
  };
  int found = 0;
  constexpr int kTurns = 20000;
  for (int turn = 0; turn < kTurns; ++turn) {
    const Wide json = text(chance() % 300);
    const Wide key = text(chance() % 7);
    const bool stands = json.find(u"\"" + key + u"\"") != Wide::npos;
    ASSERT_EQ(JsonHasKey(json, key), stands) << ToUtf8(json) << " " << ToUtf8(key);
    found += stands ? 1 : 0;
  }
  EXPECT_GT(found, kTurns / 20);
  EXPECT_LT(found, kTurns - kTurns / 20);
}

TEST(JsonHasKey, FindsAKeyAtEveryPlaceOfALongText) {
  for (std::size_t length = 0; length < 200; ++length) {
    for (std::size_t at = 0; at <= length; ++at) {
      Wide json(length, u'x');
      json.insert(at, u"\"key\"");
      ASSERT_TRUE(JsonHasKey(json, u"key")) << at << " of " << length;
      json[at + 3] = u'x';
      ASSERT_FALSE(JsonHasKey(json, u"key")) << at << " of " << length;
    }
  }
}

TEST(JsonGetString, FindsTheFirstKeyWithAColonAlsoInALongText) {
  const Wide filling(1000, u'x');
  const Wide json =
      u"{\"fill\":\"" + filling + u"\",\"key\" \"key\":\"one\",\"key\":\"two\"," + filling + u"}";
  EXPECT_EQ(u"one", JsonGetString(json, u"key"));
  EXPECT_EQ(u"", JsonGetString(json, u"none"));
}

}  // namespace quillmarch::addin
