#include "foundation/text/Wide.h"

#include "gtest/gtest.h"

namespace quillmarch::addin {

TEST(ToWide, TextOfEveryLengthOfSequenceComesThrough) {
  EXPECT_EQ(u"a\u00e9\u4e2d\U0001F600", ToWide("a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"));
}

TEST(ToWide, EachMaximalBrokenPieceBecomesOneReplacement) {
  EXPECT_EQ(u"\uFFFDa", ToWide("\xE4\xB8"
                               "a"));
  EXPECT_EQ(u"\uFFFD\uFFFD", ToWide("\xC0\x80"));                      // overlong
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", ToWide("\xED\xA0\x80"));            // surrogate
  EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", ToWide("\xF4\x90\x80\x80"));  // above U+10FFFF
  EXPECT_EQ(u"\uFFFD", ToWide("\xF0\x9F\x98"));                        // cut at the end
  EXPECT_EQ(u"x\uFFFD", ToWide("x\x80"));
}

TEST(ToUtf8, PairsBecomeFourBytesAndLoneSurrogatesAReplacement) {
  EXPECT_EQ("a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80", ToUtf8(u"a\u00e9\u4e2d\U0001F600"));
  EXPECT_EQ("\xEF\xBF\xBD", ToUtf8(Wide(1, 0xD83D)));
  EXPECT_EQ("\xEF\xBF\xBDx", ToUtf8(Wide{0xDE00, u'x'}));
  EXPECT_EQ("\xEF\xBF\xBD\xF0\x9F\x98\x80", ToUtf8(Wide{0xD83D, 0xD83D, 0xDE00}));
}

TEST(ToUtf8, EveryCodePointComesBackAsItWas) {
  for (std::uint32_t point = 0; point <= 0x10FFFF; ++point) {
    if (point >= 0xD800 && point <= 0xDFFF) continue;
    Wide text;
    if (point < 0x10000) {
      text.push_back(static_cast<char16_t>(point));
    } else {
      text.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
    }
    ASSERT_EQ(text, ToWide(ToUtf8(text))) << point;
  }
}

TEST(Decimal, TheEndsOfTheRangeAreWrittenWhole) {
  EXPECT_EQ(u"0", Decimal(0));
  EXPECT_EQ(u"-9223372036854775808", Decimal(INT64_MIN));
  EXPECT_EQ(u"18446744073709551615", DecimalUnsigned(UINT64_MAX));
}

TEST(LowerAscii, OnlyAsciiLettersMove) {
  EXPECT_EQ(u"az\u00c9[@", LowerAscii(u"AZ\u00c9[@"));
}

}  // namespace quillmarch::addin
