#include "terminology/LocalStore.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"

namespace quillmarch::addin {

namespace {

bool IsFolder(const Wide& path) {
  FileFacts facts;
  return ReadFileFacts(path, facts) && facts.isFolder;
}

// Without the store, and without it afterwards.
class LocalStore : public testing::Test {
 protected:
  LocalStore() { Remove(); }
  ~LocalStore() override { Remove(); }

  Wide root_ = JoinPath(RoamingDataFolder(), u"Quillmarch");

 private:
  void Remove() {
    std::error_code ignored;
    for (const char16_t* kind : {u"glossaries", u"instructions"}) {
      std::filesystem::remove_all(std::filesystem::path(JoinPath(root_, kind)), ignored);
    }
  }
};

TEST_F(LocalStore, TheRootLiesBelowTheRoamingDataAndIsMade) {
  EXPECT_EQ(StoreRoot(), root_);
  EXPECT_TRUE(IsFolder(root_));
}

TEST_F(LocalStore, EachFolderIsMadeWithTheOneAboveIt) {
  EXPECT_EQ(GlossaryFolder(), JoinPath(JoinPath(root_, u"glossaries"), u"global"));
  EXPECT_TRUE(IsFolder(GlossaryFolder()));
  EXPECT_FALSE(IsFolder(JoinPath(root_, u"instructions")));
  EXPECT_EQ(InstructionFolder(), JoinPath(JoinPath(root_, u"instructions"), u"global"));
  EXPECT_TRUE(IsFolder(InstructionFolder()));
}

TEST_F(LocalStore, EveryCallMakesWhatIsMissing) {
  const Wide folder = GlossaryFolder();
  std::filesystem::remove_all(std::filesystem::path(ParentPath(folder)));
  EXPECT_EQ(GlossaryFolder(), folder);
  EXPECT_TRUE(IsFolder(folder));
}

TEST_F(LocalStore, AFolderThatCannotBeMadeIsNamedAllTheSame) {
  StoreRoot();
  ASSERT_TRUE(AppendToFile(JoinPath(root_, u"glossaries"), "a file stands here"));
  EXPECT_EQ(GlossaryFolder(), JoinPath(JoinPath(root_, u"glossaries"), u"global"));
  EXPECT_FALSE(IsFolder(GlossaryFolder()));
}

TEST_F(LocalStore, WithoutARootTheFoldersStandAtTheDrives) {
  const StoreFolder folder = FolderBelow(u"", u"glossaries");
  EXPECT_EQ(folder.kind, JoinPath(u"", u"glossaries"));
  EXPECT_EQ(folder.files, JoinPath(folder.kind, u"global"));
}

}  // namespace

}  // namespace quillmarch::addin
