#include "run/document/ShouldSkip.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

TEST(ShouldSkip, AnEmptyTextIsSkipped) {
  EXPECT_TRUE(ShouldSkip(u""));
}

TEST(ShouldSkip, DigitsPunctuationSymbolsAndBlanksAreSkipped) {
  EXPECT_TRUE(ShouldSkip(u" 12.5 % - 2024/06 \t→ ★ €"));
}

TEST(ShouldSkip, OneLetterOfAnyScriptIsEnough) {
  for (const WideView text :
       {u"7 a", u"Ж 1", u"12 ∑ α", u"١ ب", u"ไทย", u"हिन्दी", u"中", u"ひ", u"カ", u"한", u"3 é"}) {
    EXPECT_FALSE(ShouldSkip(text)) << ToUtf8(text);
  }
}

TEST(ShouldSkip, AUrlIsTranslatedSinceItHasLetters) {
  EXPECT_FALSE(ShouldSkip(u"https://example.com/1"));
}

TEST(ShouldSkip, LoneSurrogatesAreNoLetters) {
  const Wide text{char16_t{0xD83D}, char16_t{0xDE00}, u' ', char16_t{0xD800}};
  EXPECT_TRUE(ShouldSkip(text));
}

TEST(ShouldSkip, TheEdgesOfTheCjkRangesCount) {
  for (const char16_t unit : Wide(u"\u4E00\u9FFF\u3040\u30FF\uAC00\uD7AF")) {
    EXPECT_FALSE(ShouldSkip(Wide(1, unit))) << ToUtf8(Wide(1, unit));
  }
}

}  // namespace

}  // namespace quillmarch::addin
