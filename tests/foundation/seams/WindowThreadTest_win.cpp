#include "foundation/seams/WindowThread.h"

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "gtest/gtest.h"

namespace quillmarch::addin {

namespace {

// As a host's loop does, for as long as there is something to handle.
void HandleMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

class WindowThreadTest : public ::testing::Test {
 protected:
  WindowThreadTest() { EXPECT_TRUE(thread.Open()); }

  WindowThread thread;
  std::string order;
};

}  // namespace

TEST_F(WindowThreadTest, PostsRunInTheirOrderAndNeverInsideThePost) {
  for (const char letter : {'a', 'b', 'c'}) {
    EXPECT_TRUE(thread.Post([this, letter] { order += letter; }));
  }
  EXPECT_EQ("", order);
  HandleMessages();
  EXPECT_EQ("abc", order);
}

TEST_F(WindowThreadTest, AnyThreadMayPostAndTheCallRunsOnTheHostThread) {
  std::thread::id ran;
  std::thread([&] { thread.Post([&ran] { ran = std::this_thread::get_id(); }); }).join();
  HandleMessages();
  EXPECT_EQ(std::this_thread::get_id(), ran);
  EXPECT_TRUE(thread.OnHostThread());
  std::thread([this] { EXPECT_FALSE(thread.OnHostThread()); }).join();
}

TEST_F(WindowThreadTest, ClosingDestroysWhatWaitsUnrunAndRefusesMore) {
  auto held = std::make_shared<int>(0);
  EXPECT_TRUE(thread.Post([this, held] { order += 'x'; }));
  EXPECT_EQ(2, held.use_count());
  thread.Close();
  EXPECT_EQ(1, held.use_count());
  EXPECT_FALSE(thread.Post([held] {}));
  EXPECT_FALSE(thread.SetTimer(1, 10, [] {}));
  EXPECT_EQ(1, held.use_count());
  EXPECT_TRUE(thread.Open());
  HandleMessages();
  EXPECT_EQ("", order);
  EXPECT_TRUE(thread.Post([this] { order += 'y'; }));
  HandleMessages();
  EXPECT_EQ("y", order);
}

TEST_F(WindowThreadTest, ClosingKeepsTheHostsWordToEnd) {
  PostQuitMessage(7);
  thread.Post([] {});
  thread.Close();
  MSG message;
  ASSERT_NE(FALSE, PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(WM_QUIT, message.message);
  EXPECT_EQ(7U, message.wParam);
}

TEST_F(WindowThreadTest, ACallThatThrowsIsLostAndTheNextRuns) {
  thread.Post([] { throw std::bad_alloc(); });
  thread.Post([this] { order += 'b'; });
  HandleMessages();
  EXPECT_EQ("b", order);
}

TEST_F(WindowThreadTest, ATimerFiresUntilItIsKilledAndASecondOneOfItsNumberTakesItsPlace) {
  int first = 0;
  int second = 0;
  EXPECT_TRUE(thread.SetTimer(0, 15, [&first] { ++first; }));
  EXPECT_TRUE(thread.PumpUntil([&first] { return first >= 2; }, 5000));
  EXPECT_TRUE(thread.SetTimer(0, 15, [&second] { ++second; }));
  first = 0;
  EXPECT_TRUE(thread.PumpUntil([&second] { return second >= 2; }, 5000));
  EXPECT_EQ(0, first);
  thread.KillTimer(0);
  const int seen = second;
  EXPECT_FALSE(thread.PumpUntil([&] { return second > seen; }, 100));
}

TEST_F(WindowThreadTest, ATimerMayKillItself) {
  int fired = 0;
  thread.SetTimer(5, 15, [&] {
    ++fired;
    thread.KillTimer(5);
  });
  EXPECT_FALSE(thread.PumpUntil([&fired] { return fired > 1; }, 150));
  EXPECT_EQ(1, fired);
}

TEST_F(WindowThreadTest, AWaitHandlesOneMessageAtATime) {
  for (int i = 0; i < 3; ++i) thread.Post([this] { order += 'p'; });
  EXPECT_TRUE(thread.PumpUntil([this] { return order.size() == 2; }, 5000));
  EXPECT_EQ("pp", order);
  HandleMessages();
  EXPECT_EQ("ppp", order);
}

TEST_F(WindowThreadTest, AWaitEndsWithItsTime) {
  const ULONGLONG begin = GetTickCount64();
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 120));
  EXPECT_GE(GetTickCount64() - begin, 100U);
}

TEST_F(WindowThreadTest, AWaitThatIsToldToEndEndsAndStaysTold) {
  PostQuitMessage(3);
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 5000));
  EXPECT_FALSE(thread.PumpUntil([] { return false; }, 5000));
  EXPECT_TRUE(thread.PumpUntil([] { return true; }, 5000));
  MSG message;
  ASSERT_NE(FALSE, PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(WM_QUIT, message.message);
  EXPECT_EQ(3U, message.wParam);
}

}  // namespace quillmarch::addin
