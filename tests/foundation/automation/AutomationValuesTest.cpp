#include <limits>

#include "foundation/automation/Automation.h"
#include "gtest/gtest.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

Variant AnObject() {
  test::ScriptedObject* made = nullptr;
  return Variant::Object(test::ScriptedObject::Make(made));
}

}  // namespace

TEST(VariantToText, TextIsCopiedWholeWithItsNulls) {
  const Wide text(u"a\0b", 3);
  EXPECT_EQ(text, VariantToText(Variant::Text(text)));
}

TEST(VariantToText, NoValueGivesTheEmptyString) {
  EXPECT_EQ(u"", VariantToText(Variant()));
  EXPECT_EQ(u"", VariantToText(Variant::Null()));
}

TEST(VariantToText, WhatHasNoTextGivesTheEmptyString) {
  EXPECT_EQ(u"", VariantToText(Variant::Error(kFail)));
  EXPECT_EQ(u"", VariantToText(AnObject()));
}

TEST(VariantToText, NumbersAreWrittenShortest) {
  EXPECT_EQ(u"-32768", VariantToText(Variant::I2(-32768)));
  EXPECT_EQ(u"2147483647", VariantToText(Variant::I4(2147483647)));
  EXPECT_EQ(u"-1", VariantToText(Variant::Bool(true)));
  EXPECT_EQ(u"0", VariantToText(Variant::Bool(false)));
  EXPECT_EQ(u"0.1", VariantToText(Variant::R4(0.1F)));
  EXPECT_EQ(u"12.5", VariantToText(Variant::R8(12.5)));
  EXPECT_EQ(u"2024", VariantToText(Variant::R8(2024)));
  EXPECT_EQ(u"0.333333333333333", VariantToText(Variant::R8(1.0 / 3)));
  EXPECT_EQ(u"0.3333333", VariantToText(Variant::R4(1.0F / 3)));
  EXPECT_EQ(u"123456789012345", VariantToText(Variant::R8(123456789012345.0)));
  EXPECT_EQ(u"0.0001", VariantToText(Variant::R8(0.0001)));
}

TEST(VariantToText, NegativeZeroIsZero) {
  EXPECT_EQ(u"0", VariantToText(Variant::R8(-0.0)));
  EXPECT_EQ(u"0", VariantToText(Variant::R4(-0.0F)));
}

TEST(VariantToText, LargeAndSmallNumbersTakeAnExponent) {
  EXPECT_EQ(u"1E+20", VariantToText(Variant::R8(1e20)));
  EXPECT_EQ(u"1.5E-07", VariantToText(Variant::R8(1.5e-7)));
  EXPECT_EQ(u"1E+100", VariantToText(Variant::R8(1e100)));
}

TEST(VariantToWhole, I2KeepsItsSignAndI4IsTaken) {
  std::int32_t whole = 0;
  EXPECT_TRUE(VariantToWhole(Variant::I2(-2), whole));
  EXPECT_EQ(-2, whole);
  EXPECT_TRUE(VariantToWhole(Variant::I4(1 << 30), whole));
  EXPECT_EQ(1 << 30, whole);
}

TEST(VariantToWhole, OtherTypesAreConverted) {
  std::int32_t whole = 7;
  EXPECT_TRUE(VariantToWhole(Variant(), whole));
  EXPECT_EQ(0, whole);
  EXPECT_TRUE(VariantToWhole(Variant::Bool(true), whole));
  EXPECT_EQ(-1, whole);
  EXPECT_TRUE(VariantToWhole(Variant::R8(2.5), whole));
  EXPECT_EQ(2, whole);
  EXPECT_TRUE(VariantToWhole(Variant::R8(3.5), whole));
  EXPECT_EQ(4, whole);
  EXPECT_TRUE(VariantToWhole(Variant::R4(-2.5F), whole));
  EXPECT_EQ(-2, whole);
  EXPECT_TRUE(VariantToWhole(Variant::Text(u" +12.6 "), whole));
  EXPECT_EQ(13, whole);
}

TEST(VariantToWhole, WhatIsNoNumberOrTooLargeLeavesTheTarget) {
  std::int32_t whole = 7;
  for (const Variant& value :
       {Variant::Null(), Variant::Error(kFail), AnObject(), Variant::Text(u""),
        Variant::Text(u"12x"), Variant::Text(u"++1"), Variant::R8(2147483648.0),
        Variant::R8(-2147483649.0), Variant::R8(std::numeric_limits<double>::quiet_NaN()),
        Variant::R8(std::numeric_limits<double>::infinity())}) {
    EXPECT_FALSE(VariantToWhole(value, whole));
  }
  EXPECT_EQ(7, whole);
  EXPECT_TRUE(VariantToWhole(Variant::R8(-2147483648.0), whole));
}

TEST(VariantToSingle, NumbersAreConverted) {
  float single = 0;
  EXPECT_TRUE(VariantToSingle(Variant::R4(1.25F), single));
  EXPECT_EQ(1.25F, single);
  EXPECT_TRUE(VariantToSingle(Variant::R8(2.5), single));
  EXPECT_EQ(2.5F, single);
  EXPECT_TRUE(VariantToSingle(Variant::I4(-2), single));
  EXPECT_EQ(-2.0F, single);
  EXPECT_FALSE(VariantToSingle(Variant::Null(), single));
  EXPECT_FALSE(VariantToSingle(Variant::R8(1e300), single));
  EXPECT_EQ(-2.0F, single);
}

TEST(VariantToFlag, BoolAndWholeNumbersCountAndNothingElse) {
  EXPECT_TRUE(VariantToFlag(Variant::Bool(true)));
  EXPECT_TRUE(VariantToFlag(Variant::I4(-1)));
  EXPECT_TRUE(VariantToFlag(Variant::I4(-2)));
  EXPECT_TRUE(VariantToFlag(Variant::I2(1)));
  EXPECT_FALSE(VariantToFlag(Variant::Bool(false)));
  EXPECT_FALSE(VariantToFlag(Variant::I4(0)));
  EXPECT_FALSE(VariantToFlag(Variant::R8(1)));
  EXPECT_FALSE(VariantToFlag(Variant::Text(u"true")));
  EXPECT_FALSE(VariantToFlag(Variant()));
}

}  // namespace quillmarch::addin
