#include "foundation/text/JsonTextReference.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace quillmarch::addin {

namespace {

// Made of what readers look for, so that most of them find something to stumble over, with
// fillings as long as the blocks in which long texts are searched.
Wide AnyText(std::mt19937& chance, std::size_t pieces) {
  static const std::array<Wide, 47> kPieces = {
      u"\"k\"",   u"\"k\":", u"\"k\" :\t", u"\"k\\\"", u"\"\"",       u"\"\"\"", u"\"",
      u"\\",      u"\\\\",   u"\\\"",      u"\\n",     u"\\t",        u"\\b",    u"\\u0041",
      u"\\u12zz", u"\\u",    u"\\ud83d",   u"\\uFFFF", u"u",          u":",      u" ",
      u"\t",      u",",      u"[",         u"]",       u"[]",         u"{",      u"}",
      u"{}",      u"true",   u"false",     u"null",    u"1",          u"10",     u"-5",
      u"12.5e3",  u"0x1F",   u".5",        u"1e",      u"1e-999",     u"+7",     u"k",
      u"\u00E9",  u"\u4E2D", u"\xD83D",    u"\n",      Wide(61, u'x')};
  Wide text;
  for (std::size_t i = 0; i < pieces; ++i) {
    text += kPieces[chance() % kPieces.size()];
    if (chance() % 16 == 0) text += Wide(chance() % 80, u'y');
  }
  return text;
}

TEST(JsonReaders, GiveForAnyTextWhatThePlainestOnesGive) {
  std::mt19937 chance(11);
  const std::array<Wide, 5> keys = {u"k", u"", u"\"", u"k\\", u"x"};
  for (int turn = 0; turn < 20000; ++turn) {
    const Wide text = AnyText(chance, chance() % 40);
    for (const Wide& key : keys) {
      ASSERT_EQ(GivenByReaders(text, key), GivenPlainly(text, key))
          << ToUtf8(text) << "\nkey " << ToUtf8(key);
    }
  }
}

TEST(JsonReaders, GiveForATextCutAnywhereWhatThePlainestOnesGive) {
  const Wide text =
      u"{\"a\":\"" + Wide(70, u'f') +
      u"\\u00e9\\\"\",\"k\" :\t{\"s\":\"}\\\\\",\"k\":[\"one\",2,{\"three\":\"\\ud83d\"}]},"
      u"\"n\":-12.5e-3,\"b\":true,\"f\": false}";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const WideView cut = WideView(text).substr(0, length);
    for (const WideView key : {u"a", u"k", u"s", u"n", u"b", u"f", u"three", u"none"}) {
      ASSERT_EQ(GivenByReaders(cut, key), GivenPlainly(cut, key)) << length;
    }
  }
}

}  // namespace

}  // namespace quillmarch::addin
