#include "foundation/settings/UserConfig.h"

#include <gtest/gtest.h>

#include "foundation/settings/UserConfigFile.h"

namespace quillmarch::addin {

namespace {

class UserConfiguration : public testing::Test {
 protected:
  bool WriteWidth(std::int32_t value) { return WritePaneWidth(value, error_); }
  bool WriteLang(WideView tag) { return WriteUiLang(tag, error_); }
  UserConfigFile config_;
  std::uint32_t error_ = 0;
  bool fromFile_ = false;
};

TEST_F(UserConfiguration, IsWrittenForTheFirstTimeAsOneMemberALine) {
  EXPECT_TRUE(WriteWidth(600));
  EXPECT_EQ(config_.Read(), "{\n  \"paneWidthPt\": 600\n}\n");
  config_.Remove();
  EXPECT_TRUE(WriteLang(u"ja"));
  EXPECT_EQ(config_.Read(), "{\n  \"uiLang\": \"ja\"\n}\n");
}

TEST_F(UserConfiguration, KeepsForeignKeysTheirOrderAndSpacingUnderBothWriters) {
  config_.Write("{ \"b\" : 1,\r\n\t\"paneWidthPt\":300 , \"uiLang\" : \"en\",\"a\":[ ]}\r\n");
  EXPECT_TRUE(WriteWidth(700));
  EXPECT_TRUE(WriteLang(u"zh-TW"));
  EXPECT_EQ(config_.Read(),
            "{ \"b\" : 1,\r\n\t\"paneWidthPt\":700 , \"uiLang\" : \"zh-TW\",\"a\":[ ]}\r\n");
}

TEST_F(UserConfiguration, AWidthOutsideItsRangeReadsAsTheDefault) {
  for (const char* value : {"239", "1601", "-300", "\"600\""}) {
    config_.Write(std::string("{\"paneWidthPt\":") + value + "}");
    EXPECT_EQ(ReadPaneWidth(fromFile_), 520) << value;
    EXPECT_FALSE(fromFile_);
  }
  for (const std::int32_t value : {240, 1600}) {
    config_.Write("{\"paneWidthPt\":" + std::to_string(value) + "}");
    EXPECT_EQ(ReadPaneWidth(fromFile_), value);
    EXPECT_TRUE(fromFile_);
  }
}

TEST_F(UserConfiguration, WithoutAFileTheWidthIsTheDefaultAndTheLanguageEmpty) {
  EXPECT_EQ(ReadPaneWidth(fromFile_), 520);
  EXPECT_FALSE(fromFile_);
  EXPECT_EQ(ReadUiLang(), u"");
}

TEST_F(UserConfiguration, AFileThatCannotBePatchedIsReplacedAsAWhole) {
  config_.Write("no brace here");
  EXPECT_TRUE(WriteWidth(600));
  EXPECT_EQ(config_.Read(), "{\n  \"paneWidthPt\": 600\n}\n");
  config_.Write("{\"paneWidthPt\": null, \"keep\": 1}");
  EXPECT_TRUE(WriteWidth(600));
  EXPECT_EQ(config_.Read(), "{\n  \"paneWidthPt\": 600\n}\n");
}

TEST_F(UserConfiguration, WhatCannotBeOpenedIsNotReplaced) {
  ASSERT_TRUE(CreateFolder(ConfigPath()));
  EXPECT_FALSE(WriteWidth(600));
  EXPECT_NE(error_, 0U);
  EXPECT_FALSE(WriteLang(u"ja"));
  EXPECT_NE(error_, 0U);
  EXPECT_FALSE(Exists(ConfigPath() + u".tmp"));
}

TEST_F(UserConfiguration, AMarkAtTheStartIsGoneAfterAWrite) {
  config_.Write("\xEF\xBB\xBF{\"paneWidthPt\":300}");
  EXPECT_EQ(ReadPaneWidth(fromFile_), 300);
  EXPECT_TRUE(WriteWidth(310));
  EXPECT_EQ(config_.Read(), "{\"paneWidthPt\":310}");
}

TEST_F(UserConfiguration, ATagOutsideTheListIsRefusedWithoutTouchingTheFile) {
  config_.Write("{\"uiLang\": \"de\"}");
  EXPECT_FALSE(WriteLang(u"fr-FR"));
  EXPECT_FALSE(WriteLang(u""));
  EXPECT_EQ(config_.Read(), "{\"uiLang\": \"de\"}");
}

TEST_F(UserConfiguration, ReadingAnEmptyFileIsTrueWithEmptyText) {
  config_.Write("");
  std::string text = "old";
  EXPECT_TRUE(ReadConfigText(ConfigPath(), text));
  EXPECT_EQ(text, "");
  config_.Remove();
  EXPECT_FALSE(ReadConfigText(ConfigPath(), text));
}

TEST_F(UserConfiguration, NoTemporaryFileRemainsAfterAFailedMove) {
  // A folder that is not empty stands where the file should go.
  const Wide path = ConfigPath();
  ASSERT_TRUE(CreateFolder(path));
  ASSERT_TRUE(AppendToFile(JoinPath(path, u"inside"), "x"));
  EXPECT_FALSE(WriteConfigAtomic(path, "{}", &error_));
  EXPECT_NE(error_, 0u);
  EXPECT_FALSE(Exists(path + u".tmp"));
}

}  // namespace

}  // namespace quillmarch::addin
