// A saved archive keeps every byte that no edit touched.
#include <gtest/gtest.h>

#include "host/package/Package.h"
#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

constexpr char kEdited[] = "ppt/presentation.xml";
constexpr std::size_t kEndBytes = 22;

std::string Number(std::uint64_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xFF);
  return text;
}

// The archive's bytes after an edit of one part.
std::string Saved(const std::string& bytes, const std::string& edit = "<p:presentation/>") {
  const TempFolder folder;
  const auto opened = Package::Open(folder.Put("a.pptx", bytes));
  if (!opened.ok()) return opened.error().words;
  opened.value()->PutPart(kEdited, edit);
  const auto saved = opened.value()->Save(folder.Path("b.pptx"));
  return saved.ok() ? TempFolder::Bytes(folder.Path("b.pptx")) : saved.error().words;
}

std::vector<BuiltEntry> Entries(const BuiltEntry& last) {
  std::vector<BuiltEntry> entries = MinimalEntries();
  entries.push_back(last);
  return entries;
}

}  // namespace

TEST(ZipCopy, ACopiedEntryKeepsItsHeaderWhateverItSays) {
  BuiltEntry odd{.name = "ppt/media/a.bin", .content = "media, media, media", .stored = true};
  odd.flags = 0x0806;
  odd.extra = std::string("\x20\xA2\x04\x00pad!", 8);
  const std::string before = BuildZip(Entries(odd));
  const std::string after = Saved(before);
  const std::size_t from = before.find(odd.name) - 30;
  const std::size_t bytes = 30 + odd.name.size() + odd.extra.size() + odd.content.size();
  EXPECT_NE(after.find(before.substr(from, bytes)), std::string::npos);
}

TEST(ZipCopy, ACommentAndWhatFollowsTheArchiveStay) {
  std::string before = BuildZip(MinimalEntries());
  before.replace(before.size() - 2, 2, Number(7, 2));
  before += "comment and more";
  const std::string after = Saved(before);
  EXPECT_TRUE(after.ends_with("comment and more"));
  EXPECT_NE(after, before);
}

TEST(ZipCopy, TheOrderOfEntriesStaysAlsoWhereTheDirectoryHasAnother) {
  const std::string before = BuildZip(MinimalEntries());
  const std::size_t start = before.find("PK\1\2");
  const std::size_t second = before.find("PK\1\2", start + 1);
  const std::size_t end = before.size() - kEndBytes;
  const std::string turned = before.substr(0, start) + before.substr(second, end - second) +
                             before.substr(start, second - start) + before.substr(end);
  const std::string after = Saved(turned);
  EXPECT_LT(after.find("[Content_Types].xml"), after.find("_rels/.rels"));
  EXPECT_GT(after.rfind("[Content_Types].xml"), after.rfind("_rels/.rels"));
}

TEST(ZipCopy, SizesThatFollowedTheDataOfAnEditedEntryGoIntoItsHeader) {
  std::vector<BuiltEntry> entries = MinimalEntries();
  entries.back().flags = 8;
  std::string before = BuildZip(entries);
  const std::size_t end = before.find("PK\1\2");
  // The descriptor, and the directory that much later.
  before.insert(end, "PK\7\10" + std::string(12, 'd'));
  before.replace(before.size() - 6, 4, Number(end + 16, 4));
  const std::string after = Saved(before);
  EXPECT_EQ(after.find("PK\7\10"), std::string::npos);
  const std::size_t name = after.find(kEdited);
  EXPECT_EQ(after[name - 30 + 6], 0);
  EXPECT_EQ(after.substr(name - 30 + 22, 4), Number(17, 4));
}

TEST(ZipCopy, A64BitEndRecordFollowsTheDirectory) {
  std::string before = BuildZip(MinimalEntries());
  const std::size_t end = before.size() - kEndBytes;
  const std::size_t start = before.find("PK\1\2");
  const std::string record = "PK\6\6" + Number(44, 8) + Number(45, 2) + Number(45, 2) +
                             Number(0, 8) + Number(3, 8) + Number(3, 8) + Number(end - start, 8) +
                             Number(start, 8);
  const std::string locator = "PK\6\7" + Number(0, 4) + Number(end, 8) + Number(1, 4);
  before.insert(end, record + locator);
  before.replace(before.size() - 10, 8, std::string(8, '\xFF'));
  const std::string after = Saved(before);
  const TempFolder folder;
  const auto again = Package::Open(folder.Put("c.pptx", after));
  ASSERT_TRUE(again.ok()) << again.error().words;
  EXPECT_EQ(again.value()->ReadPart(kEdited).value(), "<p:presentation/>");
}

TEST(ZipCopy, A64BitSizeOfAnEditedEntryGivesWayToTheShortOne) {
  std::vector<BuiltEntry> entries = MinimalEntries();
  const std::uint64_t size = entries.back().content.size();
  entries.back().stored = true;
  entries.back().extra = Number(1, 2) + Number(16, 2) + Number(size, 8) + Number(size, 8);
  std::string before = BuildZip(entries);
  for (const std::size_t at : {before.find(kEdited) - 30 + 18, before.rfind(kEdited) - 46 + 20}) {
    before.replace(at, 8, std::string(8, '\xFF'));
  }
  const TempFolder folder;
  const auto again = Package::Open(folder.Put("c.pptx", Saved(before)));
  ASSERT_TRUE(again.ok()) << again.error().words;
  EXPECT_EQ(again.value()->ReadPart(kEdited).value(), "<p:presentation/>");
  EXPECT_LT(Saved(before).size(), before.size());
}

TEST(ZipCopy, ACopiedPartThatDoesNotMatchItsChecksumIsRefusedByName) {
  for (const bool stored : {true, false}) {
    for (const std::size_t size : {std::size_t{9}, std::size_t{20} << 20}) {
      BuiltEntry bad{.name = "ppt/media/a.bin", .content = {}, .stored = stored, .wrongCrc = true};
      for (std::size_t i = 0; i < size; ++i) bad.content += static_cast<char>(i * i >> 3);
      EXPECT_EQ(Saved(BuildZip(Entries(bad))),
                "The part ppt/media/a.bin does not match its checksum: the deck is damaged, or "
                "another program changed it meanwhile.")
          << stored << size;
      bad.wrongCrc = false;
      EXPECT_TRUE(Saved(BuildZip(Entries(bad))).starts_with("PK")) << stored << size;
    }
  }
}

}  // namespace quillmarch::host
