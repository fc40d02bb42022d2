#include <gtest/gtest.h>

#include <cstdlib>

#include "foundation/settings/DisplayLanguage.h"
#include "foundation/settings/UserConfigFile.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

// A user without a choice, whose system speaks a language that is not the fallback.
class GermanSystem : public testing::Test {
 protected:
  GermanSystem() {
    const char* before = std::getenv("LC_ALL");
    hadLocale_ = before != nullptr;
    if (hadLocale_) locale_ = before;
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    ForgetSystemLanguage();
  }
  ~GermanSystem() override {
    if (hadLocale_) {
      setenv("LC_ALL", locale_.c_str(), 1);
    } else {
      unsetenv("LC_ALL");
    }
    ForgetSystemLanguage();
  }

  static ObjectRef HostWithLanguage(Variant language) {
    test::ScriptedObject* settings = nullptr;
    const ObjectRef held = test::ScriptedObject::Make(settings);
    settings->Value(u"LanguageID", 1, std::move(language));
    test::ScriptedObject* application = nullptr;
    ObjectRef made = test::ScriptedObject::Make(application);
    application->Value(u"LanguageSettings", 1, Variant::Object(held));
    return made;
  }

  UserConfigFile config_;

 private:
  bool hadLocale_ = false;
  std::string locale_;
};

TEST_F(GermanSystem, IsAskedWhereTheHostNamesNoLanguage) {
  EXPECT_EQ(ResolveLang(nullptr), u"de");
  ForgetSystemLanguage();
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::Text(u"1041")).get()), u"de");
  ForgetSystemLanguage();
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(0)).get()), u"de");
}

TEST_F(GermanSystem, GivesWayToTheLanguageOfTheHost) {
  EXPECT_EQ(ResolveLang(HostWithLanguage(Variant::I4(1041)).get()), u"ja");
}

}  // namespace

}  // namespace quillmarch::addin
