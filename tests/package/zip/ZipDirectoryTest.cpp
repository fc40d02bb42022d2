// What a zip directory may say, and what it may not.
#include "host/package/zip/ZipDirectory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include "host/package/Package.h"
#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

constexpr std::size_t kEndBytes = 22;
constexpr std::size_t kMostEntries = 100;
// Fields counted from an entry's name: in the header before the data, and in the directory.
constexpr std::size_t kHeaderFlags = 30 - 6;
constexpr std::size_t kHeaderTime = 30 - 10;
constexpr std::size_t kHeaderMethod = 30 - 8;
constexpr std::size_t kHeaderCrc = 30 - 14;
constexpr std::size_t kHeaderPacked = 30 - 18;
constexpr std::size_t kHeaderSize = 30 - 22;
constexpr std::size_t kRecordOffset = 46 - 42;

std::string Number(std::uint64_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xFF);
  return text;
}

std::string Two() {
  return BuildZip({{.name = "first", .content = "one", .stored = true},
                   {.name = "second", .content = "two and more", .stored = true}});
}

std::string Patched(std::string bytes, std::size_t at, const std::string& by) {
  return bytes.replace(at, by.size(), by);
}

// Empty when the archive is read.
std::string FaultOf(const std::string& bytes) {
  const TempFolder folder;
  InputFile file;
  EXPECT_EQ(file.Open(folder.Put("a.zip", bytes)), "");
  ZipDirectory directory;
  return ReadZipDirectory(file, kMostEntries, directory);
}

// In `bytes`, of the name before the entry's data, and of the one in the directory.
std::size_t InHeader(const std::string& bytes, const std::string& name) {
  return bytes.find(name);
}
std::size_t InRecord(const std::string& bytes, const std::string& name) {
  return bytes.rfind(name);
}

}  // namespace

TEST(ZipDirectory, EntriesAreReadInItsOrder) {
  const TempFolder folder;
  InputFile file;
  ASSERT_EQ(file.Open(folder.Put("a.zip", Two())), "");
  ZipDirectory directory;
  ASSERT_EQ(ReadZipDirectory(file, kMostEntries, directory), "");
  ASSERT_EQ(directory.entries.size(), 2U);
  EXPECT_EQ(directory.entries[1].name, "second");
  EXPECT_EQ(directory.entries[1].size, 12U);
  EXPECT_EQ(directory.entries[1].dataAt, Two().find("two and more"));
}

TEST(ZipDirectory, AnotherTimeOrChecksumBeforeTheDataIsNoReasonToRefuse) {
  const std::string bytes = Two();
  EXPECT_EQ(FaultOf(Patched(bytes, InHeader(bytes, "second") - kHeaderTime, "\1\2\3\4")), "");
  EXPECT_EQ(FaultOf(Patched(bytes, InHeader(bytes, "second") - kHeaderCrc, "\1\2\3\4")), "");
}

TEST(ZipDirectory, BytesAfterTheArchiveAreNoReasonToRefuse) {
  EXPECT_EQ(FaultOf(Two() + "x"), "");
  EXPECT_EQ(FaultOf(Two() + std::string(1000, '\0')), "");
}

TEST(ZipDirectory, SizesThatFollowTheDataMayBeAbsentBeforeIt) {
  std::string bytes = Two();
  const std::size_t name = InHeader(bytes, "second");
  bytes = Patched(bytes, name - kHeaderFlags, Number(8, 2));
  EXPECT_EQ(FaultOf(Patched(bytes, name - kHeaderPacked, Number(0, 8))), "");
  EXPECT_NE(FaultOf(Patched(bytes, name - kHeaderPacked, Number(5, 4))), "");
}

TEST(ZipDirectory, TwoSizesForOneEntryAreRefused) {
  const std::string bytes = Two();
  const std::string expected =
      "The zip entry \"second\" has two different sizes, in its header and in the directory.";
  for (const std::size_t field : {kHeaderPacked, kHeaderSize}) {
    const std::size_t at = InHeader(bytes, "second") - field;
    EXPECT_EQ(FaultOf(Patched(bytes, at, Number(5, 4))), expected);
  }
}

TEST(ZipDirectory, TwoWaysOfPackingOneEntryAreRefused) {
  const std::string bytes = Two();
  const std::string expected =
      "The zip entry \"second\" is packed in two different ways, by its header and the directory.";
  const std::size_t name = InHeader(bytes, "second");
  EXPECT_EQ(FaultOf(Patched(bytes, name - kHeaderMethod, Number(8, 2))), expected);
  EXPECT_EQ(FaultOf(Patched(bytes, name - kHeaderFlags, Number(1, 2))), expected);
}

TEST(ZipDirectory, EntriesThatOverlapAreRefused) {
  const std::string bytes = Two();
  const std::size_t record = InRecord(bytes, "first");
  std::string longer = Patched(bytes, record - 46 + 20, Number(9, 4));
  longer = Patched(longer, record - 46 + 24, Number(9, 4));
  longer = Patched(longer, InHeader(bytes, "first") - kHeaderPacked, Number(9, 4) + Number(9, 4));
  EXPECT_EQ(FaultOf(longer), "The zip entry \"first\" overlaps with the one after it.");
  const std::size_t last = InRecord(bytes, "second");
  longer = Patched(bytes, last - 46 + 20, Number(13, 4) + Number(13, 4));
  longer =
      Patched(longer, InHeader(bytes, "second") - kHeaderPacked, Number(13, 4) + Number(13, 4));
  EXPECT_EQ(FaultOf(longer), "The zip entry \"second\" runs into the zip directory.");
}

TEST(ZipDirectory, AnEntryThatIsNotWhereTheDirectorySaysIsRefused) {
  const std::string bytes = Two();
  for (const std::uint64_t place : {1ULL, 5000ULL, 0xFFFFFFF0ULL}) {
    EXPECT_EQ(FaultOf(Patched(bytes, InRecord(bytes, "second") - kRecordOffset, Number(place, 4))),
              "The zip entry \"second\" is not where the zip directory says.")
        << place;
  }
}

TEST(ZipDirectory, ADirectoryThatTheEndRecordDoesNotDescribeIsRefused) {
  const std::string bytes = Two();
  const std::size_t end = bytes.size() - kEndBytes;
  const std::string expected =
      "The zip archive is cut off or damaged: its directory and its end record do not agree.";
  EXPECT_EQ(FaultOf(Patched(bytes, end + 10, Number(1, 2))), expected);
  EXPECT_EQ(FaultOf(Patched(bytes, end + 10, Number(3, 2))), expected);
  EXPECT_EQ(FaultOf(Patched(bytes, end + 12, Number(10, 4))), expected);
  EXPECT_EQ(FaultOf(Patched(bytes, end + 16, Number(10, 4))), expected);
  EXPECT_EQ(FaultOf(bytes.substr(0, end) + "gap" + bytes.substr(end)), expected);
}

TEST(ZipDirectory, ANulInANameIsRefusedInWords) {
  const TempFolder folder;
  std::vector<BuiltEntry> entries = MinimalEntries();
  entries.push_back({.name = std::string("ppt/media/a\0.png", 16), .content = "x"});
  EXPECT_EQ(Package::Open(folder.Put("a.pptx", BuildZip(entries))).error().words,
            "The zip entry \"ppt/media/a?.png\" has a control character in its name.");
}

TEST(ZipDirectory, AVersionOfTheFormatThatDoesNotExistIsRefused) {
  const std::string bytes = Two();
  EXPECT_EQ(FaultOf(Patched(bytes, InRecord(bytes, "second") - 46 + 6, Number(99, 2))),
            "The zip entry \"second\" needs a newer version of the zip format than there is.");
  EXPECT_EQ(FaultOf(Patched(bytes, InRecord(bytes, "second") - 46 + 6, Number(63, 2))), "");
}

TEST(ZipDirectory, ANumberThatIsElsewhereButNowhereIsRefused) {
  const std::string bytes = Two();
  EXPECT_EQ(
      FaultOf(Patched(bytes, InRecord(bytes, "second") - kRecordOffset, Number(0xFFFFFFFF, 4))),
      "The zip entry \"second\" has no place in the archive.");
  EXPECT_EQ(FaultOf(Patched(bytes, InRecord(bytes, "second") - 46 + 24, Number(0xFFFFFFFF, 4))),
            "The zip entry \"second\" has no size.");
}

// A hole in the file stands for the video's bytes.
TEST(ZipDirectory, AStoredVideoAboveTwoGigabytesIsNoBomb) {
  constexpr std::uint64_t kVideo = (2ULL << 30) + 12345;
  const TempFolder folder;
  std::vector<BuiltEntry> entries = MinimalEntries();
  entries.push_back({.name = "ppt/media/video.mp4", .content = "", .stored = true});
  std::string bytes = BuildZip(entries);
  const std::size_t header = InHeader(bytes, "ppt/media/video.mp4");
  const std::size_t data = header + 19;
  bytes = Patched(bytes, header - kHeaderPacked, Number(kVideo, 4) + Number(kVideo, 4));
  bytes = Patched(bytes, InRecord(bytes, "ppt/media/video.mp4") - 46 + 20,
                  Number(kVideo, 4) + Number(kVideo, 4));
  const std::size_t end = bytes.size() - kEndBytes;
  bytes = Patched(bytes, end + 16, Number(data + kVideo, 4));
  const std::string path = folder.Put("a.pptx", bytes.substr(0, data));
  ASSERT_EQ(truncate(path.c_str(), static_cast<off_t>(data + kVideo)), 0);
  std::ofstream(path, std::ios::binary | std::ios::app) << bytes.substr(data);
  const auto opened = Package::Open(path);
  ASSERT_TRUE(opened.ok()) << opened.error().words;
  EXPECT_FALSE(opened.value()->ReadPart("ppt/media/video.mp4").ok());
}

}  // namespace quillmarch::host
