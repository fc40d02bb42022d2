#include "foundation/text/Utf8.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

void ExpectBroken(std::string_view text, std::size_t skip) {
  const Utf8Char decoded = DecodeUtf8(text);
  EXPECT_EQ(decoded.code, kReplacementCharacter);
  EXPECT_EQ(decoded.length, 0U);
  EXPECT_EQ(decoded.skip, skip);
  EXPECT_FALSE(IsUtf8(text));
}

TEST(DecodeUtf8, GivesEveryCodePointThatAppendWrote) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    std::string text;
    AppendUtf8(text, code);
    const Utf8Char decoded = DecodeUtf8(text + "x");
    ASSERT_EQ(decoded.code, code);
    ASSERT_EQ(decoded.length, text.size());
    ASSERT_EQ(decoded.skip, text.size());
  }
}

TEST(DecodeUtf8, OfNothingThereIsNothing) {
  EXPECT_EQ(DecodeUtf8("").length, 0U);
  EXPECT_EQ(DecodeUtf8("").skip, 0U);
  EXPECT_TRUE(IsUtf8(""));
}

TEST(DecodeUtf8, RefusesWhatIsNotUtf8WithTheLengthOfTheBrokenPiece) {
  ExpectBroken("\x80", 1);              // a stray continuation
  ExpectBroken("\xC0\x80", 1);          // overlong
  ExpectBroken("\xE0\x9F\xBF", 1);      // overlong
  ExpectBroken("\xF0\x8F\xBF\xBF", 1);  // overlong
  ExpectBroken("\xED\xA0\x80", 1);      // a surrogate
  ExpectBroken("\xF4\x90\x80\x80", 1);  // above U+10FFFF
  ExpectBroken("\xF5\x80\x80\x80", 1);
  ExpectBroken("\xE4\xB8", 2);       // cut at the end
  ExpectBroken("\xF0\x9F\x98x", 3);  // cut by a letter
}

TEST(IsUtf8, LooksAtTheWholeText) {
  EXPECT_TRUE(IsUtf8("a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"));
  EXPECT_FALSE(IsUtf8("abc\xFF"));
}

}  // namespace

}  // namespace quillmarch::addin
