#include "host/package/xml/Splice.h"

#include <gtest/gtest.h>

namespace quillmarch::host {

TEST(ApplyEdits, NoEditsGiveTheSameBytes) {
  EXPECT_EQ(ApplyEdits("abc", {}), "abc");
}

TEST(ApplyEdits, EditsMayComeInAnyOrder) {
  EXPECT_EQ(ApplyEdits("0123456789", {{8, 1, "B"}, {1, 2, "A"}}), "0A34567B9");
}

TEST(ApplyEdits, TwoInsertionsAtOneOffsetKeepTheirOrder) {
  EXPECT_EQ(ApplyEdits("ab", {{1, 0, "1"}, {1, 0, "2"}}), "a12b");
}

TEST(ApplyEdits, AnInsertionStandsBeforeAReplacementAtTheSameOffset) {
  EXPECT_EQ(ApplyEdits("abc", {{1, 1, "X"}, {1, 0, "+"}}), "a+Xc");
}

TEST(ApplyEdits, TouchingEditsDoNotOverlap) {
  EXPECT_EQ(ApplyEdits("abcd", {{0, 2, "1"}, {2, 2, "2"}}), "12");
}

TEST(ApplyEdits, TheEdgesCanBeEdited) {
  EXPECT_EQ(ApplyEdits("bc", {{0, 0, "a"}, {2, 0, "d"}}), "abcd");
  EXPECT_EQ(ApplyEdits("", {{0, 0, "all"}}), "all");
}

TEST(ApplyEdits, ARemovalTakesBytesAway) {
  EXPECT_EQ(ApplyEdits("abc", {{0, 3, ""}}), "");
}

}  // namespace quillmarch::host
