#include "service/TokenTable.h"

#include <gtest/gtest.h>

#include "service/PrivateFile.h"

namespace quillmarch::service {

namespace {

class TokenFile : public testing::Test {
 protected:
  // The reason of a failure, or nothing.
  std::string Load(const std::string& text) {
    const Result<void> loaded = table.Load(PutPrivate(folder, "tokens", text), {});
    return loaded ? "" : loaded.error().words;
  }
  TempFolder folder;
  TokenTable table;
};

}  // namespace

TEST_F(TokenFile, TokensWithAndWithoutCreditsAreRead) {
  ASSERT_EQ(Load("# people\nfree\n\n  paid 100  \r\n"), "");
  EXPECT_FALSE(table.Open());
  const TokenHandle open = table.Find("Bearer free");
  const TokenHandle paid = table.Find("Bearer paid");
  ASSERT_TRUE(open && paid);
  EXPECT_TRUE(table.Take(*open, 1'000'000'000));
  EXPECT_TRUE(table.Take(*paid, 60));
  EXPECT_FALSE(table.Take(*paid, 41));
  EXPECT_TRUE(table.Take(*paid, 40));
  table.GiveBack(*paid, 5);
  EXPECT_TRUE(table.Take(*paid, 5));
  EXPECT_FALSE(table.Take(*paid, 1));
}

TEST_F(TokenFile, ATokenIsCalledByItsNameOrByItsLine) {
  ASSERT_EQ(Load("# people\na name=Ann\nb 10 name=Bob\nc\n"), "");
  EXPECT_EQ(table.Find("Bearer a")->name, "Ann");
  EXPECT_EQ(table.Find("Bearer b")->name, "Bob");
  EXPECT_TRUE(table.Find("Bearer b")->limited);
  EXPECT_EQ(table.Find("Bearer c")->name, "line-4");
}

TEST_F(TokenFile, AMalformedLineIsNamedByItsNumber) {
  EXPECT_NE(Load("good\nbad ten\n").find("Line 2"), std::string::npos);
  for (const char* line : {"a 10 20\n", "a -5\n", "a 99999999999999999999999\n", "a name=\n",
                           "a name=b c\n", "a name=b 10\n"}) {
    EXPECT_NE(Load(line).find("Line 1"), std::string::npos) << line;
  }
}

TEST_F(TokenFile, AFileWithoutTokensIsRefusedRatherThanOpeningTheServiceToAll) {
  EXPECT_NE(Load("# nobody yet\n\n").find("no token"), std::string::npos);
}

TEST_F(TokenFile, AMissingFileAndAFolderAreRefused) {
  EXPECT_FALSE(table.Load(folder.Path("none"), {}));
  EXPECT_FALSE(table.Load(folder.Path("."), {}));
}

TEST_F(TokenFile, AFileThatEverybodyMayReadIsRefused) {
  const std::string path = PutPrivate(folder, "open", "secret\n");
  chmod(path.c_str(), 0644);
  const Result<void> loaded = table.Load(path, {});
  ASSERT_FALSE(loaded);
  EXPECT_EQ(loaded.error().code, ErrorCode::kDenied);
  EXPECT_NE(loaded.error().words.find("chmod o-rw " + path), std::string::npos)
      << loaded.error().words;
  chmod(path.c_str(), 0640);
  EXPECT_TRUE(table.Load(path, {}));
}

TEST_F(TokenFile, LoadedAnewItKeepsWhatIsUsedAndForgetsWhoIsGone) {
  ASSERT_EQ(Load("stays 100\ngoes\n"), "");
  const TokenHandle gone = table.Find("Bearer goes");
  ASSERT_TRUE(table.Take(*table.Find("Bearer stays"), 60));
  ASSERT_EQ(Load("new\nstays 120\n"), "");
  EXPECT_TRUE(table.Find("Bearer new"));
  EXPECT_FALSE(table.Find("Bearer goes"));
  EXPECT_FALSE(table.Take(*table.Find("Bearer stays"), 61));
  EXPECT_TRUE(table.Take(*table.Find("Bearer stays"), 60));
  table.GiveBack(*gone, 1);
}

TEST_F(TokenFile, AFileThatIsBrokenWhenLoadedAnewChangesNothing) {
  ASSERT_EQ(Load("good\n"), "");
  EXPECT_NE(Load("good\nbad ten\n"), "");
  EXPECT_TRUE(table.Find("Bearer good"));
}

TEST(TokenTable, WithoutTokensEverybodyIsServed) {
  EXPECT_TRUE(TokenTable().Open());
}

TEST(TokenTable, TheSchemeIsReadInAnyCaseAndTheTokenExactly) {
  TokenTable table;
  ASSERT_TRUE(table.Load("", {"Secret"}));
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
