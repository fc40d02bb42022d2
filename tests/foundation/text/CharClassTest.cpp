#include "foundation/text/CharClass.h"

#include "foundation/text/Wide.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

TEST(IsAlpha, LettersOfEveryScriptCount) {
  for (const char16_t unit :
       Wide(u"Az\u00df\u0416\u03a9\u0634\u05d0\u0e01\u0915\u4e2d\u3042\u30a2\uac00\u2160")) {
    EXPECT_TRUE(IsAlpha(unit)) << std::hex << static_cast<unsigned>(unit);
  }
}

TEST(IsAlpha, DigitsPunctuationMarksAndSymbolsDoNot) {
  for (const char16_t unit :
       Wide(u"09 -_.,\u00d7\u00f7\u0660\u0301\u0e34\u093f\u20ac\u2190\u3001\ufe0f")) {
    EXPECT_FALSE(IsAlpha(unit)) << std::hex << static_cast<unsigned>(unit);
  }
}

TEST(IsAlpha, SurrogatesAreInNoClass) {
  for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
    const auto c = static_cast<char16_t>(unit);
    ASSERT_FALSE(IsAlpha(c) || IsSpace(c) || IsDigit(c)) << std::hex << unit;
  }
}

TEST(IsAlpha, TheThreeLatinLettersOutsideTheAlphabetCount) {
  EXPECT_TRUE(IsAlpha(0x00AA));
  EXPECT_TRUE(IsAlpha(0x00B5));
  EXPECT_TRUE(IsAlpha(0x00BA));
}

TEST(IsSpace, ControlsSeparatorsAndTheWideBlankCount) {
  for (const char16_t unit : Wide(u"\t\n\v\f\r \u0085\u00a0\u1680\u2003\u2028\u2029\u202f\u3000")) {
    EXPECT_TRUE(IsSpace(unit)) << std::hex << static_cast<unsigned>(unit);
  }
  for (const char16_t unit : Wide(u"a0_\u0008\u001c\u200b\u2060\ufeff")) {
    EXPECT_FALSE(IsSpace(unit)) << std::hex << static_cast<unsigned>(unit);
  }
}

TEST(IsDigit, DigitsOfEveryScriptAndTheRaisedLatinOnesCount) {
  for (const char16_t unit : Wide(u"059\u00b2\u00b3\u00b9\u0660\u06f9\u0966\u0e50\uff10\uff19")) {
    EXPECT_TRUE(IsDigit(unit)) << std::hex << static_cast<unsigned>(unit);
  }
  for (const char16_t unit : Wide(u"aF\u00bd\u2070\u2460\u2160\u4e00")) {
    EXPECT_FALSE(IsDigit(unit)) << std::hex << static_cast<unsigned>(unit);
  }
}

TEST(IsAlnum, IsALetterOrADigit) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto c = static_cast<char16_t>(unit);
    ASSERT_EQ(IsAlpha(c) || IsDigit(c), IsAlnum(c)) << std::hex << unit;
  }
}

TEST(CharClass, NoUnitIsInTwoClasses) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const auto c = static_cast<char16_t>(unit);
    ASSERT_LE(IsAlpha(c) + IsSpace(c) + IsDigit(c), 1) << std::hex << unit;
  }
}

}  // namespace quillmarch::addin
