#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include "foundation/identity/Analytics.h"
#include "foundation/log/DebugOutput.h"
#include "foundation/log/Log.h"
#include "translate/RecordingServer.h"

namespace quillmarch::addin {

namespace server = recording_server;

namespace {

constexpr std::chrono::seconds kPatience{60};

// Keeps the log's lines, which come from beacons' threads.
class Lines {
 public:
  Lines() {
    SetDebugListener([this](WideView text) {
      if (text == u"\r\n") return;
      const std::lock_guard lock(mutex_);
      lines_.push_back(ToUtf8(text));
    });
  }
  ~Lines() { SetDebugListener({}); }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  std::vector<std::string> All() {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> lines_;
};

// Declared before Lines, so that it waits behind it: no thread logs while the listener goes.
class BeaconOverWire : public testing::Test {
 protected:
  void SetUp() override {
    LogLine(u"warm");  // the process's first line is followed by one on the log's folder
    server::Clear();
    ReplaceDefaultEndpoint(server::Http());
  }
  void TearDown() override {
    Land();
    ReplaceDefaultEndpoint(before_);
  }
  static void Land() {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (BeaconsInTheAir() > 0 && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(BeaconsInTheAir(), 0U);
  }

  Endpoint before_ = DefaultEndpoint();
};

TEST_F(BeaconOverWire, AnEventIsPostedWithoutATokenAndWithItsBodyAsItStands) {
  server::Always(server::Answer(200, "{}"));
  Lines log;
  PostBeacon(u"addin:loaded", u"{\"events\":[\"名\"]}");
  server::WaitForRequests(1);
  Land();
  const std::string request = server::Request(0);
  EXPECT_TRUE(request.starts_with("POST /v1/analytics/events HTTP/1.1\r\n"));
  EXPECT_NE(request.find("\r\nContent-Type: application/json\r\n"), std::string::npos);
  EXPECT_EQ(request.find("Authorization"), std::string::npos);
  EXPECT_TRUE(request.ends_with("\r\n\r\n{\"events\":[\"\xE5\x90\x8D\"]}"));
  EXPECT_TRUE(log.All().empty());
}

TEST_F(BeaconOverWire, AnyTextThatComesBackCountsAsDelivered) {
  server::Always(server::Answer(500, "no"));
  Lines log;
  PostBeacon(u"addin:loaded", u"{}");
  server::WaitForRequests(1);
  Land();
  EXPECT_EQ(server::RequestCount(), 1);
  EXPECT_TRUE(log.All().empty());
}

TEST_F(BeaconOverWire, AnAnswerWithoutABodyIsLoggedAsAFailure) {
  server::Always(server::Answer(204, ""));
  Lines log;
  PostBeacon(u"support:entry_click", u"{}");
  server::WaitForRequests(1);
  Land();
  EXPECT_EQ(log.All(),
            (std::vector<std::string>{"support:entry_click beacon failed: HTTP request failed"}));
}

TEST_F(BeaconOverWire, WithoutANetworkOneLineIsLoggedAndNothingIsTriedAgain) {
  ReplaceDefaultEndpoint({u"", 443, true});
  Lines log;
  PostBeacon(u"plugin:error", u"{}");
  Land();
  EXPECT_EQ(log.All(),
            (std::vector<std::string>{"plugin:error beacon failed: WinHttpConnect failed"}));
  EXPECT_EQ(server::RequestCount(), 0);
}

TEST_F(BeaconOverWire, NobodyWaitsForAnAnswer) {
  server::Always("held " + server::Answer(200, "{}"));
  PostBeacon(u"addin:loaded", u"{}");
  EXPECT_EQ(BeaconsInTheAir(), 1U);
  server::WaitForRequests(1);
  server::Release();
  Land();
}

}  // namespace

}  // namespace quillmarch::addin
