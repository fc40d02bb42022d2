#include "host/deck/text/PrefixSums.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>

namespace quillmarch::host::deck {

TEST(PrefixSums, EachStretchBeginsWhereTheOneBeforeItEnds) {
  PrefixSums sums;
  sums.Assign({3, 1, 4, 1, 5});
  EXPECT_EQ(sums.Before(0), 0U);
  EXPECT_EQ(sums.Before(1), 3U);
  EXPECT_EQ(sums.Before(3), 8U);
  EXPECT_EQ(sums.Before(5), 14U);
}

TEST(PrefixSums, APositionBelongsToTheStretchThatHoldsIt) {
  PrefixSums sums;
  sums.Assign({3, 1, 4});
  const std::vector<std::size_t> expected = {0, 0, 0, 1, 2, 2, 2, 2};
  for (std::size_t position = 0; position < expected.size(); ++position) {
    EXPECT_EQ(sums.At(position), expected[position]) << position;
  }
}

TEST(PrefixSums, APositionPastTheEndBelongsToTheLastStretch) {
  PrefixSums sums;
  sums.Assign({3, 1, 4});
  EXPECT_EQ(sums.At(8), 2U);
  EXPECT_EQ(sums.At(1000), 2U);
  sums.Assign({7});
  EXPECT_EQ(sums.At(7), 0U);
}

TEST(PrefixSums, ChangedLengthsGiveTheSameAsAssigningThem) {
  std::vector<std::size_t> lengths(37, 2);
  PrefixSums sums;
  sums.Assign(lengths);
  std::uint32_t random = 7;
  for (int change = 0; change < 500; ++change) {
    random = random * 1664525U + 1013904223U;
    const std::size_t index = random % lengths.size();
    lengths[index] = 1 + (random >> 16) % 90;
    sums.Set(index, lengths[index]);
    std::size_t begin = 0;
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      ASSERT_EQ(sums.Before(i), begin);
      ASSERT_EQ(sums.At(begin), i);
      ASSERT_EQ(sums.At(begin + lengths[i] - 1), i);
      begin += lengths[i];
    }
  }
}

}  // namespace quillmarch::host::deck
