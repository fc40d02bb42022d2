#include "host/remote/Wire.h"

#include <array>
#include <limits>

#include "gtest/gtest.h"

namespace quillmarch::host {

namespace {

Variant Travel(const Variant& value) {
  WireWriter out;
  out.Value(value, [](const ObjectRef&) { return WireObject{}; });
  WireReader in(out.bytes());
  Variant read = in.Value([](const WireObject&) { return ObjectRef(); });
  EXPECT_TRUE(in.AtEnd());
  return read;
}

}  // namespace

TEST(Wire, EveryValueArrivesWithItsType) {
  EXPECT_EQ(VariantType::kEmpty, Travel(Variant()).type());
  EXPECT_EQ(VariantType::kNull, Travel(Variant::Null()).type());
  const Variant small = Travel(Variant::I2(std::numeric_limits<std::int16_t>::min()));
  EXPECT_EQ(VariantType::kI2, small.type());
  EXPECT_EQ(-32768, small.whole());
  const Variant whole = Travel(Variant::I4(std::numeric_limits<std::int32_t>::min()));
  EXPECT_EQ(VariantType::kI4, whole.type());
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), whole.whole());
  const Variant flag = Travel(Variant::Bool(true));
  EXPECT_EQ(VariantType::kBool, flag.type());
  EXPECT_EQ(-1, flag.whole());
  EXPECT_EQ(kHostException, Travel(Variant::Error(kHostException)).whole());
  EXPECT_EQ(-0.1F, Travel(Variant::R4(-0.1F)).single());
  EXPECT_EQ(1e300, Travel(Variant::R8(1e300)).real());
  EXPECT_FALSE(Travel(Variant::Object({})).hasObject());
}

TEST(Wire, ATextArrivesUnitByUnitWhateverItHolds) {
  const Wide text = {u'a', u'\0', char16_t{0xD800}, u'日', char16_t{0xFFFF}};
  EXPECT_EQ(text, Travel(Variant::Text(text)).text());
  EXPECT_EQ(u"", Travel(Variant::Text(u"")).text());
}

TEST(Wire, WhatIsCutShortIsNeverTakenForWhole) {
  WireWriter out;
  out.Value(Variant::Text(u"text"), [](const ObjectRef&) { return WireObject{}; });
  out.Object({7, 9});
  for (std::size_t size = 0; size < out.bytes().size(); ++size) {
    WireReader in(std::string_view(out.bytes()).substr(0, size));
    in.Value([](const WireObject&) { return ObjectRef(); });
    in.Object();
    EXPECT_FALSE(in.ok()) << size;
  }
}

TEST(Wire, ATextLongerThanTheMessageIsRefused) {
  WireWriter out;
  out.Word(0xFFFFFFFF);
  WireReader in(out.bytes());
  EXPECT_EQ(u"", in.Text());
  EXPECT_FALSE(in.ok());
}

TEST(Wire, AnUnknownTypeIsNoValue) {
  WireWriter out;
  out.Short(0x200C);
  WireReader in(out.bytes());
  in.Value([](const WireObject&) { return ObjectRef(); });
  EXPECT_FALSE(in.ok());
}

}  // namespace quillmarch::host
