// Where an append is one step. Windows keeps that promise, but Wine looks for the file's end and
// writes in two, so that threads overwrite each other there.
#include <thread>
#include <vector>

#include "foundation/log/LogFile.h"
#include "gtest/gtest.h"

namespace quillmarch::addin {

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

}  // namespace quillmarch::addin
