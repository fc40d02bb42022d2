#include <gtest/gtest.h>

#include "host/model/Host.h"

namespace quillmarch::host {

TEST(Personality, EachNameOfTheTableIsFoundAndNoOther) {
  for (const char* name :
       {"powerpoint", "nested", "no-textframe2", "two-autosize-states", "top-level-nodes", "wps"}) {
    const Personality* const found = FindPersonality(name);
    ASSERT_NE(found, nullptr) << name;
    EXPECT_EQ(found->name, name);
  }
  EXPECT_EQ(FindPersonality("PowerPoint"), nullptr);
  EXPECT_EQ(FindPersonality(""), nullptr);
}

TEST(Personality, OnlyNestedListsGroupsLevelByLevel) {
  EXPECT_TRUE(FindPersonality("powerpoint")->flatGroups);
  EXPECT_TRUE(FindPersonality("wps")->flatGroups);
  EXPECT_FALSE(FindPersonality("nested")->flatGroups);
}

TEST(Personality, TheWpsHostNamesItselfSo) {
  EXPECT_EQ(FindPersonality("wps")->applicationName, u"WPS Presentation");
  EXPECT_EQ(FindPersonality("powerpoint")->applicationName, u"Microsoft PowerPoint");
}

}  // namespace quillmarch::host
