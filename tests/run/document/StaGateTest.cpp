#include "run/document/StaGate.h"

#include <gtest/gtest.h>

#include "support/ManualHostThread.h"
#include "support/ScriptedInput.h"

namespace quillmarch::addin {

namespace {

TEST(StaGate, OneOwnerAtATime) {
  test::ManualHostThread thread;
  const int first = 0;
  const int second = 0;
  EXPECT_FALSE(StaGateHasOwner());
  const GateHold hold(&first, thread);
  EXPECT_TRUE(hold.held());
  EXPECT_TRUE(StaGateHasOwner());
  EXPECT_FALSE(GateHold(&second, thread).held());
  EXPECT_FALSE(GateHold(&first, thread).held());
  EXPECT_TRUE(StaGateHasOwner());
}

TEST(StaGate, AfterARelease120MsAreQuiet) {
  test::ManualHostThread thread;
  { const GateHold hold(&thread, thread); }
  EXPECT_FALSE(StaGateHasOwner());
  EXPECT_FALSE(GateHold(&thread, thread).held());
  thread.Advance(119);
  EXPECT_FALSE(GateHold(&thread, thread).held());
  thread.Advance(1);
  EXPECT_TRUE(GateHold(&thread, thread).held());
}

TEST(StaGate, IsReleasedWhenAnExceptionPasses) {
  test::ManualHostThread thread;
  EXPECT_THROW(
      {
        const GateHold hold(&thread, thread);
        throw 1;
      },
      int);
  EXPECT_FALSE(StaGateHasOwner());
  EXPECT_FALSE(GateHold(&thread, thread).held());
}

TEST(StaGate, AShorterQuietTimeNeverShortensALongerOne) {
  test::ManualHostThread thread;
  RaiseQuiet(thread, 500);
  RaiseQuiet(thread, 120);
  thread.Advance(499);
  EXPECT_FALSE(GateHold(&thread, thread).held());
  thread.Advance(1);
  EXPECT_TRUE(GateHold(&thread, thread).held());
}

TEST(StaGate, ARunsLastWritesHeedTheQuietAfterMutationsButNotTheUsersInput) {
  test::ManualHostThread thread;
  RaiseInputQuiet(thread);
  EXPECT_FALSE(GateHold(&thread, thread).held());
  EXPECT_TRUE(GateHold(&thread, thread, Heed::kMutationQuiet).held());
  EXPECT_FALSE(GateHold(&thread, thread, Heed::kMutationQuiet).held());
  thread.Advance(119);
  EXPECT_FALSE(GateHold(&thread, thread, Heed::kMutationQuiet).held());
  thread.Advance(380);
  EXPECT_FALSE(GateHold(&thread, thread).held());
  thread.Advance(1);
  EXPECT_TRUE(GateHold(&thread, thread).held());
}

TEST(UserIsBusy, ButtonCaptureOrNewMouseInput) {
  test::ScriptedInput input;
  EXPECT_FALSE(UserIsBusy(input));
  EXPECT_EQ(input.lastMask, 0x1C07U);
  input.leftButton = true;
  EXPECT_TRUE(UserIsBusy(input));
  input.leftButton = false;
  input.capture = true;
  EXPECT_TRUE(UserIsBusy(input));
  input.capture = false;
  for (const std::uint32_t queue : {0x2U, 0x4U, 0x6U}) {
    input.queue = queue;
    EXPECT_TRUE(UserIsBusy(input));
  }
  // Keys, and input that was there at the last look already (the high word), do not count.
  for (const std::uint32_t queue : {0x1U, 0x1C00U, 0x60000U}) {
    input.queue = queue;
    EXPECT_FALSE(UserIsBusy(input));
  }
}

}  // namespace

}  // namespace quillmarch::addin
