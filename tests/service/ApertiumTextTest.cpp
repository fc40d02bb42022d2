// How texts are guarded on their way through a pipeline.
#include "service/engines/ApertiumText.h"

#include <gtest/gtest.h>

#include <algorithm>

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
  EXPECT_TRUE(TranslateTexts({text}, run, out));
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

TEST(ApertiumText, AFailureOfThePipelineIsTold) {
  Strings out;
  EXPECT_FALSE(TranslateTexts(
      {"word"}, [](const Strings&, Strings&) { return false; }, out));
}

}  // namespace quillmarch::service
