#include "service/JsonText.h"

#include <gtest/gtest.h>

namespace quillmarch::service {

namespace {
std::string Quoted(std::string_view text) {
  std::string out;
  AppendJsonString(out, text);
  return out;
}
}  // namespace

TEST(JsonText, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(Quoted("a\"b\\c"), "\"a\\\"b\\\\c\"");
}

TEST(JsonText, LineBreaksAndTabsHaveTheirShortForm) {
  EXPECT_EQ(Quoted("\n\r\t"), "\"\\n\\r\\t\"");
}

TEST(JsonText, OtherControlCharactersNeverUseAShortFormThatAReaderMayTakeForALetter) {
  EXPECT_EQ(Quoted("\b\f\v\x1f"), "\"\\u0008\\u000c\\u000b\\u001f\"");
}

TEST(JsonText, NonAsciiStaysRawAndBrokenBytesAreReplaced) {
  EXPECT_EQ(Quoted("中😀"), "\"中😀\"");
  EXPECT_EQ(Quoted("\xFF"), "\"\xEF\xBF\xBD\"");
}

TEST(JsonText, AnErrorIsItsCodeAndMessage) {
  EXPECT_EQ(ErrorJson("bad_request", "No \"texts\"."),
            "{\"code\":\"bad_request\",\"message\":\"No \\\"texts\\\".\"}");
}

}  // namespace quillmarch::service
