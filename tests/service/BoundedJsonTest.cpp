#include "service/BoundedJson.h"

#include <gtest/gtest.h>

#include <string>

namespace quillmarch::service {

TEST(BoundedJson, WhatFitsIsRead) {
  const auto json = ParseJson(R"({"a":[1,{"b":"x"}]})", {3, 10});
  ASSERT_TRUE(json) << json.error().words;
  EXPECT_EQ((*json)["a"][1]["b"], "x");
}

TEST(BoundedJson, WhatIsNestedDeeperIsDamaged) {
  EXPECT_TRUE(ParseJson("[[[]]]", {3, 10}));
  for (const std::string& text :
       {std::string("[[[[]]]]"), std::string(1'000'000, '['), std::string(1'000'000, '{')}) {
    const auto json = ParseJson(text, {3, 10'000'000});
    ASSERT_FALSE(json);
    EXPECT_EQ(json.error().code, ErrorCode::kDamaged);
  }
}

TEST(BoundedJson, WhatHoldsMoreValuesIsTooLarge) {
  EXPECT_TRUE(ParseJson("[1,2,3]", {3, 4}));
  const auto json = ParseJson("[1,2,3,4]", {3, 4});
  ASSERT_FALSE(json);
  EXPECT_EQ(json.error().code, ErrorCode::kTooLarge);
}

TEST(BoundedJson, BracketsAndCommasInStringsDoNotCount) {
  EXPECT_TRUE(ParseJson(R"(["[[[[,,,,\"[[[[,,,,\\"])", {1, 2}));
}

TEST(BoundedJson, WhatIsNotJsonIsDamaged) {
  for (const char* text : {"", "{", "[1,]", "\"\xFF\"", "nul"}) {
    const auto json = ParseJson(text, {3, 10});
    ASSERT_FALSE(json) << text;
    EXPECT_EQ(json.error().code, ErrorCode::kDamaged);
  }
}

}  // namespace quillmarch::service
