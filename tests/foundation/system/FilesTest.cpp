#include "foundation/system/Files.h"

#include <algorithm>

#include "foundation/system/FileBytes.h"
#include "gtest/gtest.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

TEST(Paths, ParentAndLastComponentPartAtTheLastSeparator) {
  EXPECT_EQ(u"a/b", ParentPath(u"a/b/c"));
  EXPECT_EQ(u"c", LastComponent(u"a/b/c"));
  EXPECT_EQ(u"", ParentPath(u"c"));
  EXPECT_EQ(u"c", LastComponent(u"c"));
  EXPECT_EQ(u"a", ParentPath(JoinPath(u"a", u"b")));
}

TEST(AppendToFile, AMissingFileIsMadeAndAnOldOneGoesOn) {
  const TempFolder folder;
  const Wide path = folder / u"a\u4e2d.txt";
  EXPECT_TRUE(AppendToFile(path, "one"));
  EXPECT_TRUE(AppendToFile(path, std::string_view("\0two", 4)));
  EXPECT_EQ(std::string("one\0two", 7), ReadBytes(path));
  EXPECT_FALSE(AppendToFile(folder / u"missing/a.txt", "x"));
}

TEST(ReadWholeFile, AFolderOrAMissingFileCannotBeRead) {
  const TempFolder folder;
  std::string bytes = "old";
  EXPECT_FALSE(ReadWholeFile(folder.wide(), bytes));
  EXPECT_EQ("", bytes);
  EXPECT_FALSE(ReadWholeFile(folder / u"missing", bytes));
}

TEST(ReadWholeFile, AFileLongerThanOneReadComesWhole) {
  const TempFolder folder;
  std::string large(200001, 'x');
  large[100000] = '\0';
  WriteBytes(folder / u"a", large);
  EXPECT_EQ(large, ReadBytes(folder / u"a"));
}

TEST(ReplaceWholeFile, TheNewContentStandsInTheOldPlaceAndNothingBesideIt) {
  const TempFolder folder;
  const Wide path = folder / u"a.txt";
  WriteBytes(path + u".tmp", "left from a crash");
  EXPECT_TRUE(ReplaceWholeFile(path, "first"));
  EXPECT_EQ("first", ReadBytes(path));
  EXPECT_TRUE(ReplaceWholeFile(path, "second"));
  EXPECT_EQ("second", ReadBytes(path));
  EXPECT_EQ(1u, ListFolder(folder.wide()).size());
}

TEST(ReplaceWholeFile, AFailureLeavesTheOldFileAndNoOther) {
  const TempFolder folder;
  const Wide path = folder / u"taken";
  EXPECT_TRUE(CreateFolder(path));
  WriteBytes(path + Wide(1, kPathSeparator) + u"child", "x");
  EXPECT_FALSE(ReplaceWholeFile(path, "new"));
  EXPECT_FALSE(Exists(path + u".tmp"));
  EXPECT_TRUE(Exists(path));
}

TEST(ListFolder, FilesAndFoldersAreListedWithTheirFacts) {
  const TempFolder folder;
  WriteBytes(folder / u"a.txt", "12345");
  CreateFolder(folder / u"sub");
  auto entries = ListFolder(folder.wide());
  std::sort(entries.begin(), entries.end(),
            [](const FileFacts& a, const FileFacts& b) { return a.name < b.name; });
  ASSERT_EQ(2u, entries.size());
  EXPECT_EQ(u"a.txt", entries[0].name);
  EXPECT_EQ(5u, entries[0].size);
  EXPECT_FALSE(entries[0].isFolder);
  EXPECT_EQ(u"sub", entries[1].name);
  EXPECT_TRUE(entries[1].isFolder);
  EXPECT_TRUE(ListFolder(folder / u"missing").empty());
}

TEST(ReadFileFacts, TheLastWriteIsOnTheClockOfNow) {
  constexpr std::uint64_t kHour = 36000000000;  // 100 ns
  const TempFolder folder;
  WriteBytes(folder / u"a.txt", "12345");
  FileFacts facts;
  ASSERT_TRUE(ReadFileFacts(folder / u"a.txt", facts));
  EXPECT_EQ(u"a.txt", facts.name);
  EXPECT_EQ(5u, facts.size);
  const std::uint64_t now = FileTimeNow();
  EXPECT_LT(now - kHour, facts.lastWrite);
  EXPECT_GT(now + kHour, facts.lastWrite);
  EXPECT_FALSE(ReadFileFacts(folder / u"missing", facts));
}

TEST(MoveOneFile, WhatStandsAtTheTargetIsReplaced) {
  const TempFolder folder;
  WriteBytes(folder / u"a", "a");
  WriteBytes(folder / u"b", "b");
  EXPECT_TRUE(MoveOneFile(folder / u"a", folder / u"b"));
  EXPECT_FALSE(Exists(folder / u"a"));
  EXPECT_EQ("a", ReadBytes(folder / u"b"));
  EXPECT_FALSE(MoveOneFile(folder / u"a", folder / u"c"));
}

TEST(CreateFolder, AnOldFolderIsGoodAndAFileInItsPlaceIsNot) {
  const TempFolder folder;
  EXPECT_TRUE(CreateFolder(folder.wide()));
  EXPECT_TRUE(CreateFolder(folder / u"new"));
  WriteBytes(folder / u"file", "x");
  EXPECT_FALSE(CreateFolder(folder / u"file"));
  EXPECT_FALSE(CreateFolder(u""));
}

}  // namespace quillmarch::addin
