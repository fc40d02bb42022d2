#include "host/package/Package.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <utility>

#include "host/package/OutputFile.h"
#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

using Entries = std::vector<BuiltEntry>;

// An opened minimal package in a folder of its own, with extra entries.
struct Opened {
  explicit Opened(const Entries& more = {}) {
    std::vector<BuiltEntry> entries = MinimalEntries();
    entries.insert(entries.end(), more.begin(), more.end());
    path = folder.Put("deck.pptx", BuildZip(entries));
    Result<std::unique_ptr<Package>> opened = Package::Open(path);
    if (opened) {
      package = *std::move(opened);
    } else {
      sentence = opened.error().words;
    }
  }

  TempFolder folder;
  std::string path;
  std::string sentence;
  std::unique_ptr<Package> package;
};

std::string Reread(const std::string& path, std::string_view part) {
  const auto opened = Package::Open(path);
  if (!opened.ok()) return opened.error().words;
  const auto bytes = opened.value()->ReadPart(part);
  return bytes.ok() ? bytes.value() : bytes.error().words;
}

constexpr char kSlide[] = "<s>A text that says enough to be compressed, enough, enough.</s>";

BuiltEntry Slide() {
  return {.name = "ppt/slides/slide1.xml", .content = kSlide};
}

}  // namespace

TEST(Package, GivesTheBytesOfItsParts) {
  Opened deck(Entries{Slide(), {.name = "ppt/media/a.bin", .content = "\x01\x02", .stored = true}});
  ASSERT_TRUE(deck.package) << deck.sentence;
  EXPECT_EQ(deck.package->ReadPart("ppt/slides/slide1.xml").value(), kSlide);
  EXPECT_EQ(deck.package->ReadXmlPart("ppt/slides/slide1.xml").value(), kSlide);
  EXPECT_EQ(deck.package->ReadPart("ppt/media/a.bin").value(), "\x01\x02");
}

TEST(Package, NamesCompareWithoutCaseAndEncoding) {
  Opened deck(Entries{{.name = "ppt/media/my%20picture.PNG", .content = "p"}});
  ASSERT_TRUE(deck.package) << deck.sentence;
  EXPECT_TRUE(deck.package->HasPart("PPT/media/My Picture.png"));
  EXPECT_FALSE(deck.package->HasPart("ppt/media/other.png"));
  EXPECT_EQ(deck.package->ReadPart("ppt/media/my picture.png").value(), "p");
}

TEST(Package, ListsItsPartsInTheArchivesOrderWithoutFolders) {
  Opened deck(Entries{{.name = "ppt/media/", .content = "", .stored = true}, Slide()});
  ASSERT_TRUE(deck.package) << deck.sentence;
  const std::vector<std::string> expected = {"[Content_Types].xml", "_rels/.rels",
                                             "ppt/presentation.xml", "ppt/slides/slide1.xml"};
  EXPECT_EQ(deck.package->PartNames(), expected);
  EXPECT_FALSE(deck.package->HasPart("ppt/media/"));
}

TEST(Package, AnEmptyPartIsRead) {
  Opened deck(
      Entries{{.name = "a.bin", .content = ""}, {.name = "b.bin", .content = "", .stored = true}});
  ASSERT_TRUE(deck.package) << deck.sentence;
  EXPECT_TRUE(deck.package->ReadPart("a.bin").ok());
  EXPECT_TRUE(deck.package->ReadPart("b.bin").ok());
}

TEST(Package, AMissingPartIsNamed) {
  Opened deck;
  const auto result = deck.package->ReadPart("ppt/slides/slide9.xml");
  EXPECT_FALSE(result.ok());
  EXPECT_EQ(result.error().words, "The part ppt/slides/slide9.xml is missing.");
}

TEST(Package, ContentTypesComeByOverrideThenByExtension) {
  Opened deck;
  EXPECT_EQ(deck.package->ContentType("ppt/Presentation.xml"),
            "application/vnd.openxmlformats-officedocument.presentationml.presentation.main+xml");
  EXPECT_EQ(deck.package->ContentType("ppt/slides/slide1.XML"), "application/xml");
  EXPECT_EQ(deck.package->ContentType("ppt/media/a.png"), "");
  EXPECT_EQ(deck.package->ContentType("ppt.xml/none"), "");
}

TEST(Package, RelationshipsOfAPartWithoutAnyAreNone) {
  Opened deck;
  const auto none = deck.package->Relationships("ppt/presentation.xml");
  EXPECT_TRUE(none.ok());
  EXPECT_TRUE(none.value().empty());
}

TEST(Package, RelationshipsAreResolved) {
  Opened deck(Entries{
      {.name = "ppt/_rels/presentation.xml.rels",
       .content = "<Relationships "
                  "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                  "<Relationship Id=\"a\" Type=\"t\" Target=\"slides/slide%201.xml\"/>"
                  "<Relationship Id=\"b\" Type=\"t\" Target=\"/docProps/app.xml\" "
                  "TargetMode=\"Internal\"/>"
                  "<Relationship Id=\"c\" Type=\"t\" Target=\"https://example.org/?a=1&amp;b\" "
                  "TargetMode=\"External\"/>"
                  "<Relationship Id=\"d\" Type=\"t\" Target=\"../../x\" TargetMode=\"External\"/>"
                  "<Relationship Id=\"e\" Type=\"t\" Target=\"mailto:a@b.c\"/>"
                  "</Relationships>"}});
  const auto result = deck.package->Relationships("ppt/presentation.xml");
  ASSERT_TRUE(result.ok()) << result.error().words;
  ASSERT_EQ(result.value().size(), 5u);
  EXPECT_EQ(result.value()[0].target, "ppt/slides/slide 1.xml");
  EXPECT_EQ(result.value()[1].target, "docProps/app.xml");
  EXPECT_EQ(result.value()[2].target, "https://example.org/?a=1&b");
  EXPECT_TRUE(result.value()[2].external);
  EXPECT_EQ(result.value()[3].target, "../../x");
  EXPECT_TRUE(result.value()[4].external);
}

TEST(Package, RelationshipsOfThePackageComeByTheEmptyName) {
  Opened deck;
  const auto result = deck.package->Relationships("");
  ASSERT_TRUE(result.ok());
  ASSERT_EQ(result.value().size(), 1u);
  EXPECT_EQ(result.value()[0].target, "ppt/presentation.xml");
}

TEST(Package, BrokenRelationshipsAreRefusedByName) {
  const std::string head =
      "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
  const std::string one = "<Relationship Id=\"a\" Type=\"t\" Target=\"x\"/>";
  const std::string bad[] = {
      head + "<Relationship Id=\"a\" Type=\"t\" Target=\"../../x\"/></Relationships>",
      head + one + one + "</Relationships>",
      head + "<Relationship Type=\"t\" Target=\"x\"/></Relationships>",
      head + "<Relationship Id=\"a\" Target=\"x\"/></Relationships>",
      "<Relationships/>",
      head,
  };
  for (const std::string& content : bad) {
    Opened deck(Entries{{.name = "ppt/_rels/presentation.xml.rels", .content = content}});
    const auto result = deck.package->Relationships("ppt/presentation.xml");
    EXPECT_FALSE(result.ok()) << content;
    EXPECT_NE(result.error().words.find("ppt/_rels/presentation.xml.rels"), std::string::npos);
  }
}

TEST(Package, Utf16PartsAreGivenAsUtf8AndStayUtf16) {
  const std::u16string text = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?><s>\u56FE\U0001F600</s>";
  for (const bool big : {false, true}) {
    std::string bytes = big ? "\xFE\xFF" : "\xFF\xFE";
    for (const char16_t unit : text) {
      const char high = static_cast<char>(unit >> 8);
      const char low = static_cast<char>(unit & 0xFF);
      bytes += big ? high : low;
      bytes += big ? low : high;
    }
    Opened deck(Entries{{.name = "ppt/slides/slide1.xml", .content = bytes}});
    const auto read = deck.package->ReadXmlPart("ppt/slides/slide1.xml");
    ASSERT_TRUE(read.ok()) << read.error().words;
    EXPECT_EQ(read.value(),
              "<?xml version=\"1.0\" encoding=\"UTF-16\"?><s>\xE5\x9B\xBE\xF0\x9F\x98\x80</s>");
    deck.package->PutPart("ppt/slides/slide1.xml", read.value());
    EXPECT_FALSE(deck.package->Edited());

    std::string edited = read.value();
    edited.insert(edited.find("</s>"), "!");
    deck.package->PutPart("ppt/slides/slide1.xml", edited);
    EXPECT_EQ(deck.package->ReadXmlPart("ppt/slides/slide1.xml").value(), edited);
    std::string expected = bytes;
    expected.insert(expected.size() - 8, big ? std::string("\0!", 2) : std::string("!\0", 2));
    EXPECT_EQ(deck.package->ReadPart("ppt/slides/slide1.xml").value(), expected);
  }
}

TEST(Package, AUtf8ByteOrderMarkStaysInFront) {
  Opened deck(Entries{{.name = "ppt/slides/slide1.xml", .content = "\xEF\xBB\xBF<s/>"}});
  EXPECT_EQ(deck.package->ReadXmlPart("ppt/slides/slide1.xml").value(), "\xEF\xBB\xBF<s/>");
}

TEST(PutPart, TheNewBytesAreReadAtOnce) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("PPT/slides/slide1.xml", "<s>new</s>");
  EXPECT_TRUE(deck.package->Edited());
  EXPECT_EQ(deck.package->ReadPart("ppt/slides/slide1.xml").value(), "<s>new</s>");
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>newer</s>");
  EXPECT_EQ(deck.package->ReadPart("ppt/slides/slide1.xml").value(), "<s>newer</s>");
}

TEST(PutPart, TheOriginalBytesTakeTheEditBack) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", kSlide);
  EXPECT_FALSE(deck.package->Edited());
  deck.package->PutPart("ppt/slides/slide1.xml", "<s/>");
  deck.package->PutPart("ppt/slides/slide1.xml", kSlide);
  EXPECT_FALSE(deck.package->Edited());
}

TEST(PutPart, AMissingPartMakesTheSaveFailAndNamesIt) {
  Opened deck;
  deck.package->PutPart("ppt/slides/slide7.xml", "<s/>");
  const auto saved = deck.package->Save(deck.folder.Path("out.pptx"));
  EXPECT_FALSE(saved.ok());
  EXPECT_EQ(saved.error().words, "The part ppt/slides/slide7.xml is missing.");
  EXPECT_EQ(deck.folder.Files(), 1u);
}

TEST(PutPart, ManyPartsArePackedWhileOthersArePut) {
  std::vector<BuiltEntry> slides;
  for (int i = 0; i < 300; ++i) {
    slides.push_back({.name = "ppt/slides/slide" + std::to_string(i) + ".xml", .content = kSlide});
  }
  Opened deck(slides);
  const auto content = [](int i) {
    std::string text = "<s>";
    for (int j = 0; j < 3000; ++j) text += std::to_string(i * j) + " ";
    return text + "</s>";
  };
  for (int i = 0; i < 300; ++i)
    deck.package->PutPart(slides[static_cast<std::size_t>(i)].name, content(i));
  EXPECT_EQ(deck.package->ReadPart(slides[299].name).value(), content(299));
  const std::string out = deck.folder.Path("out.pptx");
  const auto written = deck.package->Save(out);
  ASSERT_TRUE(written.ok()) << written.error().words;
  const auto saved = Package::Open(out);
  ASSERT_TRUE(saved.ok()) << saved.error().words;
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(saved.value()->ReadPart(slides[static_cast<std::size_t>(i)].name).value(),
              content(i));
  }
}

TEST(PutPart, APackageCanBeDroppedWhilePartsAreWaiting) {
  Opened deck(Entries{Slide()});
  for (int i = 0; i < 50; ++i) {
    deck.package->PutPart("ppt/slides/slide1.xml",
                          std::string(100000, static_cast<char>('a' + i % 26)));
  }
  deck.package.reset();
}

TEST(Save, WithoutEditsTheFileIsTheSame) {
  Opened deck(Entries{Slide()});
  const std::string out = deck.folder.Path("out.pptx");
  ASSERT_TRUE(deck.package->Save(out).ok());
  EXPECT_EQ(TempFolder::Bytes(out), TempFolder::Bytes(deck.path));
}

TEST(Save, WithoutEditsInPlaceNothingIsWritten) {
  Opened deck;
  struct stat before = {};
  struct stat after = {};
  stat(deck.path.c_str(), &before);
  ASSERT_TRUE(deck.package->Save(deck.path).ok());
  stat(deck.path.c_str(), &after);
  EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST(Save, OnlyTheEditedPartDiffers) {
  Opened deck(Entries{Slide(), {.name = "ppt/media/a.bin", .content = "media"}});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  const std::string out = deck.folder.Path("out.pptx");
  const auto saved = deck.package->Save(out);
  ASSERT_TRUE(saved.ok()) << saved.error().words;
  const auto again = Package::Open(out);
  ASSERT_TRUE(again.ok()) << again.error().words;
  EXPECT_EQ(again.value()->PartNames(), deck.package->PartNames());
  for (const std::string& name : deck.package->PartNames()) {
    EXPECT_EQ(again.value()->ReadPart(name).value(), deck.package->ReadPart(name).value()) << name;
  }
  EXPECT_EQ(again.value()->ReadPart("ppt/slides/slide1.xml").value(), "<s>new</s>");
}

TEST(Save, TwoSavesGiveTheSameBytes) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  ASSERT_TRUE(deck.package->Save(deck.folder.Path("one.pptx")).ok());
  ASSERT_TRUE(deck.package->Save(deck.folder.Path("two.pptx")).ok());
  EXPECT_EQ(TempFolder::Bytes(deck.folder.Path("one.pptx")),
            TempFolder::Bytes(deck.folder.Path("two.pptx")));
}

TEST(Save, TheEditedEntryKeepsItsTime) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  const std::string out = deck.folder.Path("out.pptx");
  ASSERT_TRUE(deck.package->Save(out).ok());
  const std::string bytes = TempFolder::Bytes(out);
  const std::size_t name = bytes.find("ppt/slides/slide1.xml");
  ASSERT_NE(name, std::string::npos);
  EXPECT_EQ(bytes.substr(name - 20, 4), std::string("\x21\x5A\x21\x5A"));
}

TEST(Save, ReadingAndEditingGoOnAfterwards) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  ASSERT_TRUE(deck.package->Save(deck.path).ok());
  EXPECT_EQ(deck.package->ReadPart("ppt/slides/slide1.xml").value(), "<s>new</s>");
  EXPECT_TRUE(deck.package->ReadXmlPart("ppt/presentation.xml").ok());
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>newer</s>");
  ASSERT_TRUE(deck.package->Save(deck.path).ok());
  EXPECT_EQ(Reread(deck.path, "ppt/slides/slide1.xml"), "<s>newer</s>");
}

TEST(Save, AStoredPartCanBeEdited) {
  BuiltEntry slide = Slide();
  slide.stored = true;
  Opened deck(Entries{slide});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  const std::string out = deck.folder.Path("out.pptx");
  ASSERT_TRUE(deck.package->Save(out).ok());
  EXPECT_EQ(Reread(out, "ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST(Save, TheModeOfAnExistingTargetStays) {
  Opened deck(Entries{Slide()});
  const std::string out = deck.folder.Put("out.pptx", "earlier");
  ASSERT_EQ(chmod(out.c_str(), 0640), 0);
  deck.package->PutPart("ppt/slides/slide1.xml", "<s/>");
  ASSERT_TRUE(deck.package->Save(out).ok());
  struct stat status = {};
  stat(out.c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST(Save, ASymbolicLinkStaysAndItsTargetIsReplaced) {
  Opened deck(Entries{Slide()});
  const std::string real = deck.folder.Put("real.pptx", "earlier");
  const std::string link = deck.folder.Path("link.pptx");
  ASSERT_EQ(symlink("real.pptx", link.c_str()), 0);
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  ASSERT_TRUE(deck.package->Save(link).ok());
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(Reread(real, "ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST(Save, ALinkToNothingYetMakesItsTarget) {
  Opened deck(Entries{Slide()});
  const std::string link = deck.folder.Path("link.pptx");
  ASSERT_EQ(symlink("real.pptx", link.c_str()), 0);
  ASSERT_TRUE(deck.package->Save(link).ok());
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_TRUE(std::filesystem::is_regular_file(deck.folder.Path("real.pptx")));
}

TEST(Save, AReadOnlyTargetIsRefusedAndStays) {
  Opened deck(Entries{Slide()});
  const std::string out = deck.folder.Put("out.pptx", "earlier");
  ASSERT_EQ(chmod(out.c_str(), 0444), 0);
  deck.package->PutPart("ppt/slides/slide1.xml", "<s/>");
  const auto saved = deck.package->Save(out);
  EXPECT_FALSE(saved.ok());
  EXPECT_NE(saved.error().words.find("read-only"), std::string::npos);
  EXPECT_EQ(TempFolder::Bytes(out), "earlier");
  EXPECT_EQ(deck.folder.Files(), 2u);
}

TEST(Save, WhatIsNoFileIsNotReplaced) {
  Opened deck;
  EXPECT_FALSE(deck.package->Save("/dev/full").ok());
  EXPECT_FALSE(deck.package->Save(deck.folder.Path("")).ok());
  EXPECT_FALSE(deck.package->Save(deck.folder.Path("no/such/folder/out.pptx")).ok());
}

TEST(Save, AFullDiskLeavesTheEarlierFileAndNoTemporary) {
  std::string noise;
  std::uint32_t state = 1;
  for (int i = 0; i < 400000; ++i) {
    state = state * 1664525 + 1013904223;
    noise += static_cast<char>(state >> 24);
  }
  Opened deck(Entries{Slide(), {.name = "ppt/media/a.bin", .content = noise}});
  const std::string out = deck.folder.Put("out.pptx", "earlier");
  struct rlimit before = {};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const auto saveWithLittleRoom = [&] {
    struct rlimit small = before;
    small.rlim_cur = 100000;
    setrlimit(RLIMIT_FSIZE, &small);
    Result<void> saved = deck.package->Save(out);
    setrlimit(RLIMIT_FSIZE, &before);
    return saved;
  };
  const auto copied = saveWithLittleRoom();
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  const auto edited = saveWithLittleRoom();
  std::signal(SIGXFSZ, handler);
  for (const auto& saved : {copied, edited}) {
    EXPECT_FALSE(saved.ok());
    EXPECT_EQ(saved.error().words, "File too large.");
  }
  EXPECT_EQ(TempFolder::Bytes(out), "earlier");
  EXPECT_EQ(deck.folder.Files(), 2u);
  ASSERT_TRUE(deck.package->Save(out).ok());
  EXPECT_EQ(Reread(out, "ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST(Save, ADeckThatAnotherProgramReplacedMeanwhileIsNotOverwritten) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  std::filesystem::rename(deck.folder.Put("theirs", "newer"), deck.path);
  for (const std::string& target : {deck.path, deck.folder.Path("out.pptx")}) {
    const auto saved = deck.package->Save(target);
    EXPECT_FALSE(saved.ok());
    EXPECT_EQ(saved.error().words, "Another program changed the deck meanwhile.");
  }
  EXPECT_EQ(TempFolder::Bytes(deck.path), "newer");
  EXPECT_EQ(deck.folder.Files(), 1u);
}

TEST(Save, ADeckThatAnotherProgramWroteToMeanwhileIsNotOverwritten) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  std::ofstream(deck.path, std::ios::app) << "more";
  EXPECT_EQ(deck.package->Save(deck.path).error().words,
            "Another program changed the deck meanwhile.");
  EXPECT_EQ(deck.package->Save(deck.folder.Path("out.pptx")).error().words,
            "Another program changed the deck meanwhile.");
  EXPECT_TRUE(TempFolder::Bytes(deck.path).ends_with("more"));
}

TEST(Save, ADeckThatWasRemovedMeanwhileIsStillSavedElsewhere) {
  Opened deck(Entries{Slide()});
  deck.package->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  std::filesystem::remove(deck.path);
  ASSERT_TRUE(deck.package->Save(deck.folder.Path("out.pptx")).ok());
  EXPECT_EQ(Reread(deck.folder.Path("out.pptx"), "ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST(Save, APrivateDeckGivesAPrivateOutput) {
  Opened deck(Entries{Slide()});
  const mode_t mask = umask(022);
  umask(mask);
  const std::string out = deck.folder.Path("out.pptx");
  for (const auto& [bits, expected] : {std::pair<mode_t, mode_t>{0600, 0600}, {0444, 0644}}) {
    ASSERT_EQ(chmod(deck.path.c_str(), bits), 0);
    const auto opened = Package::Open(deck.path);
    ASSERT_TRUE(opened.ok());
    ASSERT_TRUE(opened.value()->Save(out).ok());
    struct stat status = {};
    stat(out.c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, expected & ~mask);
    std::filesystem::remove(out);
  }
}

TEST(OutputFile, TheTemporaryFileIsNeverMoreOpenThanTheTargetWillBe) {
  const TempFolder folder;
  const std::string target = folder.Put("out.pptx", "earlier");
  ASSERT_EQ(chmod(target.c_str(), 0600), 0);
  for (const std::string& name : {target, folder.Path("new.pptx")}) {
    OutputFile output;
    ASSERT_EQ(output.Open(name, 0600), "");
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path(""))) {
      struct stat status = {};
      stat(entry.path().c_str(), &status);
      EXPECT_EQ(status.st_mode & 07777, 0600u) << entry.path();
    }
  }
}

TEST(OutputFile, ATemporaryFileOfAKilledRunIsRemovedAndOneInUseIsNot) {
  const TempFolder folder;
  const std::string stale = folder.Put(".quillmarch-abcdefgh", "left");
  const std::string fresh = folder.Put(".quillmarch-12345678", "just made");
  const std::string other = folder.Put(".quillmarch-notes", "the user's");
  OutputFile running;
  ASSERT_EQ(running.Open(folder.Path("a.pptx")), "");
  constexpr auto kLongAgo = std::chrono::hours(1);
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path(""))) {
    if (entry.path() == fresh) continue;
    std::filesystem::last_write_time(entry.path(),
                                     std::filesystem::file_time_type::clock::now() - kLongAgo);
  }
  OutputFile output;
  ASSERT_EQ(output.Open(folder.Path("b.pptx")), "");
  EXPECT_FALSE(std::filesystem::exists(stale));
  EXPECT_TRUE(std::filesystem::exists(fresh));
  EXPECT_TRUE(std::filesystem::exists(other));
  EXPECT_EQ(folder.Files(), 4u);
}

TEST(OutputFile, ATargetThatAnotherProgramMakesMeanwhileIsNoticed) {
  const TempFolder folder;
  OutputFile output;
  ASSERT_EQ(output.Open(folder.Path("a.pptx")), "");
  EXPECT_FALSE(output.TargetChanged());
  folder.Put("a.pptx", "theirs");
  EXPECT_TRUE(output.TargetChanged());
}

TEST(Package, OneInMemoryIsReadEditedAndSavedAsOneInAFileIs) {
  std::vector<BuiltEntry> entries = MinimalEntries();
  entries.push_back(Slide());
  const std::string bytes = BuildZip(entries);
  const auto opened = Package::OpenBytes(bytes);
  ASSERT_TRUE(opened.ok()) << opened.error().words;
  EXPECT_EQ(opened.value()->ReadPart("ppt/slides/slide1.xml").value(), kSlide);
  EXPECT_EQ(opened.value()->SaveBytes().value(), bytes);

  opened.value()->PutPart("ppt/slides/slide1.xml", "<s>new</s>");
  const auto saved = opened.value()->SaveBytes();
  ASSERT_TRUE(saved.ok()) << saved.error().words;
  const TempFolder folder;
  ASSERT_TRUE(opened.value()->Save(folder.Path("same")).ok());
  EXPECT_EQ(saved.value(), TempFolder::Bytes(folder.Path("same")));
  EXPECT_EQ(Reread(folder.Path("same"), "ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST(Package, OneInMemoryIsRefusedAsOneInAFileIs) {
  EXPECT_EQ(Package::OpenBytes("").error().words, "The file is empty.");
  EXPECT_EQ(Package::OpenBytes("PK").error().words,
            "The file is not a zip archive, so it is not a .pptx file.");
}

}  // namespace quillmarch::host
