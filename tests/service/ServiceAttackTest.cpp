// What clients without a token, and clients that want too much, can do to the others: nothing.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "service/RunningService.h"

namespace quillmarch::service {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int kCrowd = 1'000;
// Sanitizers and a busy machine slow every answer down; a service without free threads takes
// seconds.
constexpr milliseconds kAtOnce{100};

const char* const kToken = "Authorization: Bearer paid";

ServiceOptions WithToken() {
  ServiceOptions options;
  options.tokens = {"paid", "other"};
  return options;
}

// A thousand connections need more than the usual 1,024 files: both ends are in this process.
class Crowd : public testing::Test {
 protected:
  Crowd() {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit more = before_;
    more.rlim_cur = more.rlim_max;
    setrlimit(RLIMIT_NOFILE, &more);
  }
  ~Crowd() override { setrlimit(RLIMIT_NOFILE, &before_); }

  void Connect(const RunningService& running, const std::string& bytes, int count = kCrowd) {
    for (int i = 0; i < count; ++i) {
      crowd.push_back(std::make_unique<RawConnection>(running.port()));
      ASSERT_TRUE(crowd.back()->connected());
      if (!bytes.empty()) crowd.back()->Send(bytes);
    }
  }
  static void ExpectServedAtOnce(const RunningService& running) {
    milliseconds best = milliseconds::max();
    milliseconds bestPaid = milliseconds::max();
    for (int i = 0; i < 5; ++i) {
      const Clock::time_point start = Clock::now();
      EXPECT_EQ(HttpRequest("GET", LocalUrl(running.port(), "/v1/health")).status, 200);
      const Clock::time_point asked = Clock::now();
      EXPECT_EQ(running.Post(kOneText, {kToken}).status, 200);
      best = std::min(best, std::chrono::duration_cast<milliseconds>(asked - start));
      bestPaid = std::min(bestPaid, std::chrono::duration_cast<milliseconds>(Clock::now() - asked));
    }
    EXPECT_LT(best, kAtOnce);
    EXPECT_LT(bestPaid, kAtOnce);
  }
  std::vector<std::unique_ptr<RawConnection>> crowd;

 private:
  rlimit before_{};
};

}  // namespace

TEST_F(Crowd, AThousandSilentClientsHoldNobodyUp) {
  const RunningService running(WithToken());
  Connect(running, "");
  ExpectServedAtOnce(running);
}

TEST_F(Crowd, AThousandClientsThatDripTheirHeadHoldNobodyUp) {
  const RunningService running(WithToken());
  Connect(running, "POST /v1/translate HT");
  std::atomic<bool> done{false};
  std::thread dripping([&] {
    while (!done) {
      for (const auto& connection : crowd) connection->Send("T");
      std::this_thread::sleep_for(milliseconds(200));
    }
  });
  ExpectServedAtOnce(running);
  done = true;
  dripping.join();
}

TEST_F(Crowd, AThousandClientsThatDripTheirBodyHoldNobodyUp) {
  const RunningService running(WithToken());
  Connect(running, "POST /v1/analytics/events HTTP/1.1\r\nHost: x\r\nContent-Length: 4000\r\n\r\n{",
          100);
  Connect(running,
          "POST /v1/translate HTTP/1.1\r\nHost: x\r\nAuthorization: Bearer other\r\n"
          "Content-Length: 4000000\r\n\r\n{",
          200);
  ExpectServedAtOnce(running);
}

TEST_F(Crowd, WhenThereAreTooManyConnectionsTheSilentOnesGiveWay) {
  const RunningService running(WithToken());
  Connect(running, "", 2'500);
  ExpectServedAtOnce(running);
}

TEST(ServiceAttack, ARequestThatDoesNotArriveInTimeIsToldSo) {
  ServiceOptions options = WithToken();
  options.requestLimitMs = 300;
  RunningService running(options);
  for (const char* bytes : {"GET /v1/hea",
                            "POST /v1/translate HTTP/1.1\r\nAuthorization: Bearer paid\r\n"
                            "Content-Length: 10\r\n\r\n{"}) {
    const RawConnection slow(running.port());
    slow.Send(bytes);
    const std::string answer = slow.ReadToEnd();
    EXPECT_EQ(answer.rfind("HTTP/1.1 408 ", 0), 0u) << answer;
    EXPECT_NE(answer.find("\"request_timeout\""), std::string::npos) << answer;
  }
}

TEST(ServiceAttack, AClientThatKeepsDrippingIsCutOffAllTheSame) {
  ServiceOptions options = WithToken();
  options.requestLimitMs = 500;
  const RunningService running(options);
  const RawConnection slow(running.port());
  const Clock::time_point start = Clock::now();
  std::future<std::string> answer =
      std::async(std::launch::async, [&] { return slow.ReadToEnd(); });
  while (answer.wait_for(milliseconds(50)) != std::future_status::ready &&
         Clock::now() - start < std::chrono::seconds(10)) {
    slow.Send("x");
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
}

// What eight clients at once make of the body that costs most to read.
TEST(ServiceAttack, EightBodiesOfAMillionGlossaryEntriesAreRefused) {
  const RunningService running(WithToken());
  std::string body = R"({"texts":["a"],"targetLang":"es","glossary":[{})";
  while (body.size() < 4'000'000) body += ",{}";
  body += "]}";
  std::vector<std::future<HttpReply>> replies;
  for (int i = 0; i < 8; ++i) {
    replies.push_back(std::async(std::launch::async, [&] { return running.Post(body, {kToken}); }));
  }
  for (std::future<HttpReply>& reply : replies) EXPECT_EQ(reply.get().status, 413);
}

TEST(ServiceAttack, AClientsSlowWorkLeavesThreadsForTheOthers) {
  Gate gate;
  ServiceOptions options = WithToken();
  options.threads = 4;
  const RunningService running(options,
                               [&](const EngineRequest& request, const std::atomic<bool>& stop) {
                                 if (request.client == "other") {
                                   gate.Arrive();
                                   gate.Wait(stop);
                                 }
                                 return Translated(request.texts);
                               });
  std::vector<std::future<HttpReply>> slow;
  for (int i = 0; i < 12; ++i) {
    slow.push_back(std::async(std::launch::async, [&] {
      return running.Post(kOneText, {"Authorization: Bearer other"});
    }));
  }
  gate.WaitArrived(2);
  EXPECT_EQ(running.Post(kOneText, {kToken}).status, 200);
  gate.Open();
  for (std::future<HttpReply>& reply : slow) EXPECT_EQ(reply.get().status, 200);
}

TEST(ServiceAttack, TheQueueHasAnEnd) {
  Gate gate;
  ServiceOptions options = WithToken();
  options.threads = 2;
  const RunningService running(options,
                               [&](const EngineRequest& request, const std::atomic<bool>& stop) {
                                 gate.Arrive();
                                 gate.Wait(stop);
                                 return Translated(request.texts);
                               });
  const std::string request =
      "POST /v1/translate HTTP/1.1\r\nAuthorization: Bearer other\r\nContent-Length: " +
      std::to_string(std::string(kOneText).size()) + "\r\n\r\n" + kOneText;
  std::vector<std::unique_ptr<RawConnection>> waiting;
  for (int i = 0; i < 65; ++i) {
    waiting.push_back(std::make_unique<RawConnection>(running.port()));
    waiting.back()->Send(request);
    if (i == 0) gate.WaitArrived();
  }
  // One is being answered and 64 wait.
  std::string last;
  const Clock::time_point limit = Clock::now() + std::chrono::seconds(10);
  while (last.rfind("HTTP/1.1 503 ", 0) != 0 && Clock::now() < limit) {
    const RawConnection more(running.port());
    more.Send(request);
    last = more.ReadToEnd();
  }
  EXPECT_NE(last.find("\"busy\""), std::string::npos) << last;
  gate.Open();
  for (const auto& one : waiting) EXPECT_EQ(one->ReadToEnd().rfind("HTTP/1.1 200 ", 0), 0u);
}

TEST(ServiceAttack, EventsAreLimitedInRate) {
  const RunningService running;
  const std::string body = R"({"events":[{"event":"addin:loaded"}]})";
  bool limited = false;
  for (int i = 0; i < 1'000 && !limited; ++i) {
    const HttpReply reply =
        HttpRequest("POST", LocalUrl(running.port(), "/v1/analytics/events"), body);
    limited = reply.status == 429;
    EXPECT_TRUE(limited || reply.status == 200) << reply.status;
  }
  EXPECT_TRUE(limited);
  EXPECT_EQ(running.Post(kOneText).status, 200);
}

}  // namespace quillmarch::service
