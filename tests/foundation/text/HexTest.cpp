#include "foundation/text/Hex.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

TEST(HexText, AreCapitalsWithoutLeadingZeros) {
  EXPECT_EQ(HexText(0), u"0");
  EXPECT_EQ(HexText(0xBEEF), u"BEEF");
  EXPECT_EQ(HexText(UINT64_MAX), u"FFFFFFFFFFFFFFFF");
}

TEST(HexText, ArePaddedToTheLeastDigitsAndNeverCut) {
  EXPECT_EQ(HexText(0x7B, 8), u"0000007B");
  EXPECT_EQ(HexText(0x123456789, 8), u"123456789");
  EXPECT_EQ(HexText(1, 16), u"0000000000000001");
}

}  // namespace

}  // namespace quillmarch::addin
