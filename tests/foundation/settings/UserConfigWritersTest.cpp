// Two processes that write the configuration at once, and a third that reads it meanwhile.
#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "foundation/settings/UserConfigFile.h"
#include "foundation/settings/WriterProcess.h"

namespace quillmarch::addin {

namespace {

constexpr int kWrites = 100;

std::string LongText() {
  return std::string(300000, 'a') + "\n";
}
std::string ShortText() {
  return std::string(20, 'b') + "\n";
}

// A writer that finds the other at it gives up and comes again.
template <typename Write>
bool WritesOftenEnough(Write write) {
  constexpr int kAttempts = 1000000;
  int written = 0;
  for (int turn = 0; turn < kAttempts && written < kWrites; ++turn) {
    written += write(turn) ? 1 : 0;
    std::this_thread::yield();
  }
  return written == kWrites;
}

// Gives every text that was read while the two wrote; a moment in which the file cannot be opened
// counts as none.
std::set<std::string> ReadWhile(WriterProcess& one, WriterProcess& other) {
  std::set<std::string> texts;
  for (bool last = false; !last;) {
    last = !one.Runs() && !other.Runs();
    std::string text;
    if (ReadConfigText(ConfigPath(), text)) texts.insert(text);
  }
  EXPECT_TRUE(one.Succeeded());
  EXPECT_TRUE(other.Succeeded());
  return texts;
}

TEST(UserConfigurationOfTwoProcesses, IsNeverTorn) {
  const UserConfigFile config;
  ASSERT_TRUE(WriteConfigAtomic(ConfigPath(), ShortText()));
  WriterProcess one("long");
  WriterProcess other("short");
  const std::set<std::string> texts = ReadWhile(one, other);
  EXPECT_FALSE(texts.empty());
  for (const std::string& text : texts) {
    EXPECT_TRUE(text == ShortText() || text == LongText()) << text.size();
  }
  EXPECT_FALSE(Exists(ConfigPath() + u".tmp"));
}

TEST(UserConfigurationOfTwoProcesses, KeepsWhatNeitherWrites) {
  UserConfigFile config;
  config.Write("{ \"foreign\" : [1, 2],\r\n\"paneWidthPt\" : 500, \"uiLang\":\"en\" }");
  WriterProcess one("width");
  WriterProcess other("language");
  const std::set<std::string> texts = ReadWhile(one, other);
  EXPECT_FALSE(texts.empty());
  for (const std::string& text : texts) {
    EXPECT_TRUE(text.starts_with("{ \"foreign\" : [1, 2],\r\n\"paneWidthPt\" : ")) << text;
    EXPECT_TRUE(text.ends_with(", \"uiLang\":\"en\" }") || text.ends_with(", \"uiLang\":\"ja\" }"))
        << text;
  }
}

}  // namespace

bool ActInRole(const std::string& role) {
  std::uint32_t error = 0;
  return WritesOftenEnough([&](int turn) {
    if (role == "long") return WriteConfigAtomic(ConfigPath(), LongText());
    if (role == "short") return WriteConfigAtomic(ConfigPath(), ShortText());
    if (role == "width") return WritePaneWidth(300 + turn % 1000, error);
    return role == "language" && WriteUiLang(turn % 2 == 0 ? u"ja" : u"en", error);
  });
}

}  // namespace quillmarch::addin
