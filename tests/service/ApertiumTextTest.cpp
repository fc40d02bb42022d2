// How texts are guarded on their way through a pipeline.
#include "service/engines/ApertiumText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace quillmarch::service {

namespace {

using Strings = std::vector<std::string>;

// A pipeline that changes the case of every letter, stand-ins included.
bool UpperCase(const Strings& streams, Strings& out) {
  out = streams;
  for (std::string& text : out) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  }
  return true;
}

// A pipeline that loses every word with an x.
bool Forgetful(const Strings& streams, Strings& out) {
  out.clear();
  for (const std::string& stream : streams) {
    std::string kept;
    std::size_t begin = 0;
    while (begin < stream.size()) {
      const std::size_t end = std::min(stream.find(' ', begin), stream.size());
      const std::string word = stream.substr(begin, end - begin);
      if (word.find('x') == std::string::npos) kept += word + " ";
      begin = end + 1;
    }
    out.push_back(kept);
  }
  return true;
}

std::string Through(const ApertiumRun& run, const std::string& text) {
  Strings out;
  EXPECT_TRUE(TranslateTexts({text}, {}, run, out));
  return out.at(0);
}

}  // namespace

TEST(ApertiumText, LockedPiecesComeBackWhateverBecomesOfTheirCase) {
  EXPECT_EQ(Through(UpperCase, "see [[QM_a_1]] at www.example.com now"),
            "SEE [[QM_a_1]] AT www.example.com NOW");
}

TEST(ApertiumText, WhenAStandInIsLostThePiecesBetweenAreTranslatedOneByOne) {
  EXPECT_EQ(Through(Forgetful, "see [[QM_a_1]] here"), "see [[QM_a_1]] here");
}

TEST(ApertiumText, ATextThatLooksLikeAStandInIsNotMistakenForOne) {
  EXPECT_EQ(Through(UpperCase, "Qxzazx and qxz and [[QM_a_1]]"), "QXZAZX AND QXZ AND [[QM_a_1]]");
}

TEST(ApertiumText, ManyLockedPiecesKeepTheirOrder) {
  std::string text = "go";
  std::string wanted = "GO";
  for (int i = 0; i < 50; ++i) {
    const std::string piece = " [[QM_a_" + std::to_string(i) + "]]";
    text += piece;
    wanted += piece;
  }
  EXPECT_EQ(Through(UpperCase, text), wanted);
}

TEST(ApertiumText, WhatHoldsNoLetterIsNotSent) {
  const ApertiumRun refuse = [](const Strings&, Strings&) { return false; };
  EXPECT_EQ(Through(refuse, "12 % - [[QM_a_1]] www.example.com"),
            "12 % - [[QM_a_1]] www.example.com");
  EXPECT_TRUE(HasTextToTranslate("12 é"));
  EXPECT_TRUE(HasTextToTranslate("计"));
  EXPECT_FALSE(HasTextToTranslate("12 \u00A0 $"));
}

TEST(ApertiumText, ALineInCapitalsComesBackInCapitals) {
  const ApertiumRun lower = [](const Strings& streams, Strings& out) {
    out = streams;
    for (std::string& text : out) {
      std::transform(text.begin(), text.end(), text.begin(),
                     [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    }
    return true;
  };
  EXPECT_EQ(Through(lower, "EXECUTIVE SUMMARY"), "EXECUTIVE SUMMARY");
  EXPECT_EQ(Through(lower, "OUR PLAN\vHow it works\vTHE END"), "OUR PLAN\vhow it works\vTHE END");
  EXPECT_EQ(Through(lower, "SEE [[QM_a_1]] NOW"), "SEE [[QM_a_1]] NOW");
  EXPECT_EQ(Through(lower, "AÑO ÉTÉ ŽÁBA"), "AÑO ÉTÉ ŽÁBA");
  EXPECT_EQ(Through(lower, "COMPANY overview"), "company overview");
}

TEST(ApertiumText, GlossaryTermsGoRoundThePipeline) {
  const std::vector<EngineTerm> terms = {{"Plan", "Proyecto", ""},
                                         {"Quill March", "", ""},
                                         {"Quill", "Pluma", ""},
                                         {"R&D", "I+D", ""}};
  const auto through = [&](const std::string& text) {
    Strings out;
    EXPECT_TRUE(TranslateTexts({text}, terms, UpperCase, out));
    return out.at(0);
  };
  EXPECT_EQ(through("our Plan for Quill March, R&D and Quill"),
            "OUR Proyecto FOR Quill March, I+D AND Pluma");
  EXPECT_EQ(through("Planning a plan"), "PLANNING A PLAN");
  EXPECT_EQ(through("Plan"), "Proyecto");
}

TEST(ApertiumText, ATermWhoseStandInGetsLostIsStillPutIn) {
  Strings out;
  ASSERT_TRUE(TranslateTexts({"see the Plan here"}, {{"Plan", "Proyecto", ""}}, Forgetful, out));
  EXPECT_EQ(out[0], "see the Proyecto here");
}

TEST(ApertiumText, AWordThatIsTooLongStaysAndTheRestIsTranslated) {
  const std::string word(100'000, 'w');
  EXPECT_TRUE(HasTooLongWord("the " + word));
  EXPECT_FALSE(HasTooLongWord("the " + std::string(kLongestWord, 'w')));
  const ApertiumRun run = [&](const Strings& streams, Strings& out) {
    EXPECT_EQ(streams[0].find(word), std::string::npos);
    return UpperCase(streams, out);
  };
  EXPECT_EQ(Through(run, "the " + word + " house"), "THE " + word + " HOUSE");
}

TEST(ApertiumText, AHundredThousandPlaceholdersTakeNoLongerThanTheirLength) {
  std::string text = "go";
  for (int i = 0; i < 100'000; ++i) text += " [[QM_a_" + std::to_string(i) + "]]";
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Through(UpperCase, text), "GO" + text.substr(2));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(ApertiumText, AFailureOfThePipelineIsTold) {
  Strings out;
  EXPECT_FALSE(TranslateTexts(
      {"word"}, {}, [](const Strings&, Strings&) { return false; }, out));
}

}  // namespace quillmarch::service
