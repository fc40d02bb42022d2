#include "host/thread/HostCallGuard.h"

#include <gtest/gtest.h>

#include <thread>

#include "foundation/automation/Automation.h"
#include "host/thread/LoopThread.h"

namespace quillmarch::host {

namespace {

ResultCode CallOnAnotherThread() {
  ResultCode code = kOk;
  std::thread([&code] {
    Variant out;
    code = AutoGet(nullptr, u"Name", out);
  }).join();
  return code;
}

TEST(HostCallGuard, ACallFromTheHostThreadPasses) {
  LoopThread loop(ClockMode::kUnpaced);
  const HostCallGuard guard(loop);
  Variant out;
  EXPECT_EQ(AutoGet(nullptr, u"Name", out), kPointer);
}

TEST(HostCallGuard, NothingIsAskedOnceItIsGone) {
  LoopThread loop(ClockMode::kUnpaced);
  { const HostCallGuard guard(loop); }
  EXPECT_EQ(CallOnAnotherThread(), kPointer);
}

#ifndef NDEBUG
TEST(HostCallGuardDeathTest, ACallFromAnotherThreadEndsADebugBuild) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        LoopThread loop(ClockMode::kUnpaced);
        const HostCallGuard guard(loop);
        CallOnAnotherThread();
      },
      "");
}
#endif

}  // namespace

}  // namespace quillmarch::host
