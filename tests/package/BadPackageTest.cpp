// Files that lie, hide or overwhelm: each is refused in one sentence, early and cheaply.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "host/package/Package.h"
#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

// What went wrong; empty when nothing did.
template <typename T>
std::string WordsOf(const Result<T>& result) {
  return result ? std::string() : result.error().words;
}

using Entries = std::vector<BuiltEntry>;

constexpr std::size_t kMostMegabytes = 128;

std::string RefusalOf(const std::string& bytes) {
  const TempFolder folder;
  return WordsOf(Package::Open(folder.Put("bad.pptx", bytes)));
}

std::string RefusalWith(const BuiltEntry& entry) {
  Entries entries = MinimalEntries();
  entries.push_back(entry);
  return RefusalOf(BuildZip(entries));
}

std::string ReadRefusal(const BuiltEntry& entry) {
  const TempFolder folder;
  Entries entries = MinimalEntries();
  entries.push_back(entry);
  const auto opened = Package::Open(folder.Put("bad.pptx", BuildZip(entries)));
  if (!opened.ok()) return "did not open: " + opened.error().words;
  return WordsOf(opened.value()->ReadXmlPart(entry.name));
}

std::string Repeat(const std::string& text, std::size_t times) {
  std::string result;
  result.reserve(text.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

std::string Directory(const std::string& stream) {
  std::string entry;
  for (const char c : stream) entry += {c, '\0'};
  entry.resize(64);
  entry += static_cast<char>((stream.size() + 1) * 2);
  entry += '\0';
  entry += '\2';
  entry.resize(128);
  std::string file = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  file.resize(512);
  return file + entry + std::string(384, '\0');
}

// The most memory that the process held since ForgetPeak, in megabytes above what it holds now.
std::size_t StatusKilobytes(const std::string& key) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    std::size_t value = 0;
    if (word == key && status >> value) return value;
  }
  return 0;
}

template <typename Work>
std::size_t PeakMegabytes(const Work& work) {
  std::ofstream("/proc/self/clear_refs") << "5";
  const std::size_t before = StatusKilobytes("VmRSS:");
  work();
  return (StatusKilobytes("VmHWM:") - before) >> 10;
}

}  // namespace

TEST(BadPackage, WhatIsNoZipIsToldSo) {
  EXPECT_EQ(RefusalOf("Hello, this is a text and no archive at all."),
            "The file is not a zip archive, so it is not a .pptx file.");
  EXPECT_EQ(RefusalOf("P"), "The file is not a zip archive, so it is not a .pptx file.");
  EXPECT_EQ(RefusalOf(std::string(100000, '\0')),
            "The file is not a zip archive, so it is not a .pptx file.");
}

TEST(BadPackage, AnEmptyFileIsToldSo) {
  EXPECT_EQ(RefusalOf(""), "The file is empty.");
}

TEST(BadPackage, ATruncatedFileIsToldSo) {
  const std::string whole = BuildZip(MinimalEntries());
  for (const std::size_t cut : {whole.size() - 1, whole.size() - 22, whole.size() / 2}) {
    EXPECT_EQ(RefusalOf(whole.substr(0, cut)),
              "The file is cut off or damaged: the zip directory at its end is missing.")
        << cut;
  }
}

TEST(BadPackage, EveryTruncationIsRefused) {
  const std::string whole = BuildZip(MinimalEntries());
  for (std::size_t cut = 0; cut < whole.size(); ++cut) {
    EXPECT_NE(RefusalOf(whole.substr(0, cut)), "") << cut;
  }
}

TEST(BadPackage, WhatIsNoRegularFileIsToldSo) {
  const TempFolder folder;
  EXPECT_EQ(Package::Open(folder.Path("")).error().words, "It is a folder, not a file.");
  EXPECT_EQ(Package::Open("/dev/zero").error().words, "It is not a regular file.");
  ASSERT_EQ(mkfifo(folder.Path("fifo").c_str(), 0600), 0);
  EXPECT_EQ(Package::Open(folder.Path("fifo")).error().words, "It is not a regular file.");
  EXPECT_EQ(Package::Open(folder.Path("none.pptx")).error().words, "No such file.");
}

TEST(BadPackage, CompoundFilesAreToldApart) {
  EXPECT_EQ(RefusalOf(Directory("EncryptedPackage")),
            "The file is password-protected (encrypted); remove its password in PowerPoint first.");
  EXPECT_EQ(RefusalOf(Directory("PowerPoint Document")),
            "The file is an old .ppt file; save it as .pptx in PowerPoint first.");
  EXPECT_EQ(RefusalOf(Directory("WordDocument")),
            "The file is an OLE compound file, not a .pptx file.");
}

TEST(BadPackage, ContentTypesHaveToBeThereAndWhole) {
  Entries entries = MinimalEntries();
  entries.erase(entries.begin());
  EXPECT_EQ(RefusalOf(BuildZip(entries)),
            "The part [Content_Types].xml is missing, so it is not a .pptx file.");
  entries = MinimalEntries();
  entries[0].content = "<Types/>";
  EXPECT_EQ(RefusalOf(BuildZip(entries)),
            "The part [Content_Types].xml cannot be read: it is not a content types part.");
  entries[0].content = "<Types";
  EXPECT_NE(RefusalOf(BuildZip(entries)).find("not good XML"), std::string::npos);
  EXPECT_NE(RefusalOf(BuildZip({})), "");
}

TEST(BadPackage, NamesThatLeadElsewhereAreRefused) {
  for (const std::string name : {"/etc/passwd", "../x.xml", "ppt/../../x.xml", "ppt\\x.xml",
                                 "C:/x.xml", "ppt/%2e%2e/%2E%2E/x", "../"}) {
    const std::string sentence = RefusalWith({.name = name, .content = "x"});
    EXPECT_NE(sentence.find("The zip entry \"" + name), std::string::npos) << sentence;
  }
}

TEST(BadPackage, OneNameTwiceIsRefused) {
  EXPECT_EQ(RefusalWith({.name = "ppt/presentation.xml", .content = "<a/>"}),
            "The archive contains the part ppt/presentation.xml twice.");
  EXPECT_EQ(RefusalWith({.name = "PPT/presentation.xml", .content = "<a/>"}),
            "The parts ppt/presentation.xml and PPT/presentation.xml have the same name.");
  EXPECT_EQ(RefusalWith({.name = "ppt/presentation%2Exml", .content = "<a/>"}),
            "The parts ppt/presentation.xml and ppt/presentation%2Exml have the same name.");
}

TEST(BadPackage, EncryptedEntriesAreRefused) {
  EXPECT_EQ(RefusalWith({.name = "ppt/media/a.png", .content = "x", .flags = 1}),
            "The part ppt/media/a.png is encrypted.");
  const std::string aes("\x01\x99\x07\x00\x02\x00\x41\x45\x03\x08\x00", 11);
  EXPECT_EQ(RefusalWith({.name = "ppt/media/a.png",
                         .content = std::string(40, 'x'),
                         .flags = 1,
                         .method = 99,
                         .extra = aes}),
            "The part ppt/media/a.png is encrypted.");
}

TEST(BadPackage, AnAesEntryWithoutItsDescriptionIsRefused) {
  EXPECT_NE(RefusalWith({.name = "ppt/media/a.png", .content = "x", .flags = 1, .method = 99}), "");
}

TEST(BadPackage, AnUnknownMethodIsToldWhenThePartIsRead) {
  EXPECT_EQ(ReadRefusal({.name = "a.xml", .content = "<a/>", .stored = true, .method = 98}),
            "The part a.xml cannot be read: it is compressed by a method (98) that is not "
            "supported.");
}

TEST(BadPackage, AWrongChecksumIsSeenWhenThePartIsRead) {
  EXPECT_EQ(ReadRefusal({.name = "a.xml", .content = "<a/>", .wrongCrc = true}),
            "The part a.xml cannot be read: its checksum is wrong.");
  EXPECT_EQ(ReadRefusal({.name = "a.xml", .content = "<a/>", .stored = true, .wrongCrc = true}),
            "The part a.xml cannot be read: its checksum is wrong.");
}

TEST(BadPackage, AWrongDeclaredSizeIsSeenWhenThePartIsRead) {
  EXPECT_EQ(ReadRefusal({.name = "a.xml", .content = "<a>text</a>", .declaredSize = 4}),
            "The part a.xml cannot be read: it inflates to more than the 4 bytes it declares.");
  EXPECT_EQ(ReadRefusal({.name = "a.xml", .content = "<a/>", .declaredSize = 9}),
            "The part a.xml cannot be read: it inflates to less than the 9 bytes it declares.");
}

TEST(BadPackage, ABombIsRefusedBeforeMemoryIsTaken) {
  const TempFolder folder;
  Entries entries = MinimalEntries();
  entries.push_back({.name = "ppt/slides/slide1.xml", .content = std::string(300 << 20, ' ')});
  const std::string path = folder.Put("bomb.pptx", BuildZip(entries));
  std::string().swap(entries.back().content);
  std::string sentence;
  const std::size_t peak = PeakMegabytes([&] { sentence = WordsOf(Package::Open(path)); });
  EXPECT_EQ(sentence,
            "The part ppt/slides/slide1.xml would inflate to more than 200 times its size, as a "
            "zip bomb does.");
  EXPECT_LT(peak, kMostMegabytes);
}

TEST(BadPackage, ABombThatDeclaresLittleIsRefusedBeforeItInflates) {
  const TempFolder folder;
  Entries entries = MinimalEntries();
  entries.push_back({.name = "a.xml", .content = std::string(30 << 20, ' '), .declaredSize = 1000});
  entries.push_back({.name = "b.xml", .content = std::string(90 << 20, ' '), .declaredSize = 1000});
  const std::string path = folder.Put("liar.pptx", BuildZip(entries));
  std::string().swap(entries[3].content);
  std::string().swap(entries[4].content);
  const std::size_t peak = PeakMegabytes([&] {
    const auto opened = Package::Open(path);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
    EXPECT_EQ(opened.value()->ReadXmlPart("a.xml").error().words,
              "The part a.xml cannot be read: it inflates to more than the 1000 bytes it "
              "declares.");
    EXPECT_EQ(opened.value()->ReadXmlPart("b.xml").error().words,
              "The part b.xml cannot be read: it has far more data than the 1000 bytes it "
              "declares.");
  });
  EXPECT_LT(peak, kMostMegabytes);
}

TEST(BadPackage, AnEmptyPictureThatPacksWellIsNoBomb) {
  EXPECT_EQ(RefusalWith({.name = "ppt/media/white.bmp", .content = std::string(4 << 20, '\xFF')}),
            "");
}

TEST(BadPackage, DeclaredSizesBeyondAllBoundsAreRefused) {
  EXPECT_NE(RefusalWith({.name = "ppt/media/a.bin", .content = "x", .declaredSize = 0xFFFFFFF0}),
            "");
  PackageLimits limits;
  limits.maxPackageBytes = 1 << 20;
  const TempFolder folder;
  Entries entries = MinimalEntries();
  for (int i = 0; i < 3; ++i) {
    entries.push_back(
        {.name = "ppt/media/" + std::to_string(i), .content = std::string(500000, ' ')});
  }
  const std::string sentence =
      WordsOf(Package::Open(folder.Put("a.pptx", BuildZip(entries)), limits));
  EXPECT_EQ(sentence, "The file would inflate to more than 1 MB, as a zip bomb does.");
}

TEST(BadPackage, AnAbsurdNumberOfEntriesIsRefused) {
  PackageLimits limits;
  limits.maxEntries = 2;
  const TempFolder folder;
  EXPECT_EQ(Package::Open(folder.Put("a.pptx", BuildZip(MinimalEntries())), limits).error().words,
            "The zip archive has more than 2 entries.");
}

TEST(BadPackage, ADirectoryThatDeclaresMillionsOfEntriesIsRefusedCheaply) {
  std::string end = "PK\6\6";
  const auto put = [&end](std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) {
      end += static_cast<char>(value & 0xFF);
      value >>= 8;
    }
  };
  const std::string whole = BuildZip(MinimalEntries());
  const std::string front = whole.substr(0, whole.size() - 22);
  put(44, 8);
  put(45, 2);
  put(45, 2);
  put(0, 8);
  put(4000000000ull, 8);
  put(4000000000ull, 8);
  put(46 * 4000000000ull, 8);
  put(0, 8);
  end += "PK\6\7";
  put(0, 4);
  put(front.size(), 8);
  put(1, 4);
  end += "PK\5\6";
  put(0, 4);
  put(0xFFFF, 2);
  put(0xFFFF, 2);
  put(0xFFFFFFFF, 4);
  put(0xFFFFFFFF, 4);
  put(0, 2);
  std::string sentence;
  const std::size_t peak = PeakMegabytes([&] { sentence = RefusalOf(front + end); });
  EXPECT_EQ(sentence, "The zip archive has more than 65535 entries.");
  EXPECT_LT(peak, kMostMegabytes);
}

TEST(BadPackage, DeepNestingAndTooManyElementsAreRefused) {
  EXPECT_NE(ReadRefusal({.name = "a.xml", .content = Repeat("<a>", 100000), .stored = true})
                .find("nested too deeply"),
            std::string::npos);
  std::string sentence;
  const TempFolder folder;
  Entries entries = MinimalEntries();
  entries.push_back(
      {.name = "a.xml", .content = "<a>" + Repeat("<b/>", 1100000) + "</a>", .stored = true});
  entries.push_back(
      {.name = "b.xml", .content = "<a>" + Repeat("<b/>", 10000000) + "</a>", .stored = true});
  const std::string path = folder.Put("many.pptx", BuildZip(entries));
  std::string().swap(entries[3].content);
  std::string().swap(entries[4].content);
  const std::size_t peak = PeakMegabytes([&] {
    const auto opened = Package::Open(path);
    ASSERT_TRUE(opened.ok()) << opened.error().words;
    sentence = WordsOf(opened.value()->ReadXmlPart("a.xml"));
    EXPECT_EQ(opened.value()->ReadXmlPart("b.xml").error().words,
              "The part b.xml cannot be read: it is larger than 32 MB.");
  });
  EXPECT_NE(sentence.find("too many elements"), std::string::npos) << sentence;
  EXPECT_LT(peak, kMostMegabytes);
}

TEST(BadPackage, AnExternalEntityIsRefused) {
  EXPECT_NE(ReadRefusal({.name = "a.xml",
                         .content = "<!DOCTYPE a [<!ENTITY x SYSTEM "
                                    "\"file:///etc/passwd\">]><a>&x;</a>"})
                .find("DOCTYPE"),
            std::string::npos);
}

TEST(BadPackage, DirectoryAndEntriesHaveToAgree) {
  std::string bytes = BuildZip(MinimalEntries());
  const std::size_t local = bytes.find("ppt/presentation.xml");
  bytes[local] = 'q';
  EXPECT_EQ(RefusalOf(bytes),
            "The zip entry \"ppt/presentation.xml\" has another name before its data.");
}

TEST(BadPackage, EveryFlippedByteIsRefusedOrHarmless) {
  const TempFolder folder;
  const std::string whole = BuildZip(MinimalEntries());
  for (std::size_t at = 0; at < whole.size(); ++at) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(bytes[at] ^ 0x55);
    const auto opened = Package::Open(folder.Put("flipped.pptx", bytes));
    if (!opened.ok()) {
      EXPECT_NE(opened.error().words, "");
      continue;
    }
    for (const std::string& name : opened.value()->PartNames()) {
      static_cast<void>(opened.value()->ReadXmlPart(name));
    }
  }
}

}  // namespace quillmarch::host
