#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "service/RunningService.h"

namespace quillmarch::service {

namespace {

// Far above what a stop takes and far below the limits that a connection has by itself.
constexpr auto kSoon = std::chrono::seconds(4);

bool StopsSoon(Service& service) {
  std::future<void> stopped = std::async(std::launch::async, [&] { service.Stop(); });
  return stopped.wait_for(kSoon) == std::future_status::ready;
}

}  // namespace

TEST(ServiceStop, NoConnectionIsTakenAfterwards) {
  const RunningService running;
  running.service->Stop();
  EXPECT_FALSE(RawConnection(running.port()).connected());
}

TEST(ServiceStop, StoppingTwiceAndFromTwoThreadsIsHarmless) {
  const RunningService running;
  std::thread other([&] { running.service->Stop(); });
  running.service->Stop();
  other.join();
  running.service->Stop();
}

TEST(ServiceStop, StoppingAtOnceAfterTheStartWorks) {
  for (int i = 0; i < 50; ++i) {
    const RunningService running;
    running.service->Stop();
  }
}

TEST(ServiceStop, AnEngineAtWorkIsToldAndItsClientGetsTheAnswer) {
  Gate gate;
  const RunningService running({}, [&](const EngineRequest&, const std::atomic<bool>& stop) {
    gate.Arrive();
    gate.Wait(stop);
    return Failed(EngineFailure::kStopping, "The service is stopping.");
  });
  std::future<HttpReply> reply =
      std::async(std::launch::async, [&] { return running.Post(kOneText); });
  gate.WaitArrived();
  EXPECT_TRUE(StopsSoon(*running.service));
  EXPECT_EQ(reply.get().status, 503);
}

TEST(ServiceStop, AClientThatSendsNothingDoesNotHoldItUp) {
  const RunningService running;
  const RawConnection silent(running.port());
  const RawConnection half(running.port());
  half.Send("POST /v1/translate HTTP/1.1\r\nContent-Le");
  const RawConnection waiting(running.port());
  waiting.Send("POST /v1/translate HTTP/1.1\r\nContent-Length: 100\r\n\r\n{");
  // Served behind them in the queue of connections, so they have been accepted.
  EXPECT_EQ(running.Post(kOneText).status, 200);
  EXPECT_TRUE(StopsSoon(*running.service));
}

TEST(ServiceStop, AClientThatDoesNotReadDoesNotHoldItUp) {
  Gate gate;
  const std::string large(12u << 20, 'x');
  const RunningService running({}, [&](const EngineRequest&, const std::atomic<bool>&) {
    gate.Arrive();
    return Translated({large});
  });
  const RawConnection deaf(running.port());
  deaf.Send("POST /v1/translate HTTP/1.1\r\nContent-Length: " +
            std::to_string(std::string(kOneText).size()) + "\r\n\r\n" + kOneText);
  gate.WaitArrived();
  deaf.WaitReadable();
  EXPECT_TRUE(StopsSoon(*running.service));
}

TEST(ServiceStop, WhatIsBeingAnsweredIsFinishedWithinTheGrace) {
  Gate gate;
  ServiceOptions options;
  options.stopGraceMs = 20'000;
  const RunningService running(options,
                               [&](const EngineRequest& request, const std::atomic<bool>& stop) {
                                 gate.Arrive();
                                 gate.Wait(stop);
                                 return Translated(request.texts);
                               });
  std::future<HttpReply> reply =
      std::async(std::launch::async, [&] { return running.Post(kOneText); });
  gate.WaitArrived();
  std::future<void> stopped = std::async(std::launch::async, [&] { running.service->Stop(); });
  EXPECT_EQ(stopped.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  EXPECT_FALSE(RawConnection(running.port()).connected());
  gate.Open();
  EXPECT_EQ(reply.get().status, 200);
  EXPECT_EQ(stopped.wait_for(kSoon), std::future_status::ready);
}

TEST(ServiceStop, AHurriedStopDoesNotWaitForTheGrace) {
  Gate gate;
  ServiceOptions options;
  options.stopGraceMs = 60'000;
  const RunningService running(options, [&](const EngineRequest&, const std::atomic<bool>& stop) {
    gate.Arrive();
    gate.Wait(stop);
    return Failed(EngineFailure::kStopping, "The service is stopping.");
  });
  std::future<HttpReply> reply =
      std::async(std::launch::async, [&] { return running.Post(kOneText); });
  gate.WaitArrived();
  std::future<void> stopped = std::async(std::launch::async, [&] { running.service->Stop(); });
  running.service->HurryStop();
  EXPECT_EQ(stopped.wait_for(kSoon), std::future_status::ready);
  EXPECT_EQ(reply.get().status, 503);
}

}  // namespace quillmarch::service
