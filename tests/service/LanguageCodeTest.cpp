#include "service/engines/LanguageCode.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

TEST(LanguageCode, CodesTagsAndNamesGiveOneLanguage) {
  for (const char* text : {"es", "ES", "spa", "es-ES", "es_MX", "Spanish", "spanish", "es-419"}) {
    EXPECT_EQ(ReadLanguageCode(text).language, "spa") << text;
  }
  EXPECT_EQ(ReadLanguageCode("zh-Hant-TW").language, "zho");
  EXPECT_EQ(ReadLanguageCode("iw").language, "heb");
  EXPECT_EQ(ReadLanguageCode("ger").language, "deu");
}

TEST(LanguageCode, TheRegionIsKept) {
  EXPECT_EQ(ReadLanguageCode("pt-br").region, "BR");
  EXPECT_EQ(ReadLanguageCode("pt").region, "");
}

TEST(LanguageCode, UnknownTextsNameNoLanguage) {
  for (const char* text : {"", "-", "-ES", "klingon", "qqq", "auto", "e\"s"}) {
    EXPECT_EQ(ReadLanguageCode(text).language, "") << text;
  }
}

TEST(LanguageCode, SerbianCroatianAndBosnianShareTheirData) {
  EXPECT_EQ(MacroLanguage(ReadLanguageCode("sr").language), "hbs");
  EXPECT_EQ(MacroLanguage(ReadLanguageCode("hr").language), "hbs");
  EXPECT_EQ(MacroLanguage("spa"), "spa");
}

}  // namespace quillmarch::service
