#include "foundation/Log.h"

#include <thread>
#include <vector>

#include "TempFolder.h"
#include "foundation/DebugOutput.h"
#include "foundation/KnownFolders.h"
#include "gtest/gtest.h"

namespace {

Wide LogText() {
  const std::string bytes = ReadBytes(JoinPath(LogDirectory(), u"QuillmarchPane_ppt_trace.log"));
  Wide text(bytes.size() / 2, u'\0');
  bytes.copy(reinterpret_cast<char*>(text.data()), text.size() * 2);
  return text;
}

std::size_t CountOf(const Wide& text, WideView part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != Wide::npos; at = text.find(part, at + part.size())) {
    ++count;
  }
  return count;
}

}  // namespace

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

TEST(LogLine, PiecesOfSeveralThreadsMayMixButNoneIsLost) {
  const std::size_t before = CountOf(LogText(), u"threaded line");
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 50; ++k) LogLine(nullptr, u"threaded line");
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(before + 200, CountOf(LogText(), u"threaded line"));
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
