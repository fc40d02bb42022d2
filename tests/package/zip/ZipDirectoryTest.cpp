#include "host/package/zip/ZipDirectory.h"

#include <gtest/gtest.h>

#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

constexpr std::uint16_t kNameIsUtf8 = 0x800;

// The bytes behind a writing of `bytes` whose flags were made to agree.
std::string Agreed(const std::string& bytes, bool expected = true) {
  const TempFolder folder;
  OutputFile output;
  EXPECT_EQ(output.Open(folder.Path("a.zip")), "");
  output.Write(0, bytes.data(), bytes.size());
  EXPECT_EQ(AgreeEntryFlags(output), expected);
  EXPECT_EQ(output.Commit(), "");
  return TempFolder::Bytes(folder.Path("a.zip"));
}

std::string Archive(const char* name, std::uint16_t flags) {
  return BuildZip(
      {{.name = "first", .content = "1"}, {.name = name, .content = "2", .flags = flags}});
}

// Where the directory has the high byte of the flags of the entry that the name stands in last.
std::size_t ListedFlags(const std::string& bytes, const std::string& name) {
  return bytes.rfind(name) - 46 + 9;
}

}  // namespace

TEST(AgreeEntryFlags, TheDirectoryFollowsTheHeaderBeforeTheData) {
  const std::string good = Archive("second", kNameIsUtf8);
  std::string bad = good;
  bad[ListedFlags(bad, "second")] = 0;
  ASSERT_NE(bad, good);
  EXPECT_EQ(Agreed(bad), good);
  const std::string plain = Archive("second", 0);
  bad = plain;
  bad[ListedFlags(bad, "second")] = 8;
  EXPECT_EQ(Agreed(bad), plain);
}

TEST(AgreeEntryFlags, WhatAgreesAndNamesBeyondAsciiStayAsTheyAre) {
  const std::string good = Archive("second", kNameIsUtf8);
  EXPECT_EQ(Agreed(good), good);
  std::string wide = Archive("s\xC3\xA9", kNameIsUtf8);
  wide[ListedFlags(wide, "s\xC3\xA9")] = 0;
  EXPECT_EQ(Agreed(wide), wide);
}

TEST(AgreeEntryFlags, WhatIsNoArchiveIsToldAndStays) {
  for (const std::string& bytes :
       {std::string(), std::string(100, 'x'), Archive("a", 0).substr(3)}) {
    EXPECT_EQ(Agreed(bytes, false), bytes);
  }
}

}  // namespace quillmarch::host
