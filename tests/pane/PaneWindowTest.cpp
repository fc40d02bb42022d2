#include "pane/PaneWindow.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "support/ManualHostThread.h"

namespace quillmarch::addin {

namespace {

using test::ManualHostThread;

TEST(PostToPane, CallsRunInOrderAndNeverInsideThePost) {
  ManualHostThread thread;
  const auto window = PaneWindow::Make(thread);
  std::string ran;
  PostToPane(window, [&] { ran += "a"; });
  PostToPane(window, [&] { ran += "b"; });
  EXPECT_EQ(ran, "");
  thread.RunPosts();
  EXPECT_EQ(ran, "ab");
}

TEST(PostToPane, WithoutAWindowTheCallIsDestroyedAtOnce) {
  const auto token = std::make_shared<int>(0);
  PostToPane(nullptr, [token] {});
  EXPECT_EQ(token.use_count(), 1);
}

TEST(PostToPane, AfterTheWindowsEndTheCallIsDestroyedAtOnce) {
  ManualHostThread thread;
  const auto window = PaneWindow::Make(thread);
  window->Destroy();
  const auto token = std::make_shared<int>(0);
  PostToPane(window, [token] { ++*token; });
  EXPECT_EQ(token.use_count(), 1);
  thread.RunPosts();
  EXPECT_EQ(*token, 0);
}

TEST(PostToPane, APostThatFailsDestroysTheCallAtOnce) {
  ManualHostThread thread;
  thread.refusesPosts = true;
  const auto window = PaneWindow::Make(thread);
  const auto token = std::make_shared<int>(0);
  PostToPane(window, [token] {});
  EXPECT_EQ(token.use_count(), 1);
}

TEST(PaneWindow, CallsStillWaitingAtTheEndAreDestroyedUnrun) {
  ManualHostThread thread;
  const auto window = PaneWindow::Make(thread);
  const auto token = std::make_shared<int>(0);
  PostToPane(window, [token] { ++*token; });
  window->Destroy();
  EXPECT_EQ(token.use_count(), 1);
  thread.RunPosts();
  EXPECT_EQ(*token, 0);
}

TEST(PaneWindow, ACallThatEndsTheWindowTakesTheLaterOnesWithIt) {
  ManualHostThread thread;
  const auto window = PaneWindow::Make(thread);
  std::string ran;
  PostToPane(window, [&] {
    ran += "a";
    window->Destroy();
  });
  PostToPane(window, [&] { ran += "b"; });
  thread.RunPosts();
  EXPECT_EQ(ran, "a");
}

TEST(PaneWindow, TwoWindowsOnOneThreadHaveTimersOfTheirOwn) {
  ManualHostThread thread;
  const auto first = PaneWindow::Make(thread);
  const auto second = PaneWindow::Make(thread);
  std::string fired;
  ASSERT_TRUE(first->SetTimer(3, 100, [&] { fired += "1"; }));
  ASSERT_TRUE(second->SetTimer(3, 100, [&] { fired += "2"; }));
  second->KillTimer(3);
  thread.Advance(100);
  thread.FireDueTimers();
  EXPECT_EQ(fired, "1");
  first->KillTimer(3);
  EXPECT_EQ(thread.timersSet(), 0);
  first->Destroy();
  EXPECT_FALSE(first->SetTimer(3, 100, [] {}));
}

TEST(PaneWindow, ManyThreadsPostWhileTheWindowEnds) {
  ManualHostThread thread;
  const auto window = PaneWindow::Make(thread);
  const auto token = std::make_shared<int>(0);
  std::vector<std::thread> posters;
  for (int i = 0; i < 4; ++i) {
    posters.emplace_back([&] {
      for (int n = 0; n < 200; ++n) PostToPane(window, [token] { ++*token; });
    });
  }
  while (*token < 10) thread.RunPosts();
  window->Destroy();
  for (std::thread& poster : posters) poster.join();
  const int ran = *token;
  thread.RunPosts();
  EXPECT_EQ(*token, ran);
  EXPECT_EQ(token.use_count(), 1);
}

}  // namespace

}  // namespace quillmarch::addin
