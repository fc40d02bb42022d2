#include "service/engines/ApertiumStream.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

TEST(ApertiumStream, ATextEndsAsASentence) {
  EXPECT_EQ(ToApertium("Plan"), "Plan.[]");
}

TEST(ApertiumStream, WhatMeansSomethingInTheStreamIsEscaped) {
  EXPECT_EQ(ToApertium("^a$/<b>{c}[d]@\\"), "\\^a\\$\\/\\<b\\>\\{c\\}\\[d\\]\\@\\\\.[]");
}

TEST(ApertiumStream, WhiteSpaceBeyondOneSpaceTravelsAlong) {
  EXPECT_EQ(ToApertium("a b  c\vd\te"), "a b[  ]c.[][\v]d[\t]e.[]");
}

TEST(ApertiumStream, ALineBreakEndsASentence) {
  EXPECT_EQ(ToApertium("a\nb"), "a.[][\n]b.[]");
  EXPECT_EQ(ToApertium("a \r\n b"), "a.[][ \r\n ]b.[]");
  EXPECT_EQ(ToApertium("a\n\nb"), "a.[][\n\n]b.[]");
}

TEST(ApertiumStream, ATildeTravelsAlongSinceThePipelineWouldEatIt) {
  EXPECT_EQ(ToApertium("x ~y"), "x[ ~]y.[]");
}

TEST(ApertiumStream, NulIsDropped) {
  EXPECT_EQ(ToApertium(std::string_view("a.\0b", 4)), "a.b.[]");
}

TEST(ApertiumStream, SpacesThatThePipelineAddsNextToOthersAreDropped) {
  EXPECT_EQ(FromApertium("Es el CEO  casa.[]"), "Es el CEO casa");
  EXPECT_EQ(FromApertium("a [  ] b.[]"), "a  b");
  EXPECT_EQ(FromApertium("a.[] [\n] b.[]"), "a\nb");
  EXPECT_EQ(FromApertium("a[  ]b.[]"), "a  b");
}

TEST(ApertiumStream, TextsComeBackAsTheyWere) {
  for (const std::string text :
       {"", "Plan", "a^$/<>{}[]@\\b", "  x \t\v y\n\nz ", "~ # * + = _ ~", "ends with a stop.",
        "[[QM_REF_1]] \\[ ] \\\\", "中文 ~ \u2028 😀"}) {
    EXPECT_EQ(FromApertium(ToApertium(text)), text);
  }
}

}  // namespace quillmarch::service
