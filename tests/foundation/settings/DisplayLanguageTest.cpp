#include "foundation/settings/DisplayLanguage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "foundation/settings/UserConfigFile.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

constexpr std::size_t kKeys = 87;

std::vector<Wide> KeysOf(WideView tag) {
  std::vector<Wide> keys;
  for (const StringRow& row : TableFor(tag)) keys.emplace_back(row.key);
  return keys;
}

// An application whose user interface language, and no other, can be asked for.
ObjectRef HostWithLanguage(const Variant& id) {
  test::ScriptedObject* settings = nullptr;
  const ObjectRef settingsRef = test::ScriptedObject::Make(settings);
  settings->Member(u"LanguageID", 1, [id](const test::ScriptedCall& call, Variant& result) {
    if (call.reversedArgs.size() != 1 || call.reversedArgs[0].whole() != 2) return kBadIndex;
    result = id;
    return kOk;
  });
  test::ScriptedObject* application = nullptr;
  ObjectRef applicationRef = test::ScriptedObject::Make(application);
  application->Value(u"LanguageSettings", 2, Variant::Object(settingsRef));
  return applicationRef;
}

class DisplayLanguageOfTheUser : public testing::Test {
 protected:
  void SetUp() override { ForgetSystemLanguage(); }
  void TearDown() override { ForgetSystemLanguage(); }
  UserConfigFile config_;
};

TEST(StringTables, HoldTheSameSortedKeysInFourteenLanguagesAndPrintNoHole) {
  const std::vector<Wide> english = KeysOf(u"en");
  EXPECT_EQ(english.size(), kKeys);
  EXPECT_TRUE(std::is_sorted(english.begin(), english.end()));
  EXPECT_EQ(DisplayLanguages().size(), 14u);
  for (const DisplayLanguage& language : DisplayLanguages()) {
    EXPECT_EQ(KeysOf(language.tag), english) << ToUtf8(language.tag);
    std::size_t holes = 0;
    for (const StringRow& row : TableFor(language.tag)) holes += *row.text == u'\0' ? 1 : 0;
    EXPECT_EQ(holes, 0u);
    std::printf("%-6s %3zu texts, %zu empty  %s\n", ToUtf8(language.tag).c_str(),
                TableFor(language.tag).size(), holes, ToUtf8(language.name).c_str());
  }
}

TEST(TableFor, AnUnknownTagGivesTheEnglishTable) {
  EXPECT_EQ(TableFor(u"fr-FR").data(), TableFor(u"en").data());
  EXPECT_EQ(TableFor(u"").data(), TableFor(u"en").data());
  EXPECT_EQ(TableFor(u"ZH-CN").data(), TableFor(u"en").data());
  EXPECT_NE(TableFor(u"zh-TW").data(), TableFor(u"zh-CN").data());
}

TEST(TagOfLanguageId, TellsTraditionalFromSimplifiedChinese) {
  for (const std::uint32_t id : {1028u, 3076u, 5124u, 31748u}) {
    EXPECT_EQ(TagOfLanguageId(id), u"zh-TW") << id;
  }
  for (const std::uint32_t id : {2052u, 4100u, 4u}) EXPECT_EQ(TagOfLanguageId(id), u"zh-CN") << id;
}

TEST(TagOfLanguageId, TheOrderOfSortingInAnIdDoesNotChangeItsScript) {
  EXPECT_EQ(TagOfLanguageId(0x00030404), u"zh-TW");  // by the phonetic symbols
  EXPECT_EQ(TagOfLanguageId(0x00020804), u"zh-CN");  // by the strokes
}

TEST(TagOfLanguageId, GivesEachPrimaryLanguageItsTagAndEnglishToTheRest) {
  EXPECT_EQ(TagOfLanguageId(0x0401), u"ar");
  EXPECT_EQ(TagOfLanguageId(0x0C07), u"de");
  EXPECT_EQ(TagOfLanguageId(0x080A), u"es");
  EXPECT_EQ(TagOfLanguageId(0x043E), u"ms");
  EXPECT_EQ(TagOfLanguageId(0x0416), u"en");  // Portuguese
  EXPECT_EQ(TagOfLanguageId(0), u"en");
}

TEST_F(DisplayLanguageOfTheUser, TheConfigurationWinsOverTheHostAndCountsAtOnce) {
  config_.Write("{\"uiLang\":\"ja\"}");
  EXPECT_EQ(ResolveLang(nullptr), u"ja");
  config_.Write("{\"uiLang\":\"th\"}");
  EXPECT_EQ(ResolveLang(nullptr), u"th");
  EXPECT_EQ(Text(u"settings.cancel"), u"ยกเลิก");
}

TEST_F(DisplayLanguageOfTheUser,
       AChoiceCountsAlsoAfterTheHostWasAskedAndItsRemovalAsksTheHostAgain) {
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1041)).get()), u"ja");
  config_.Write("{\"uiLang\":\"th\"}");
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1041)).get()), u"th");
  config_.Write("{}");
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1031)).get()), u"de");
}

TEST_F(DisplayLanguageOfTheUser, ATagThatIsNotInTheListLeavesTheHostsLanguage) {
  config_.Write("{\"uiLang\":\"fr-FR\"}");
  const ObjectRef application = HostWithLanguage(Variant::I4(5124));
  EXPECT_EQ(ResolveLang(application.get()), u"zh-TW");
}

TEST_F(DisplayLanguageOfTheUser, TheHostIsAskedOnceUntilTheAnswerIsForgotten) {
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I2(1041)).get()), u"ja");
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1031)).get()), u"ja");
  ForgetSystemLanguage();
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1031)).get()), u"de");
}

TEST_F(DisplayLanguageOfTheUser, AHostThatGivesNoWholeNumberFallsBackToTheSystem) {
  const Wide system = ResolveLang(nullptr);
  ForgetSystemLanguage();
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::Text(u"1041")).get()), system);
  ForgetSystemLanguage();
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(0)).get()), system);
}

TEST_F(DisplayLanguageOfTheUser, AnUnknownOrEmptyKeyGivesEmptyText) {
  config_.Write("{\"uiLang\":\"ru\"}");
  EXPECT_EQ(Text(u"settings.ok"), u"ОК");
  EXPECT_EQ(Text(u"no.such.key"), u"");
  EXPECT_EQ(Text(u""), u"");
}

TEST_F(DisplayLanguageOfTheUser, ThePaneTitleNamesTheSite) {
  config_.Write("{\"uiLang\":\"en\"}");
  EXPECT_EQ(PaneTitle(), u"AI Assistant \u00b7 Quillmarch");
}

TEST(FormatHr, ReplacesTheFirstMarkByEightCapitalHexadecimalDigits) {
  EXPECT_EQ(FormatHr(u"HRESULT: {hr} {hr}", MakeResult(0x8007000E)), u"HRESULT: 0x8007000E {hr}");
  EXPECT_EQ(FormatHr(u"none", kFail), u"none");
}

}  // namespace

}  // namespace quillmarch::addin
