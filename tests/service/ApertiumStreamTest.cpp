#include "service/engines/ApertiumStream.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

TEST(ApertiumStream, ATextEndsAsASentence) {
  EXPECT_EQ(ToApertium("Plan"), "Plan.[]");
}

TEST(ApertiumStream, WhatMeansSomethingInTheStreamIsEscaped) {
  EXPECT_EQ(ToApertium("^a$/<b>{c}[d]@\\"), "\\^a\\$\\/\\<b\\>\\{c\\}\\[d\\]\\@\\\\.[]");
}

TEST(ApertiumStream, WhiteSpaceBeyondOneBlankTravelsAlong) {
  EXPECT_EQ(ToApertium("a b  c\vd\te"), "a b[  ]c[\v]d[\t]e.[]");
  EXPECT_EQ(ToApertium("a\nb"), "a[\n]b.[]");
}

TEST(ApertiumStream, AnEmptyLineEndsASentence) {
  EXPECT_EQ(ToApertium("a\n\nb"), "a.[][\n\n]b.[]");
}

TEST(ApertiumStream, ATildeTravelsAlongSinceThePipelineWouldEatIt) {
  EXPECT_EQ(ToApertium("x ~y"), "x[ ~]y.[]");
}

TEST(ApertiumStream, NulIsDropped) {
  EXPECT_EQ(ToApertium(std::string_view("a.\0b", 4)), "a.b.[]");
}

TEST(ApertiumStream, TextsComeBackAsTheyWere) {
  for (const std::string text :
       {"", "Plan", "a^$/<>{}[]@\\b", "  x \t\v y\n\nz ", "~ # * + = _ ~", "ends with a stop.",
        "[[QM_REF_1]] \\[ ] \\\\", "中文 ~ \u2028 😀"}) {
    EXPECT_EQ(FromApertium(ToApertium(text)), text);
  }
}

}  // namespace quillmarch::service
