#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "terminology/LocalStore.h"

namespace quillmarch::addin {

TEST(StoreRoot, IsEmptyWithoutAnyDataFolder) {
  const std::string data = std::getenv("XDG_DATA_HOME");
  const char* home = std::getenv("HOME");
  const std::string homeBefore = home == nullptr ? "" : home;
  ::unsetenv("XDG_DATA_HOME");
  ::unsetenv("HOME");
  EXPECT_EQ(StoreRoot(), u"");
  ::setenv("XDG_DATA_HOME", data.c_str(), 1);
  if (home != nullptr) ::setenv("HOME", homeBefore.c_str(), 1);
}

}  // namespace quillmarch::addin
