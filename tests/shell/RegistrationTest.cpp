#include "shell/Registration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "shell/FakeRegistry.h"
#include "shell/SourceResources.h"

namespace quillmarch::addin {

namespace {

using test::FakeRegistry;
using test::SourceResources;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

class ScriptedSystem final : public RegistrationSystem {
 public:
  std::uint32_t ThreadLocale() override { return locale; }
  void SetThreadLocale(std::uint32_t next) override { locale = next; }
  ResultCode RegisterTypeLibrary() override {
    localesAtWork.push_back(locale);
    calls.emplace_back("register");
    if (onRegister) onRegister();
    return registerResult;
  }
  ResultCode UnregisterTypeLibrary() override {
    localesAtWork.push_back(locale);
    calls.emplace_back("unregister");
    return unregisterResult;
  }

  std::uint32_t locale = 1031;
  std::vector<std::uint32_t> localesAtWork;
  std::vector<std::string> calls;
  std::function<void()> onRegister;
  ResultCode registerResult = kOk;
  ResultCode unregisterResult = kOk;
};

constexpr WideView kAddin = u"SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect";
constexpr WideView kWhiteList = u"SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL";

class Registration : public testing::Test {
 protected:
  ResultCode Register() { return RegisterAddin({system_, registry_, resources_, kModule}); }
  ResultCode Unregister() { return UnregisterAddin({system_, registry_, resources_, kModule}); }
  std::string Addin(const std::string& name) { return registry_.Value(kAddin, name); }

  static constexpr char16_t kModule[] = u"C:\\Users\\it's me\\PptAddin.dll";
  ScriptedSystem system_;
  FakeRegistry registry_;
  SourceResources resources_;
};

// All that a registration writes, to the letter.
const std::vector<std::string> kWritten = {
    "SOFTWARE",
    "SOFTWARE\\Classes",
    "SOFTWARE\\Classes\\CLSID",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3} :  = \"Connect Class\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\InprocServer32",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\InprocServer32 :  = "
    "\"C:\\Users\\it's me\\PptAddin.dll\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\InprocServer32 : "
    "ThreadingModel = \"Apartment\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\ProgID",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\ProgID :  = "
    "\"PptAddin.Connect.1\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\Programmable",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\TypeLib",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\TypeLib :  = "
    "\"{3F7A9C21-8E44-4D5B-9A16-72C5D8E3F0A1}\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\Version",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\Version :  = \"1.0\"",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\VersionIndependentProgID",
    "SOFTWARE\\Classes\\CLSID\\{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\\VersionIndependentProgID "
    ":  = \"PptAddin.Connect\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E} :  = "
    "\"Quillmarch PowerPoint Pane\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\Control",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\InprocServer32",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\InprocServer32 :  = "
    "\"C:\\Users\\it's me\\PptAddin.dll\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\InprocServer32 : "
    "ThreadingModel = \"Apartment\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\Insertable",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\MiscStatus",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\MiscStatus :  = \"0\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\MiscStatus\\1",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\MiscStatus\\1 :  = "
    "\"131473\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\ProgID",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\ProgID :  = "
    "\"Quillmarch.PptPane.1\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\Programmable",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\TypeLib",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\TypeLib :  = "
    "\"{3F7A9C21-8E44-4D5B-9A16-72C5D8E3F0A1}\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\Version",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\Version :  = \"1.0\"",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\VersionIndependentProgID",
    "SOFTWARE\\Classes\\CLSID\\{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\\VersionIndependentProgID "
    ":  = \"Quillmarch.PptPane\"",
    "SOFTWARE\\Classes\\PptAddin.Connect",
    "SOFTWARE\\Classes\\PptAddin.Connect :  = \"Connect Class\"",
    "SOFTWARE\\Classes\\PptAddin.Connect.1",
    "SOFTWARE\\Classes\\PptAddin.Connect.1 :  = \"Connect Class\"",
    "SOFTWARE\\Classes\\PptAddin.Connect.1\\CLSID",
    "SOFTWARE\\Classes\\PptAddin.Connect.1\\CLSID :  = "
    "\"{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\"",
    "SOFTWARE\\Classes\\PptAddin.Connect\\CLSID",
    "SOFTWARE\\Classes\\PptAddin.Connect\\CLSID :  = \"{5B9C1E43-AF66-4F7D-BC38-94E7FA0512C3}\"",
    "SOFTWARE\\Classes\\PptAddin.Connect\\CurVer",
    "SOFTWARE\\Classes\\PptAddin.Connect\\CurVer :  = \"PptAddin.Connect.1\"",
    "SOFTWARE\\Classes\\Quillmarch.PptPane",
    "SOFTWARE\\Classes\\Quillmarch.PptPane :  = \"Quillmarch PowerPoint Pane\"",
    "SOFTWARE\\Classes\\Quillmarch.PptPane.1",
    "SOFTWARE\\Classes\\Quillmarch.PptPane.1 :  = \"Quillmarch PowerPoint Pane\"",
    "SOFTWARE\\Classes\\Quillmarch.PptPane.1\\CLSID",
    "SOFTWARE\\Classes\\Quillmarch.PptPane.1\\CLSID :  = "
    "\"{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\"",
    "SOFTWARE\\Classes\\Quillmarch.PptPane\\CLSID",
    "SOFTWARE\\Classes\\Quillmarch.PptPane\\CLSID :  = "
    "\"{B0C1D2E3-4F5A-6B7C-8D9E-0F1A2B3C4D5E}\"",
    "SOFTWARE\\Classes\\Quillmarch.PptPane\\CurVer",
    "SOFTWARE\\Classes\\Quillmarch.PptPane\\CurVer :  = \"Quillmarch.PptPane.1\"",
    "SOFTWARE\\Kingsoft",
    "SOFTWARE\\Kingsoft\\Office",
    "SOFTWARE\\Kingsoft\\Office\\WPP",
    "SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL",
    "SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL : PptAddin.Connect = \"\"",
    "SOFTWARE\\Microsoft",
    "SOFTWARE\\Microsoft\\Office",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect : CommandLineSafe = 1",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect : Description = "
    "\"整份、当前页或选区翻译，保留版式写回幻灯片。\"",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect : FriendlyName = "
    "\"Quillmarch PowerPoint\"",
    "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect : LoadBehavior = 3",
};

TEST_F(Registration, WritesExactlyItsKeysAndValues) {
  EXPECT_EQ(Register(), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAreArray(kWritten));
  EXPECT_THAT(system_.calls, ElementsAre("register"));
}

TEST_F(Registration, TheScriptsOwnDescriptionStandsUntilTheKeysAreWrittenAgain) {
  std::string before;
  system_.onRegister = [&] { before = Addin("Description"); };
  Register();
  EXPECT_EQ(before, "\"Quillmarch PowerPoint AI assistant add-in\"");
  EXPECT_EQ(Addin("Description"), "\"整份、当前页或选区翻译，保留版式写回幻灯片。\"");
}

TEST_F(Registration, ASecondOneOverwritesTheDescriptionAndWritesTheSame) {
  Register();
  registry_.PutText(kAddin, u"Description", u"changed");
  EXPECT_EQ(Register(), kOk);
  EXPECT_THAT(registry_.Listing(), ElementsAreArray(kWritten));
}

TEST_F(Registration, WorksInANeutralLocaleAndPutsTheThreadsOwnBack) {
  Register();
  EXPECT_EQ(system_.locale, 1031U);
  EXPECT_THAT(system_.localesAtWork, ElementsAre(2048U));
  system_.registerResult = kFail;
  Register();
  EXPECT_EQ(system_.locale, 1031U);
  Unregister();
  EXPECT_EQ(system_.locale, 1031U);
}

TEST_F(Registration, AFailureOfTheTypeLibraryIsReturnedAndNothingIsWrittenAgain) {
  system_.registerResult = MakeResult(0x80029C4A);
  EXPECT_EQ(Register(), MakeResult(0x80029C4A));
  EXPECT_EQ(Addin("CommandLineSafe"), "");
}

TEST_F(Registration, AMissingScriptIsAFailure) {
  resources_.missing = ModuleResources::kPaneScript;
  EXPECT_EQ(Register(), kFail);
  EXPECT_THAT(system_.calls, IsEmpty());
}

TEST_F(Registration, ARegistryThatCannotBeWrittenIsAFailure) {
  registry_.refuses["create SOFTWARE\\Classes"] = UserRegistry::kAccessDenied;
  EXPECT_EQ(Register(), MakeResult(0x80070005));
  EXPECT_THAT(system_.calls, IsEmpty());
}

TEST_F(Registration, AnAddinValueThatCannotBeWrittenSkipsTheRestAndIsReturned) {
  const std::string key = "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect";
  registry_.refuses["put " + key + " : Description"] = UserRegistry::kAccessDenied;
  EXPECT_EQ(WriteAddinKeys(registry_), MakeResult(0x80070005));
  EXPECT_EQ(Addin("FriendlyName"), "\"Quillmarch PowerPoint\"");
  EXPECT_EQ(Addin("LoadBehavior"), "");
  EXPECT_FALSE(registry_.Exists(kWhiteList));
  registry_.refuses = {{"create " + key, UserRegistry::kAccessDenied}};
  EXPECT_EQ(WriteAddinKeys(registry_), MakeResult(0x80070005));
}

TEST_F(Registration, WithoutWpsItsWhiteListIsMadeAllTheSame) {
  EXPECT_EQ(WriteAddinKeys(registry_), kOk);
  EXPECT_EQ(registry_.Value(kWhiteList, "PptAddin.Connect"), "\"\"");
}

TEST_F(Registration, AWhiteListThatCannotBeWrittenIsIgnored) {
  const std::string key = "SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL";
  registry_.refuses["create " + key] = UserRegistry::kAccessDenied;
  EXPECT_EQ(WriteAddinKeys(registry_), kOk);
  registry_.refuses = {{"put " + key + " : PptAddin.Connect", UserRegistry::kAccessDenied}};
  EXPECT_EQ(WriteAddinKeys(registry_), kOk);
}

// ---- Unregistering -----------------------------------------------------------------------------

TEST_F(Registration, UnregisteringLeavesOnlyTheKeysThatAreSharedWithOthers) {
  Register();
  EXPECT_EQ(Unregister(), kOk);
  EXPECT_THAT(
      registry_.Listing(),
      ElementsAre("SOFTWARE", "SOFTWARE\\Classes", "SOFTWARE\\Classes\\CLSID", "SOFTWARE\\Kingsoft",
                  "SOFTWARE\\Kingsoft\\Office", "SOFTWARE\\Kingsoft\\Office\\WPP",
                  "SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL", "SOFTWARE\\Microsoft",
                  "SOFTWARE\\Microsoft\\Office", "SOFTWARE\\Microsoft\\Office\\PowerPoint",
                  "SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins"));
}

TEST_F(Registration, OtherPeoplesAddinsStay) {
  registry_.CreateKey(kWhiteList);
  registry_.PutText(kWhiteList, u"Other.Connect", u"");
  registry_.CreateKey(u"SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\Other.Connect");
  registry_.CreateKey(u"SOFTWARE\\Classes\\CLSID\\{00000000-0000-0000-0000-000000000001}");
  const std::vector<std::string> before = registry_.Listing();
  Register();
  Unregister();
  const std::vector<std::string> after = registry_.Listing();
  for (const std::string& line : before) EXPECT_THAT(after, Contains(line));
  EXPECT_THAT(after, Not(Contains(testing::HasSubstr("PptAddin"))));
  EXPECT_THAT(after, Not(Contains(testing::HasSubstr("Quillmarch"))));
}

TEST_F(Registration, UnregisteringTwiceDoesNoHarm) {
  Register();
  EXPECT_EQ(Unregister(), kOk);
  EXPECT_EQ(Unregister(), kOk);
  EXPECT_THAT(system_.calls, ElementsAre("register", "unregister", "unregister"));
}

TEST_F(Registration, UnregisteringRunsTheScriptsInReverseAndThenTheRest) {
  Register();
  registry_.calls.clear();
  Unregister();
  const auto at = [&](const std::string& call) {
    return std::find(registry_.calls.begin(), registry_.calls.end(), call);
  };
  const auto pane = at("delete tree SOFTWARE\\Classes\\Quillmarch.PptPane");
  const auto connect = at("delete tree SOFTWARE\\Classes\\PptAddin.Connect");
  ASSERT_NE(pane, registry_.calls.end());
  ASSERT_NE(connect, registry_.calls.end());
  EXPECT_LT(pane, connect);
  ASSERT_GE(registry_.calls.size(), 2U);
  EXPECT_EQ(registry_.calls[registry_.calls.size() - 2],
            "delete key SOFTWARE\\Microsoft\\Office\\PowerPoint\\Addins\\PptAddin.Connect");
  EXPECT_EQ(registry_.calls.back(),
            "delete value SOFTWARE\\Kingsoft\\Office\\WPP\\AddinsWL : PptAddin.Connect");
}

TEST_F(Registration, TheResultOfUnregisteringIsThatOfTheScriptsAlone) {
  Register();
  system_.unregisterResult = kFail;
  EXPECT_EQ(Unregister(), kOk);
  Register();
  registry_.refuses["delete tree SOFTWARE\\Classes\\PptAddin.Connect"] =
      UserRegistry::kAccessDenied;
  EXPECT_EQ(Unregister(), MakeResult(0x80070005));
  EXPECT_FALSE(registry_.Exists(u"SOFTWARE\\Classes\\Quillmarch.PptPane"));
  EXPECT_FALSE(registry_.Exists(kAddin));
}

}  // namespace

}  // namespace quillmarch::addin
