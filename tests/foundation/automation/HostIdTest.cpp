#include "foundation/automation/HostId.h"

#include "foundation/system/KnownFolders.h"
#include "gtest/gtest.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

using test::ScriptedObject;

namespace {

Wide WordOf(WideView name, WideView image) {
  return IdentifyHost(u"ppt", Wide(name), u"", image).word;
}

ObjectRef Application(const Variant& name, const Variant& version) {
  ScriptedObject* made = nullptr;
  ObjectRef ref = ScriptedObject::Make(made);
  made->Value(u"Name", 0, name);
  made->Value(u"Version", 2014, version);
  return ref;
}

}  // namespace

TEST(IdentifyHost, PowerPointInItsOwnProcessIsPpt) {
  EXPECT_EQ(u"ppt", WordOf(u"Microsoft PowerPoint", u"POWERPNT.EXE"));
}

TEST(IdentifyHost, AnEmptyNameInTheWpsProcessIsWps) {
  EXPECT_EQ(u"wps", WordOf(u"", u"wpp.exe"));
  EXPECT_EQ(u"wps", WordOf(u"", u"WPS.EXE"));
  EXPECT_EQ(u"wps", WordOf(u"", u"Et.exe"));
}

TEST(IdentifyHost, EachMarkInTheNameIsEnough) {
  for (const WideView name :
       {u"WPS Presentation", u"Kingsoft Office", u"\u91d1\u5c71\u6f14\u793a"}) {
    EXPECT_EQ(u"wps", WordOf(name, u"POWERPNT.EXE"));
  }
}

TEST(IdentifyHost, TheLettersEtAnywhereInTheNameAreWps) {
  EXPECT_EQ(u"wps", WordOf(u"INTERNET SLIDES", u"POWERPNT.EXE"));
}

TEST(IdentifyHost, TheNameIsComparedWithItsCase) {
  EXPECT_EQ(u"ppt", WordOf(u"wps kingsoft et", u"POWERPNT.EXE"));
}

TEST(IdentifyHost, ASpreadsheetStartsAsExcelAndBecomesItsWpsWord) {
  EXPECT_EQ(u"wps-excel", IdentifyHost(u"excel", u"WPS", u"", u"").word);
  EXPECT_EQ(u"excel", IdentifyHost(u"excel", u"Sheets", u"", u"").word);
}

TEST(IsWpsImage, OnlyTheThreeProgramsCount) {
  EXPECT_TRUE(IsWpsImage(u"wps.exe"));
  EXPECT_TRUE(IsWpsImage(u"WPP.exe"));
  EXPECT_TRUE(IsWpsImage(u"ET.EXE"));
  EXPECT_FALSE(IsWpsImage(u"wpp"));
  EXPECT_FALSE(IsWpsImage(u"my-et.exe"));
  EXPECT_FALSE(IsWpsImage(u""));
}

TEST(ProcessImageName, IsTheTestsOwnFileName) {
  EXPECT_TRUE(ProcessImageName().starts_with(u"foundation_tests"));
}

TEST(DetectHost, NameAndVersionAreReadAsPropertiesAndStored) {
  const ObjectRef application =
      Application(Variant::Text(u"Microsoft PowerPoint"), Variant::Text(u"16.0"));
  DetectHost(application.get());
  EXPECT_EQ(u"ppt", HostWord());
  EXPECT_EQ(u"Microsoft PowerPoint", HostName());
  EXPECT_EQ(u"16.0", HostVersion());
  EXPECT_FALSE(IsWpsHost());
  EXPECT_FALSE(IsWpsProcess());
  const auto& calls = static_cast<ScriptedObject*>(application.get())->calls();
  ASSERT_EQ(2u, calls.size());
  EXPECT_EQ(2, calls[0].flags);
  EXPECT_EQ(2, calls[1].flags);
}

TEST(DetectHost, AWpsNameMakesAWpsHostAndProcess) {
  DetectHost(Application(Variant::Text(u"WPS Presentation"), Variant::Text(u"12.1")).get());
  EXPECT_EQ(u"wps", HostWord());
  EXPECT_TRUE(IsWpsHost());
  EXPECT_TRUE(IsWpsProcess());
}

TEST(DetectHost, AnyFailureGivesEmptyText) {
  DetectHost(Application(Variant::I4(3), Variant::Null()).get());
  EXPECT_EQ(u"ppt", HostWord());
  EXPECT_EQ(u"", HostName());
  EXPECT_EQ(u"", HostVersion());
  DetectHost(nullptr);
  EXPECT_EQ(u"ppt", HostWord());
  ScriptedObject* made = nullptr;
  const ObjectRef bare = ScriptedObject::Make(made);
  DetectHost(bare.get());
  EXPECT_EQ(u"", HostName());
}

}  // namespace quillmarch::addin
