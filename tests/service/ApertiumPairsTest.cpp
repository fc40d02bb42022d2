#include "service/engines/ApertiumPairs.h"

#include <gtest/gtest.h>

#include "service/engines/Engine.h"
#include "support/TempFolder.h"

namespace quillmarch::service {

namespace {

class Modes : public testing::Test {
 protected:
  void Install(std::initializer_list<const char*> modes) {
    for (const char* mode : modes) folder.Put(std::string(mode) + ".mode", "cat");
    pairs = FindApertiumPairs(folder.Path("."));
    options.apertiumModes = folder.Path(".");
  }
  std::string Chosen(const std::string& source, const std::string& target) {
    const ApertiumPair* pair = ChooseApertiumPair(pairs, source, target);
    return pair != nullptr ? pair->modeFile.substr(pair->modeFile.rfind('/') + 1) : "";
  }
  TempFolder folder;
  std::vector<ApertiumPair> pairs;
  EngineOptions options;
};

}  // namespace

TEST_F(Modes, PairsAreFoundByTheirFileNames) {
  Install({"eng-spa", "spa-eng", "spa-eng_US", "eng-spa-tagger", "en-gl"});
  folder.Put("README", "no pair");
  EXPECT_EQ(pairs.size(), 4u);
  EXPECT_EQ(Chosen("en", "es"), "eng-spa.mode");
  EXPECT_EQ(Chosen("English", "gl"), "en-gl.mode");
  EXPECT_EQ(Chosen("es", "gl"), "");
}

TEST_F(Modes, TheTargetsRegionChoosesItsVariant) {
  Install({"spa-eng", "spa-eng_US"});
  EXPECT_EQ(Chosen("es", "en"), "spa-eng.mode");
  EXPECT_EQ(Chosen("es-MX", "en-US"), "spa-eng_US.mode");
  EXPECT_EQ(Chosen("es", "en-GB"), "spa-eng.mode");
}

TEST_F(Modes, AVariantServesWhereThereIsNoPlainPair) {
  Install({"es-pt_BR"});
  EXPECT_EQ(Chosen("es", "pt"), "es-pt_BR.mode");
}

TEST_F(Modes, OfTwoPackagesForOnePairTheOneWithLongCodesIsTaken) {
  Install({"en-es", "eng-spa"});
  EXPECT_EQ(pairs.size(), 1u);
  EXPECT_EQ(Chosen("en", "es"), "eng-spa.mode");
}

TEST_F(Modes, SerbianIsServedBySerboCroatian) {
  Install({"hbs-eng"});
  EXPECT_EQ(Chosen("sr", "en"), "hbs-eng.mode");
}

TEST_F(Modes, AMissingFolderHoldsNoPairs) {
  EXPECT_TRUE(FindApertiumPairs(folder.Path("nowhere")).empty());
}

TEST_F(Modes, APairThatAPackageHasIsAdvisedByThePackagesName) {
  Install({"eng-spa"});
  const std::string advice = AdviseOnPair(pairs, "en", "ca");
  EXPECT_NE(advice.find("apt-get install apertium-eng-cat"), std::string::npos) << advice;
  EXPECT_NE(advice.find("--engine openai"), std::string::npos) << advice;
  EXPECT_EQ(advice.find('\n'), std::string::npos);
  EXPECT_NE(AdviseOnPair(pairs, "auto", "gl").find("apertium-en-gl"), std::string::npos);
}

TEST_F(Modes, APackageThatHasTheOtherDirectionOnlyIsNotAdvisedAgain) {
  Install({"hbs-eng"});
  const std::string advice = AdviseOnPair(pairs, "en", "sr");
  EXPECT_EQ(advice.find("apt-get"), std::string::npos) << advice;
}

TEST_F(Modes, APairThatNoPackageHasIsSaidSo) {
  const std::string advice = AdviseOnPair(pairs, "en", "ja");
  EXPECT_EQ(advice.find("apt-get"), std::string::npos) << advice;
  EXPECT_NE(advice.find("from English to Japanese"), std::string::npos) << advice;
}

TEST_F(Modes, AnUnknownLanguageIsNamed) {
  EXPECT_NE(AdviseOnPair(pairs, "auto", "klingon").find("\"klingon\""), std::string::npos);
  EXPECT_NE(AdviseOnPair(pairs, "xx", "es").find("\"xx\""), std::string::npos);
}

TEST_F(Modes, EngineServesPairAnswersWithoutAnEngine) {
  Install({"eng-spa"});
  const auto refusal = [&](const char* source, const char* target) {
    const Result<void> served = EngineServesPair(options, source, target);
    return served ? std::string() : served.error().words;
  };
  EXPECT_EQ(refusal("en", "es"), "");
  EXPECT_EQ(refusal("auto", "es-MX"), "");
  EXPECT_EQ(refusal("es", "es"), "");
  EXPECT_NE(refusal("es", "en"), "");
  EXPECT_NE(refusal("auto", "ca"), "");
  options.name = "pseudo";
  EXPECT_EQ(refusal("en", "tlh"), "");
  options.name = "openai";
  EXPECT_NE(refusal("en", "ja").find("--openai-url"), std::string::npos);
  options.openaiUrl = "http://localhost:1";
  options.openaiModel = "m";
  EXPECT_EQ(refusal("en", "ja"), "");
}

}  // namespace quillmarch::service
