// Parts that come and go.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "host/package/Package.h"
#include "package/zip/ZipBuilder.h"
#include "support/TempFolder.h"

namespace quillmarch::host {

namespace {

constexpr char kType[] = "application/vnd.openxmlformats-officedocument.presentationml.tags+xml";
constexpr char kName[] = "ppt/tags/tag1.xml";
constexpr char kBytes[] = "<tags>enough text to be packed, enough, enough, enough</tags>";

class PartsOfAPackage : public ::testing::Test {
 protected:
  void SetUp() override {
    std::vector<BuiltEntry> entries = MinimalEntries();
    entries.push_back({.name = "ppt/slides/slide1.xml", .content = "<s>one</s>"});
    entries.push_back({.name = "ppt/media/a.bin", .content = "\x01\x02", .stored = true});
    path = folder.Put("deck.pptx", BuildZip(entries));
    package = Reopened(path);
  }
  static std::unique_ptr<Package> Reopened(const std::string& path) {
    Result<std::unique_ptr<Package>> opened = Package::Open(path);
    if (opened) return *std::move(opened);
    ADD_FAILURE() << opened.error().words;
    return nullptr;
  }
  // Saves, opens what was saved, and goes on with that.
  void SaveAndReopen() {
    const std::string out = folder.Path("out.pptx");
    const Result<void> saved = package->Save(out);
    ASSERT_TRUE(saved) << saved.error().words;
    package = Reopened(out);
    ASSERT_NE(package, nullptr);
  }
  std::string Types() { return *package->ReadPart("[Content_Types].xml"); }

  TempFolder folder;
  std::string path;
  std::unique_ptr<Package> package;
};

}  // namespace

TEST_F(PartsOfAPackage, AnAddedPartIsThereAtOnceAndAfterSaving) {
  ASSERT_TRUE(package->AddPart(kName, kType, kBytes));
  EXPECT_TRUE(package->Edited());
  EXPECT_EQ(*package->ReadXmlPart(kName), kBytes);
  EXPECT_EQ(package->ContentType(kName), kType);
  const std::vector<std::string> names = package->PartNames();
  EXPECT_EQ(names.back(), kName);
  SaveAndReopen();
  EXPECT_EQ(package->PartNames(), names);
  EXPECT_EQ(*package->ReadXmlPart(kName), kBytes);
  EXPECT_EQ(package->ContentType(kName), kType);
  EXPECT_EQ(*package->ReadPart("ppt/media/a.bin"), "\x01\x02");
}

TEST_F(PartsOfAPackage, TheListOfContentTypesGrowsByOneEntryAndKeepsItsOtherBytes) {
  const std::string before = Types();
  ASSERT_TRUE(package->AddPart(kName, kType, kBytes));
  std::string expected = before;
  expected.insert(expected.rfind("</Types>"), std::string("<Override PartName=\"/") + kName +
                                                  "\" ContentType=\"" + kType + "\"/>");
  EXPECT_EQ(Types(), expected);
}

TEST_F(PartsOfAPackage, ATypeThatTheExtensionHasNeedsNoEntry) {
  const std::string before = Types();
  ASSERT_TRUE(package->AddPart("ppt/slides/_rels/slide1.xml.rels",
                               "application/vnd.openxmlformats-package.relationships+xml",
                               "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/"
                               "2006/relationships\"/>"));
  EXPECT_EQ(Types(), before);
  EXPECT_TRUE(package->Relationships("ppt/slides/slide1.xml")->empty());
}

TEST_F(PartsOfAPackage, ANameThatIsTakenIsRefusedInAnyCase) {
  const Result<void> added = package->AddPart("PPT/slides/Slide1.xml", kType, kBytes);
  ASSERT_FALSE(added);
  EXPECT_EQ(added.error().code, ErrorCode::kExists);
  EXPECT_FALSE(package->Edited());
}

TEST_F(PartsOfAPackage, ANameThatNoPartMayHaveIsRefused) {
  for (const char* name : {"", "/ppt/a.xml", "../a.xml", "ppt\\a.xml", "ppt/folder/"}) {
    const Result<void> added = package->AddPart(name, kType, kBytes);
    ASSERT_FALSE(added) << name;
    EXPECT_EQ(added.error().code, ErrorCode::kBadArgument) << name;
  }
  EXPECT_FALSE(package->Edited());
}

TEST_F(PartsOfAPackage, ARemovedPartIsGoneWithItsContentTypeAndTheOthersStay) {
  ASSERT_TRUE(package->AddPart(kName, kType, kBytes));
  SaveAndReopen();
  const std::string types = Types();
  ASSERT_TRUE(package->RemovePart(kName));
  EXPECT_FALSE(package->HasPart(kName));
  EXPECT_FALSE(package->ReadPart(kName));
  EXPECT_EQ(Types().find(kName), std::string::npos);
  EXPECT_EQ(Types().size() + std::string("<Override PartName=\"/\" ContentType=\"\"/>").size() +
                std::string(kName).size() + std::string(kType).size(),
            types.size());
  SaveAndReopen();
  EXPECT_FALSE(package->HasPart(kName));
  EXPECT_EQ(*package->ReadPart("ppt/slides/slide1.xml"), "<s>one</s>");
  EXPECT_EQ(*package->ReadPart("ppt/media/a.bin"), "\x01\x02");
}

TEST_F(PartsOfAPackage, APartFromTheMiddleOfTheArchiveIsRemoved) {
  std::vector<std::string> names = package->PartNames();
  ASSERT_TRUE(package->RemovePart("ppt/slides/slide1.xml"));
  std::erase(names, "ppt/slides/slide1.xml");
  SaveAndReopen();
  EXPECT_EQ(package->PartNames(), names);
  EXPECT_EQ(*package->ReadPart("ppt/media/a.bin"), "\x01\x02");
}

TEST_F(PartsOfAPackage, AnAddedPartMayBeRemovedAgainAndNothingIsChanged) {
  ASSERT_TRUE(package->AddPart(kName, kType, kBytes));
  ASSERT_TRUE(package->RemovePart(kName));
  EXPECT_FALSE(package->Edited());
  const std::string out = folder.Path("same.pptx");
  ASSERT_TRUE(package->Save(out));
  EXPECT_EQ(TempFolder::Bytes(out), TempFolder::Bytes(path));
}

TEST_F(PartsOfAPackage, ARemovedNameMayBeGivenAgain) {
  ASSERT_TRUE(package->RemovePart("ppt/slides/slide1.xml"));
  ASSERT_TRUE(package->AddPart("ppt/slides/slide1.xml", "application/xml", "<s>new</s>"));
  EXPECT_EQ(*package->ReadPart("ppt/slides/slide1.xml"), "<s>new</s>");
  SaveAndReopen();
  EXPECT_EQ(*package->ReadPart("ppt/slides/slide1.xml"), "<s>new</s>");
}

TEST_F(PartsOfAPackage, APartThatIsNotThereCannotBeRemoved) {
  const Result<void> removed = package->RemovePart("ppt/none.xml");
  ASSERT_FALSE(removed);
  EXPECT_EQ(removed.error().code, ErrorCode::kNotFound);
}

TEST_F(PartsOfAPackage, TheSameAdditionsGiveTheSameBytes) {
  for (const char* out : {"one.pptx", "two.pptx"}) {
    std::unique_ptr<Package> fresh = Reopened(path);
    ASSERT_TRUE(fresh->AddPart(kName, kType, kBytes));
    ASSERT_TRUE(fresh->AddPart("ppt/tags/t\xC3\xA9.xml", kType, kBytes));
    ASSERT_TRUE(fresh->Save(folder.Path(out)));
  }
  EXPECT_EQ(TempFolder::Bytes(folder.Path("one.pptx")), TempFolder::Bytes(folder.Path("two.pptx")));
}

TEST_F(PartsOfAPackage, AnAddedPartCanBeEditedAsAnyOther) {
  ASSERT_TRUE(package->AddPart(kName, kType, kBytes));
  package->PutPart(kName, "<other/>");
  SaveAndReopen();
  EXPECT_EQ(*package->ReadPart(kName), "<other/>");
}

}  // namespace quillmarch::host
