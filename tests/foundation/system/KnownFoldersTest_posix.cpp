#include <cstdlib>
#include <string>

#include "foundation/log/Log.h"
#include "foundation/system/KnownFolders.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

// Sets a variable for one test.
class Variable {
 public:
  Variable(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) {
      had_ = true;
      old_ = old;
    }
    if (value != nullptr) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;
  ~Variable() {
    if (had_) {
      ::setenv(name_, old_.c_str(), 1);
    } else {
      ::unsetenv(name_);
    }
  }

 private:
  const char* name_;
  bool had_ = false;
  std::string old_;
};

}  // namespace

TEST(LocalDataFolder, TheDataHomeCountsWhenItIsAnAbsolutePath) {
  const Variable home("HOME", "/home/someone");
  {
    const Variable data("XDG_DATA_HOME", "/data/home/");
    EXPECT_EQ(u"/data/home", LocalDataFolder());
    EXPECT_EQ(u"/data/home/Quillmarch", GetUserDataDir());
  }
  const Variable data("XDG_DATA_HOME", "relative");
  EXPECT_EQ(u"/home/someone/.local/share", LocalDataFolder());
}

TEST(LocalDataFolder, WithoutItTheHomeFolderCounts) {
  const Variable data("XDG_DATA_HOME", nullptr);
  const Variable home("HOME", "/home/someone");
  EXPECT_EQ(u"/home/someone/.local/share", LocalDataFolder());
  EXPECT_EQ(u"/home/someone/.local/share/Quillmarch", GetUserDataDir());
  EXPECT_EQ(LocalDataFolder(), RoamingDataFolder());
}

TEST(LocalDataFolder, WithoutAnyHomeThereIsNone) {
  const Variable data("XDG_DATA_HOME", nullptr);
  const Variable home("HOME", nullptr);
  EXPECT_EQ(u"", LocalDataFolder());
  EXPECT_EQ(u"", GetUserDataDir());
}

}  // namespace quillmarch::addin
