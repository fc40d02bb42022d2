#include "service/Utf8.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

TEST(Utf8, ValidTextStaysAsItIs) {
  const std::string text = "Aé中😀";
  EXPECT_EQ(ValidUtf8(text), text);
}

TEST(Utf8, EachByteThatIsNoUtf8BecomesOneReplacementCharacter) {
  EXPECT_EQ(ValidUtf8("a\xFFz"), "a\xEF\xBF\xBDz");
  EXPECT_EQ(ValidUtf8("\xC0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD");    // overlong
  EXPECT_EQ(ValidUtf8("\xED\xA0\x80").size(), 9u);                 // a surrogate
  EXPECT_EQ(ValidUtf8("\xF4\x90\x80\x80").size(), 12u);            // above U+10FFFF
  EXPECT_EQ(ValidUtf8("x\xE4\xB8"), "x\xEF\xBF\xBD\xEF\xBF\xBD");  // cut short
  EXPECT_EQ(ValidUtf8("\xE0\x80\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8, LengthCountsSurrogatePairsAsTwo) {
  EXPECT_EQ(Utf16Length(""), 0u);
  EXPECT_EQ(Utf16Length("Aé中"), 3u);
  EXPECT_EQ(Utf16Length("😀"), 2u);
}

TEST(Utf8, TrimBlanksCutsAroundTheCore) {
  const TrimmedText parts = TrimBlanks(" \v\u00A0Plan B\u3000\n");
  EXPECT_EQ(parts.leading, " \v\u00A0");
  EXPECT_EQ(parts.core, "Plan B");
  EXPECT_EQ(parts.trailing, "\u3000\n");
}

TEST(Utf8, ABlankTextIsAllLeading) {
  EXPECT_EQ(TrimBlanks(" \t ").leading, " \t ");
  EXPECT_EQ(TrimBlanks(" \t ").core, "");
  EXPECT_EQ(TrimBlanks("").core, "");
}

}  // namespace quillmarch::service
