#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/settings/UserConfigFile.h"

namespace quillmarch::addin {

namespace {

// A pipe is there, cannot be read as a file, and a move would replace it.
TEST(UserConfigurationOnPosix, WhatIsThereAndCannotBeReadStaysAlsoWhereItCouldBeReplaced) {
  const UserConfigFile config;
  const std::string path = ToUtf8(ConfigPath());
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::uint32_t error = 0;
  EXPECT_FALSE(WritePaneWidth(600, error));
  EXPECT_NE(error, 0U);
  EXPECT_FALSE(WriteUiLang(u"ja", error));
  struct stat facts {};
  ASSERT_EQ(stat(path.c_str(), &facts), 0);
  EXPECT_TRUE(S_ISFIFO(facts.st_mode));
}

}  // namespace

}  // namespace quillmarch::addin
