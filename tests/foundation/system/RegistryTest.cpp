#include "foundation/system/Registry.h"

#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kKey = u"Software\\Quillmarch\\Test";

Wide Read(WideView name, WideView key = kKey) {
  Wide text = u"?";
  ReadUserText(key, name, 1024, text);
  return text;
}

}  // namespace

TEST(Registry, WhatIsWrittenIsReadBack) {
  const Wide odd = u"tab\t line\n cr\r back\\slash \u4e2d \U0001F600";
  ASSERT_TRUE(WriteUserText(kKey, u"Odd", odd));
  EXPECT_EQ(odd, Read(u"Odd"));
}

TEST(Registry, ALaterValueReplacesTheEarlierOneOfAnyCase) {
  ASSERT_TRUE(WriteUserText(kKey, u"Name", u"one"));
  ASSERT_TRUE(WriteUserText(u"SOFTWARE\\quillmarch\\test", u"NAME", u"two"));
  EXPECT_EQ(u"two", Read(u"Name"));
}

TEST(Registry, OtherValuesStay) {
  WriteUserText(kKey, u"First", u"1");
  WriteUserText(kKey, u"Second", u"2");
  WriteUserText(kKey, u"First", u"3");
  EXPECT_EQ(u"3", Read(u"First"));
  EXPECT_EQ(u"2", Read(u"Second"));
}

TEST(Registry, AMissingValueKeyOrTypeIsNoText) {
  WriteUserNumber(kKey, u"Number", 7);
  EXPECT_EQ(u"", Read(u"Number"));
  EXPECT_EQ(u"", Read(u"Missing"));
  EXPECT_EQ(u"", Read(u"Odd", u"Software\\Quillmarch\\Nowhere"));
  Wide text;
  EXPECT_FALSE(ReadUserText(kKey, u"Missing", 1024, text));
}

TEST(Registry, ATextNeedsRoomForItsTerminator) {
  WriteUserText(kKey, u"Four", u"1234");
  Wide text;
  EXPECT_FALSE(ReadUserText(kKey, u"Four", 8, text));
  EXPECT_TRUE(ReadUserText(kKey, u"Four", 10, text));
  EXPECT_EQ(u"1234", text);
}

}  // namespace quillmarch::addin
