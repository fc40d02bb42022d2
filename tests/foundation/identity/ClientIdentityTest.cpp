#include "foundation/identity/ClientIdentity.h"

#include <algorithm>

#include "foundation/automation/HostId.h"
#include "foundation/identity/IdentityRules.h"
#include "foundation/system/FileBytes.h"
#include "foundation/system/Registry.h"
#include "foundation/text/JsonText.h"
#include "gtest/gtest.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kKey = u"Software\\Quillmarch";
constexpr WideView kName = u"InstallId";

bool IsGuid(const Wide& text) {
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    const bool digit = (text[i] >= u'0' && text[i] <= u'9') || (text[i] >= u'a' && text[i] <= u'f');
    if (dash ? text[i] != u'-' : !digit) return false;
  }
  return true;
}

bool Ten(OsVersion& version) {
  version = {10, 0, 22631};
  return true;
}
bool SixTwo(OsVersion& version) {
  version = {6, 2, 9200};
  return true;
}
bool Nothing(OsVersion&) {
  return false;
}

}  // namespace

TEST(DescribeOs, TheRealVersionCounts) {
  EXPECT_EQ(u"Windows_NT x64 10.0.22631", DescribeOs(u"Windows_NT", u"x64", Ten, SixTwo));
}

TEST(DescribeOs, WithoutTheRealVersionTheShownOneIsWrittenInTheSameForm) {
  EXPECT_EQ(u"Windows_NT arm64 6.2.9200", DescribeOs(u"Windows_NT", u"arm64", Nothing, SixTwo));
}

TEST(DescribeOs, WithoutAnyVersionTheMachineEndsTheText) {
  EXPECT_EQ(u"Windows_NT x86", DescribeOs(u"Windows_NT", u"x86", Nothing, Nothing));
}

TEST(OsDescription, HasThreePartsOfWhichTheLastIsTheVersion) {
  const Wide os = OsDescription();
  const Wide start = SystemName() + u' ' + MachineWord() + u' ';
  ASSERT_TRUE(os.starts_with(start));
  Wide version = os.substr(start.size());
  EXPECT_EQ(2, std::count(version.begin(), version.end(), u'.'));
  EXPECT_EQ(Wide::npos, version.find_first_not_of(u"0123456789."));
}

TEST(NewInstallId, AGuidIsWrittenInLowerCaseWithoutBraces) {
  const Guid guid{0x0ABCDEF1, 0x0023, 0x4567, {0x89, 0xAB, 0xCD, 0xEF, 0x01, 0x23, 0x45, 0x67}};
  EXPECT_EQ(u"0abcdef1-0023-4567-89ab-cdef01234567", NewInstallId(&guid, 5));
}

TEST(NewInstallId, WithoutAGuidTheTickCountStands) {
  EXPECT_EQ(u"local-123456789012", NewInstallId(nullptr, 123456789012));
}

TEST(NewGuid, TwoAreNeverTheSameAndBothAreRandomOnes) {
  Guid a;
  Guid b;
  ASSERT_TRUE(NewGuid(a));
  ASSERT_TRUE(NewGuid(b));
  EXPECT_NE(NewInstallId(&a, 0), NewInstallId(&b, 0));
  EXPECT_EQ(0x4000, a.data3 & 0xF000);
  EXPECT_EQ(0x80, a.data4[0] & 0xC0);
}

TEST(InstallId, AnIdIsMadeOnceAndThenKept) {
  WriteUserText(kKey, kName, u"");
  const Wide made = InstallId();
  EXPECT_TRUE(IsGuid(made));
  EXPECT_EQ(made, InstallId());
  Wide stored;
  EXPECT_TRUE(ReadUserText(kKey, kName, 1024, stored));
  EXPECT_EQ(made, stored);
}

TEST(InstallId, AStoredTextStaysWhateverItsForm) {
  WriteUserText(kKey, kName, u" my own \u4e2d\tid\\n ");
  EXPECT_EQ(u" my own \u4e2d\tid\\n ", InstallId());
}

TEST(InstallId, ANumberDoesNotCountAndIsOverwritten) {
  WriteUserText(kKey, kName, u"text");
  ASSERT_TRUE(WriteUserNumber(kKey, kName, 5));
  const Wide made = InstallId();
  EXPECT_TRUE(IsGuid(made));
  EXPECT_EQ(made, InstallId());
}

TEST(InstallId, ATextThatPassesTheBufferDoesNotCount) {
  const Wide largest(511, u'x');
  WriteUserText(kKey, kName, largest);
  EXPECT_EQ(largest, InstallId());
  WriteUserText(kKey, kName, Wide(512, u'x'));
  EXPECT_TRUE(IsGuid(InstallId()));
}

TEST(ReadUtf8File, TheMarkIsDroppedAndTheTextConverted) {
  const TempFolder folder;
  WriteBytes(folder / u"a", "\xEF\xBB\xBF{\xE4\xB8\xAD}");
  EXPECT_EQ(u"{\u4e2d}", ReadUtf8File(folder / u"a"));
  WriteBytes(folder / u"b", "plain");
  EXPECT_EQ(u"plain", ReadUtf8File(folder / u"b"));
}

TEST(ReadUtf8File, AnEmptyOrMissingFileOrAMarkAloneIsEmpty) {
  const TempFolder folder;
  WriteBytes(folder / u"empty", "");
  WriteBytes(folder / u"mark", "\xEF\xBB\xBF");
  EXPECT_EQ(u"", ReadUtf8File(folder / u"empty"));
  EXPECT_EQ(u"", ReadUtf8File(folder / u"mark"));
  EXPECT_EQ(u"", ReadUtf8File(folder / u"missing"));
  EXPECT_EQ(u"", ReadUtf8File(folder.wide()));
}

TEST(ReadUtf8File, BrokenBytesBecomeReplacements) {
  const TempFolder folder;
  WriteBytes(folder / u"a", "x\xFFy\xEF\xBB");
  EXPECT_EQ(u"x\uFFFDy\uFFFD", ReadUtf8File(folder / u"a"));
}

TEST(ReadVersionFile, TheFileOfTheFolderItselfCountsFirst) {
  const TempFolder folder;
  CreateFolder(folder / u"x86");
  WriteBytes(folder / u"version.json", "parent");
  WriteBytes(JoinPath(folder / u"x86", u"version.json"), "own");
  EXPECT_EQ(u"own", ReadVersionFile(folder / u"x86"));
}

TEST(ReadVersionFile, AnX86FolderInAnyCaseSharesItsParentsFile) {
  const TempFolder folder;
  CreateFolder(folder / u"X86");
  WriteBytes(folder / u"version.json", "parent");
  EXPECT_EQ(u"parent", ReadVersionFile(folder / u"X86"));
}

TEST(ReadVersionFile, AFolderOfAnyOtherNameDoesNot) {
  const TempFolder folder;
  CreateFolder(folder / u"x64");
  WriteBytes(folder / u"version.json", "parent");
  EXPECT_EQ(u"", ReadVersionFile(folder / u"x64"));
  EXPECT_EQ(u"", ReadVersionFile(u""));
  EXPECT_EQ(u"", ReadVersionFile(u"x86"));
}

TEST(VersionOf, AMissingOrEmptyVersionIsTheDefault) {
  EXPECT_EQ(u"0.0.0", VersionOf(u""));
  EXPECT_EQ(u"0.0.0", VersionOf(u"{\"version\":\"\"}"));
  EXPECT_EQ(u"1.2.3", VersionOf(u"{\"version\":\"1.2.3\"}"));
}

TEST(ContextJson, HasItsSixKeysInOrderWithoutBlanks) {
  const HostKind host{u"ppt", u"Microsoft PowerPoint", u"16.0"};
  EXPECT_EQ(
      u"{\"installId\":\"id\",\"channel\":\"word\",\"os\":\"Windows_NT x64 10.0.1\","
      u"\"hostApp\":\"ppt\",\"hostVersion\":\"16.0\",\"clientVersion\":\"1.2.3\"}",
      ContextJson(u"id", u"Windows_NT x64 10.0.1", host, u"1.2.3"));
}

TEST(ContextJson, OnlySpreadsheetWordsMakeTheExcelChannel) {
  for (const auto& [word, channel] : {std::pair<WideView, WideView>{u"word", u"word"},
                                      {u"ppt", u"word"},
                                      {u"wps", u"word"},
                                      {u"excel", u"excel"},
                                      {u"wps-excel", u"excel"}}) {
    EXPECT_EQ(channel,
              JsonGetString(ContextJson(u"", u"", {Wide(word), u"", u""}, u""), u"channel"));
  }
}

TEST(ContextJson, QuotesAndBackslashesAreEscaped) {
  const HostKind host{u"ppt", u"", u"16\"\\"};
  const Wide json = ContextJson(u"a\"b", u"o\\s", host, u"1");
  EXPECT_NE(Wide::npos, json.find(u"\"installId\":\"a\\\"b\""));
  EXPECT_NE(Wide::npos, json.find(u"\"os\":\"o\\\\s\""));
  EXPECT_NE(Wide::npos, json.find(u"\"hostVersion\":\"16\\\"\\\\\""));
}

TEST(InfoJson, WithoutAVersionFileTheDefaultsStand) {
  const HostKind host{u"ppt", u"Micro\"soft\\", u"16.0"};
  EXPECT_EQ(
      u"{\"productId\":\"quillmarch-office-ai\",\"platform\":\"windows\","
      u"\"version\":\"0.0.0\",\"commit\":\"\",\"buildDate\":\"\",\"os\":\"o\","
      u"\"installId\":\"id\",\"hostApp\":\"ppt\",\"hostAppVersion\":\"16.0\","
      u"\"hostAppName\":\"Micro\\\"soft\\\\\","
      u"\"capabilities\":{\"pptBilingualSlides\":true,\"targetFontBold\":false}}",
      InfoJson(u"", u"o", u"id", host));
}

TEST(InfoJson, TheVersionFileReplacesTheDefaults) {
  const Wide json = InfoJson(
      u"{\"productId\":\"p\",\"platform\":\"q\",\"version\":\"2.0.1\","
      u"\"commit\":\"abc\",\"buildDate\":\"2024-01-02\"}",
      u"o", u"id", {});
  EXPECT_TRUE(json.starts_with(
      u"{\"productId\":\"p\",\"platform\":\"q\",\"version\":\"2.0.1\",\"commit\":\"abc\","
      u"\"buildDate\":\"2024-01-02\",\"os\":\"o\",\"installId\":\"id\",\"hostApp\":\"word\","));
}

TEST(ClientContextJson, SaysWhoThisProcessIs) {
  WriteUserText(kKey, kName, u"fixed-id");
  const Wide json = ClientContextJson();
  EXPECT_EQ(
      ContextJson(u"fixed-id", OsDescription(), {HostWord(), HostName(), HostVersion()}, u"0.0.0"),
      json);
  EXPECT_EQ(u"fixed-id", JsonGetString(ClientInfoJson(), u"installId"));
}

TEST(ModuleDirectory, IsWhereTheProgramLies) {
  const Wide directory = ModuleDirectory();
  ASSERT_FALSE(directory.empty());
  EXPECT_NE(kPathSeparator, directory.back());
  EXPECT_TRUE(Exists(directory));
}

}  // namespace quillmarch::addin
