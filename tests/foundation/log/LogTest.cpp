#include "foundation/log/Log.h"

#include "foundation/log/DebugOutput.h"
#include "foundation/log/LogFile.h"
#include "foundation/system/Clock.h"
#include "foundation/system/FileBytes.h"
#include "foundation/system/KnownFolders.h"
#include "gtest/gtest.h"
#include "support/TempFolder.h"

namespace quillmarch::addin {

TEST(LogDirectory, IsTheLogFolderOfTheUsersDataFolder) {
  EXPECT_EQ(JoinPath(JoinPath(LocalDataFolder(), u"Quillmarch"), u"log"), LogDirectory());
  EXPECT_EQ(JoinPath(GetUserDataDir(), u"log"), LogDirectory());
}

TEST(LogLine, TheLineStandsInTheFileBehindItsPrefix) {
  const Wide text = u"PPT test " + DecimalUnsigned(SystemTickCount());
  LogLine(text);
  const Wide log = LogText();
  const Wide tail = u" tid=" + DecimalUnsigned(CurrentThreadNumber()) + u"] " + text + u"\r\n";
  const std::size_t at = log.find(tail);
  ASSERT_NE(Wide::npos, at);
  // "[2024-03-09 07:05:02.041" stands before it.
  ASSERT_GE(at, 24u);
  const Wide prefix = log.substr(at - 24, 24);
  EXPECT_EQ(u'[', prefix[0]);
  EXPECT_EQ(u'-', prefix[5]);
  EXPECT_EQ(u'-', prefix[8]);
  EXPECT_EQ(u' ', prefix[11]);
  EXPECT_EQ(u':', prefix[14]);
  EXPECT_EQ(u':', prefix[17]);
  EXPECT_EQ(u'.', prefix[20]);
}

TEST(LogLine, NullLogsTheWordForIt) {
  const std::size_t before = CountOf(LogText(), u"] (null)\r\n");
  LogLine(nullptr, nullptr);
  EXPECT_EQ(before + 1, CountOf(LogText(), u"] (null)\r\n"));
}

TEST(LogLine, TheDebuggerGetsTheTextAndThenTheLineEnd) {
  LogLine(u"PPT first line of the process");
  std::vector<Wide> heard;
  SetDebugListener([&](WideView text) { heard.emplace_back(text); });
  LogLine(&heard, u"PptPane x");
  SetDebugListener({});
  EXPECT_EQ(std::vector<Wide>({u"PptPane x", u"\r\n"}), heard);
}

TEST(MaintainLogDirectory, TheGivenFileIsRotatedOnceForEachInterval) {
  const Wide name = u"Quillmarch_test_" + DecimalUnsigned(SystemTickCount()) + u".log";
  const Wide path = JoinPath(LogDirectory(), name);
  std::atomic<std::uint64_t> last{0};
  WriteSized(path, 52428801);
  MaintainLogDirectory(last, name);
  EXPECT_FALSE(Exists(path));
  WriteSized(path, 52428801);
  MaintainLogDirectory(last, name);
  EXPECT_TRUE(Exists(path));
  DeleteOneFile(path);
}

}  // namespace quillmarch::addin
