#include "foundation/transport/TransferTimes.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

const TransferTimes::Time kStart{hours(1)};
constexpr milliseconds kMoment{1};

TEST(TransferTimes, ResolvingTheNameHasNoLimit) {
  const TransferTimes times(10);
  EXPECT_FALSE(times.Expired(kStart + hours(24)));
}

TEST(TransferTimes, ConnectingMayTakeSixtySecondsFromTheFirstSocket) {
  TransferTimes times(10);
  times.SocketOpened(kStart);
  times.SocketOpened(kStart + milliseconds(30'000));
  EXPECT_FALSE(times.Expired(kStart + milliseconds(60'000)));
  EXPECT_TRUE(times.Expired(kStart + milliseconds(60'001)));
}

TEST(TransferTimes, EachPieceOfTheRequestMayTakeThirtySeconds) {
  TransferTimes times(10);
  times.Connected(kStart);
  times.Sent(kStart + milliseconds(29'000), 4);
  EXPECT_FALSE(times.Expired(kStart + milliseconds(59'000)));
  times.Sent(kStart + milliseconds(59'000), 4);
  EXPECT_TRUE(times.Expired(kStart + milliseconds(59'001)));
}

TEST(TransferTimes, TheHeadersMayTakeNinetySecondsFromTheRequestsEnd) {
  TransferTimes times(10);
  times.Connected(kStart);
  times.Sent(kStart + milliseconds(5'000), 10);
  // Progress that is told again starts nothing anew.
  times.Sent(kStart + milliseconds(80'000), 10);
  EXPECT_FALSE(times.Expired(kStart + milliseconds(95'000)));
  EXPECT_TRUE(times.Expired(kStart + milliseconds(95'001)));
}

TEST(TransferTimes, ARequestWithoutBodyIsSentAtOnce) {
  TransferTimes times(0);
  times.Connected(kStart);
  times.Sent(kStart, 0);
  EXPECT_FALSE(times.Expired(kStart + TransferLimits{}.receiveResponse));
  EXPECT_TRUE(times.Expired(kStart + TransferLimits{}.receiveResponse + kMoment));
}

TEST(TransferTimes, EachPieceOfTheAnswerMayTakeThirtySeconds) {
  TransferTimes times(0);
  times.Connected(kStart);
  times.HeadersCame(kStart);
  times.DataCame(kStart + milliseconds(30'000));
  EXPECT_FALSE(times.Expired(kStart + milliseconds(60'000)));
  EXPECT_TRUE(times.Expired(kStart + milliseconds(60'001)));
}

}  // namespace

}  // namespace quillmarch::addin
