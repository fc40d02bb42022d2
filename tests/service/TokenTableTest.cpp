#include "service/TokenTable.h"

#include <gtest/gtest.h>

#include "support/TempFolder.h"

namespace quillmarch::service {

namespace {

class TokenFile : public testing::Test {
 protected:
  bool Load(const std::string& text) { return table.AddFile(folder.Put("tokens", text), error); }
  TempFolder folder;
  TokenTable table;
  std::string error;
};

}  // namespace

TEST_F(TokenFile, TokensWithAndWithoutCreditsAreRead) {
  ASSERT_TRUE(Load("# people\nfree\n\n  paid 100  \r\n")) << error;
  EXPECT_FALSE(table.Open());
  const auto open = table.Find("Bearer free");
  const auto paid = table.Find("Bearer paid");
  ASSERT_TRUE(open && paid);
  EXPECT_TRUE(table.Take(*open, 1'000'000'000));
  EXPECT_TRUE(table.Take(*paid, 60));
  EXPECT_FALSE(table.Take(*paid, 41));
  EXPECT_TRUE(table.Take(*paid, 40));
  table.GiveBack(*paid, 5);
  EXPECT_TRUE(table.Take(*paid, 5));
  EXPECT_FALSE(table.Take(*paid, 1));
}

TEST_F(TokenFile, AMalformedLineIsNamedByItsNumber) {
  EXPECT_FALSE(Load("good\nbad ten\n"));
  EXPECT_NE(error.find("Line 2"), std::string::npos) << error;
  EXPECT_FALSE(Load("a 10 20\n"));
  EXPECT_FALSE(Load("a -5\n"));
  EXPECT_FALSE(Load("a 99999999999999999999999\n"));
}

TEST_F(TokenFile, AFileWithoutTokensIsRefusedRatherThanOpeningTheServiceToAll) {
  EXPECT_FALSE(Load("# nobody yet\n\n"));
  EXPECT_NE(error.find("no token"), std::string::npos) << error;
}

TEST_F(TokenFile, AMissingFileAndAFolderAreRefused) {
  EXPECT_FALSE(table.AddFile(folder.Path("none"), error));
  EXPECT_FALSE(table.AddFile(folder.Path("."), error));
}

TEST(TokenTable, WithoutTokensEverybodyIsServed) {
  EXPECT_TRUE(TokenTable().Open());
}

TEST(TokenTable, TheSchemeIsReadInAnyCaseAndTheTokenExactly) {
  TokenTable table;
  table.Add("Secret");
  EXPECT_TRUE(table.Find("bearer Secret"));
  EXPECT_TRUE(table.Find("BEARER Secret"));
  EXPECT_FALSE(table.Find("Bearer secret"));
  EXPECT_FALSE(table.Find("Bearer Secret "));
  EXPECT_FALSE(table.Find("Bearer Secre"));
  EXPECT_FALSE(table.Find("Basic Secret"));
  EXPECT_FALSE(table.Find("Bearer "));
  EXPECT_FALSE(table.Find("Secret"));
  EXPECT_FALSE(table.Find(""));
}

}  // namespace quillmarch::service
