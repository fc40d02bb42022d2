#include "service/engines/RunMemory.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

TEST(RunMemory, EachRunHasItsOwnLanguage) {
  RunMemory memory;
  memory.Note("a", "eng", true);
  memory.Note("b", "spa", true);
  memory.Note("", "fra", true);
  EXPECT_EQ(memory.Last("a").language, "eng");
  EXPECT_EQ(memory.Last("b").language, "spa");
  EXPECT_EQ(memory.Last("c").language, "");
  EXPECT_EQ(memory.Last("").language, "");
}

TEST(RunMemory, ALanguageWithAPairOutweighsOneWithout) {
  RunMemory memory;
  memory.Note("a", "deu", false);
  EXPECT_EQ(memory.Last("a").language, "deu");
  EXPECT_FALSE(memory.Last("a").hasPair);
  memory.Note("a", "eng", true);
  memory.Note("a", "deu", false);
  EXPECT_EQ(memory.Last("a").language, "eng");
  EXPECT_TRUE(memory.Last("a").hasPair);
}

TEST(RunMemory, TheOldestRunIsForgottenFirst) {
  RunMemory memory;
  memory.Note("kept", "eng", true);
  memory.Note("old", "eng", true);
  for (std::size_t i = 0; i + 2 < RunMemory::kMostRuns; ++i) {
    memory.Note(std::to_string(i), "eng", true);
  }
  memory.Note("kept", "spa", true);
  memory.Note("new", "eng", true);
  EXPECT_EQ(memory.Last("old").language, "");
  EXPECT_EQ(memory.Last("kept").language, "spa");
}

}  // namespace quillmarch::service
