#include "host/workbook/XString.h"

#include <gtest/gtest.h>

namespace quillmarch::host::workbook {

TEST(XString, EscapesAreDecoded) {
  EXPECT_EQ(DecodeXString("a_x000D_\nb"), "a\r\nb");
  EXPECT_EQ(DecodeXString("_x005F_x000D_"), "_x000D_");
  EXPECT_EQ(DecodeXString("_x20AC_"), "\u20AC");
  EXPECT_EQ(DecodeXString("_xD83D__xDE00_"), "\U0001F600");
  EXPECT_EQ(DecodeXString("_xD83D_"), "\uFFFD");
  for (const char* const same : {"", "_x", "_x00_", "_xGGGG_", "_x000D", "plain_text"}) {
    EXPECT_EQ(DecodeXString(same), same);
  }
}

TEST(XString, WhatIsEncodedReadsBackAsItWas) {
  for (const char* const text :
       {"plain", "a\nb", "a\r\nb", "\x01\x1F", "_x000D_", "_x_x0041_", "\U0001F600"}) {
    EXPECT_EQ(DecodeXString(EncodeXString(text)), text);
  }
  EXPECT_EQ(EncodeXString("a\nb"), "a\nb");
  EXPECT_EQ(EncodeXString("\r"), "_x000D_");
}

}  // namespace quillmarch::host::workbook
