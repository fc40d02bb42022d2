#include "foundation/transport/HttpTransport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "translate/RecordingServer.h"

namespace quillmarch::addin {

namespace server = recording_server;

namespace {

constexpr char kBody[] = R"({"texts":["Plan"]})";

// What one call gave.
struct Outcome {
  Wide text;
  Wide error;
  std::uint32_t status = 77;
};

Outcome Post(const Endpoint& endpoint, const Wide* token = nullptr, const RunFlag* cancel = nullptr,
             const RunFlag* pause = nullptr, std::string_view body = kBody) {
  Outcome outcome;
  outcome.text = HttpPostJson(endpoint, u"/v1/translate", body, &outcome.error, token, cancel,
                              pause, &outcome.status);
  return outcome;
}

void ExpectFailed(const Outcome& outcome, std::uint32_t status) {
  EXPECT_EQ(outcome.text, u"");
  EXPECT_EQ(outcome.error, u"HTTP request failed");
  EXPECT_EQ(outcome.status, status);
}

std::string HostAndPort(const Endpoint& endpoint) {
  return "localhost:" + std::to_string(endpoint.port);
}

// The request's lines up to the empty one, and what follows as the last.
std::vector<std::string> Lines(const std::string& request) {
  std::vector<std::string> lines;
  std::size_t from = 0;
  for (std::size_t to; (to = request.find("\r\n", from)) != std::string::npos; from = to + 2) {
    lines.push_back(request.substr(from, to - from));
    if (to == from) break;
  }
  lines.push_back(request.substr(from + 2));
  return lines;
}

enum class Road { kPlain, kTls };

class HttpTransport : public testing::TestWithParam<Road> {
 protected:
  static void SetUpTestSuite() { TrustAuthorityFile(server::AuthorityFile()); }
  void SetUp() override { server::Clear(); }

  static Endpoint Target() { return GetParam() == Road::kPlain ? server::Http() : server::Https(); }
};

INSTANTIATE_TEST_SUITE_P(OverHttp, HttpTransport, testing::Values(Road::kPlain));
INSTANTIATE_TEST_SUITE_P(OverHttps, HttpTransport, testing::Values(Road::kTls));

TEST_P(HttpTransport, GivesTheAnswersTextAndStatus) {
  server::Next(server::Answer(200, "{\"a\":\"\xE8\xA8\x88\xE7\x94\xBB \xF0\x9F\x98\x80\"}"));
  const Outcome outcome = Post(Target());
  EXPECT_EQ(outcome.text, u"{\"a\":\"計画 😀\"}");
  EXPECT_EQ(outcome.error, u"");
  EXPECT_EQ(outcome.status, 200u);
}

TEST_P(HttpTransport, SendsTheHeadersThatItMustAndNoOther) {
  const Wide token = u"tok.en-1";
  Post(Target(), &token);
  const std::vector<std::string> lines = Lines(server::Request(0));
  ASSERT_EQ(lines.size(), 9u) << server::Request(0);
  EXPECT_EQ(lines[0], "POST /v1/translate HTTP/1.1");
  const std::vector<std::string> headers(lines.begin() + 1, lines.end() - 2);
  EXPECT_THAT(headers, testing::UnorderedElementsAre(
                           "Host: " + HostAndPort(Target()), "User-Agent: Quillmarch/1.0",
                           "Content-Type: application/json", "Authorization: Bearer tok.en-1",
                           "Content-Length: 18", "Connection: Keep-Alive"));
  EXPECT_EQ(lines[7], "");
  EXPECT_EQ(lines[8], kBody);
}

TEST_P(HttpTransport, SendsNoAuthorizationWithoutAToken) {
  const Wide empty;
  Post(Target(), nullptr);
  Post(Target(), &empty);
  for (const int index : {0, 1}) {
    EXPECT_EQ(server::Request(index).find("Authorization"), std::string::npos);
    EXPECT_EQ(Lines(server::Request(index)).size(), 8u);
  }
}

TEST_P(HttpTransport, SendsALargeBodyWholeAndWithoutWaitingForLeave) {
  // Long enough that a library would ask for leave to send it.
  const std::string body(3'000'000, 'x');
  server::Next(server::Answer(200, "ok"));
  EXPECT_EQ(Post(Target(), nullptr, nullptr, nullptr, body).text, u"ok");
  const std::string request = server::Request(0);
  EXPECT_EQ(request.find("Expect"), std::string::npos);
  EXPECT_EQ(Lines(request).back(), body);
}

TEST_P(HttpTransport, SendsAnEmptyBodyWithItsLength) {
  server::Next(server::Answer(200, "ok"));
  EXPECT_EQ(Post(Target(), nullptr, nullptr, nullptr, "").text, u"ok");
  EXPECT_NE(server::Request(0).find("Content-Length: 0\r\n"), std::string::npos);
}

TEST_P(HttpTransport, ReadsALargeAnswerWhole) {
  server::Next(server::Answer(200, std::string(300'000, 'y')));
  EXPECT_EQ(Post(Target()).text, Wide(300'000, u'y'));
}

TEST_P(HttpTransport, ReadsTheLongestAnswerThatItTakes) {
  server::Next("flood 200 " + std::to_string(kMaxAnswerBytes));
  EXPECT_EQ(Post(Target()).text.size(), kMaxAnswerBytes);
}

TEST_P(HttpTransport, AnAnswerThatIsOneByteTooLongIsAFailureThatKeepsItsStatus) {
  server::Next("flood 200 " + std::to_string(kMaxAnswerBytes + 1));
  ExpectFailed(Post(Target()), 200);
}

TEST_P(HttpTransport, AnAnswerWithoutEndIsNotReadToItsEnd) {
  constexpr std::uint64_t kEndless = std::uint64_t{1} << 40;
  server::Next("flood 200 " + std::to_string(kEndless));
  ExpectFailed(Post(Target()), 200);
}

TEST_P(HttpTransport, ATokenWithControlCharactersIsRefusedBeforeItReachesAHeader) {
  for (const Wide& token : {Wide(u"tok\r\nX-Evil: 1"), Wide(u"tok\n"), Wide(u"t\u0000k", 3),
                            Wide(u"tok\t"), Wide(u"tok\u007F")}) {
    const Outcome outcome = Post(Target(), &token);
    EXPECT_EQ(outcome.text, u"");
    EXPECT_EQ(outcome.error, u"WinHttpOpenRequest failed");
    EXPECT_EQ(outcome.status, 0u);
  }
  EXPECT_EQ(server::RequestCount(), 0);
}

TEST_P(HttpTransport, ReadsAnAnswerInChunks) {
  server::Next("chunks 200 " + server::Hex("one ") + " " + server::Hex("two ") + " " +
               server::Hex("three"));
  server::Release();
  server::Release();
  EXPECT_EQ(Post(Target()).text, u"one two three");
}

TEST_P(HttpTransport, AnErrorStatusWithABodyIsNoFailure) {
  for (const int status : {400, 401, 402, 404, 429, 500, 503}) {
    server::Next(server::Answer(status, "{\"code\":\"x\"}"));
    const Outcome outcome = Post(Target());
    EXPECT_EQ(outcome.text, u"{\"code\":\"x\"}");
    EXPECT_EQ(outcome.error, u"");
    EXPECT_EQ(outcome.status, static_cast<std::uint32_t>(status));
  }
}

TEST_P(HttpTransport, AnEmptyBodyIsAFailureThatKeepsItsStatus) {
  for (const int status : {200, 401, 402, 500}) {
    server::Next(server::Answer(status, ""));
    ExpectFailed(Post(Target()), static_cast<std::uint32_t>(status));
  }
}

TEST_P(HttpTransport, ARequestIsMadeOnceWhateverBecomesOfIt) {
  const std::string again = "Location: /v1/elsewhere\r\n";
  const std::string challenge = "WWW-Authenticate: Basic realm=\"x\"\r\n";
  const std::string actions[] = {"close",
                                 "reset",
                                 server::Answer(500, ""),
                                 server::Answer(302, "moved", again),
                                 server::Answer(307, "moved", again),
                                 server::Answer(401, "who", challenge),
                                 server::Answer(408, "slow"),
                                 "cut 200 " + server::Hex("{\"translations\":[\"a")};
  int made = 0;
  for (const std::string& action : actions) {
    // Nobody may answer a second request of one call.
    server::Always(action);
    Post(Target());
    EXPECT_EQ(server::RequestCount(), ++made) << action;
  }
}

TEST_P(HttpTransport, ARedirectComesBackAsItStands) {
  server::Next(server::Answer(307, "moved", "Location: /v1/elsewhere\r\n"));
  const Outcome outcome = Post(Target());
  EXPECT_EQ(outcome.text, u"moved");
  EXPECT_EQ(outcome.status, 307u);
}

TEST_P(HttpTransport, AConnectionClosedOrResetWithoutAnAnswerIsAFailureWithoutStatus) {
  for (const char* action : {"close", "reset"}) {
    server::Next(action);
    ExpectFailed(Post(Target()), 0);
  }
}

TEST_P(HttpTransport, AnAnswerCutShortIsAFailureThatKeepsItsStatus) {
  server::Next("cut 200 " + server::Hex("{\"translations\":[\"a"));
  ExpectFailed(Post(Target()), 200);
}

TEST_P(HttpTransport, ACancelSetBeforehandSendsNothing) {
  const RunFlag cancel{1};
  const Outcome outcome = Post(Target(), nullptr, &cancel);
  EXPECT_EQ(outcome.text, u"");
  EXPECT_EQ(outcome.error, u"Cancelled");
  EXPECT_EQ(outcome.status, 0u);
  EXPECT_EQ(server::ConnectionCount(), 0);
}

TEST_P(HttpTransport, ACancelDuringAPauseSendsNothing) {
  const RunFlag pause{1};
  RunFlag cancel{0};
  auto call =
      std::async(std::launch::async, [&] { return Post(Target(), nullptr, &cancel, &pause); });
  cancel = 1;
  EXPECT_EQ(call.get().error, u"Cancelled");
  EXPECT_EQ(server::ConnectionCount(), 0);
}

TEST_P(HttpTransport, APauseHoldsTheSending) {
  RunFlag pause{1};
  auto call =
      std::async(std::launch::async, [&] { return Post(Target(), nullptr, nullptr, &pause); });
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
  EXPECT_EQ(server::ConnectionCount(), 0);
  pause = 0;
  EXPECT_EQ(call.get().text, u"{\"translations\": [\"T:Plan\"]}");
}

TEST_P(HttpTransport, ACancelWhileWaitingForTheFirstByteWaitsForIt) {
  server::Next("held " + server::Answer(200, "late"));
  RunFlag cancel{0};
  auto call = std::async(std::launch::async, [&] { return Post(Target(), nullptr, &cancel); });
  server::WaitForRequests(1);
  cancel = 1;
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
  server::Release();
  ExpectFailed(call.get(), 200);
}

TEST_P(HttpTransport, ACancelWhileReadingEndsAsAPlainFailure) {
  server::Next("chunks 200 " + server::Hex("one ") + " " + server::Hex("two"));
  RunFlag cancel{0};
  auto call = std::async(std::launch::async, [&] { return Post(Target(), nullptr, &cancel); });
  server::WaitForRequests(1);
  cancel = 1;
  server::Release();
  ExpectFailed(call.get(), 200);
}

TEST_P(HttpTransport, APauseWhileReadingHoldsTheAnswerAndLosesNothing) {
  server::Next("held chunks 200 " + server::Hex("one ") + " " + server::Hex("two"));
  RunFlag pause{0};
  auto call =
      std::async(std::launch::async, [&] { return Post(Target(), nullptr, nullptr, &pause); });
  server::WaitForRequests(1);
  pause = 1;
  server::Release();
  server::Release();
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
  pause = 0;
  EXPECT_EQ(call.get().text, u"one two");
}

TEST_P(HttpTransport, ACancelDuringAPauseInTheReadingEndsIt) {
  server::Next("held " + server::Answer(200, "text"));
  RunFlag pause{0};
  RunFlag cancel{0};
  auto call =
      std::async(std::launch::async, [&] { return Post(Target(), nullptr, &cancel, &pause); });
  server::WaitForRequests(1);
  pause = 1;
  server::Release();
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
  cancel = 1;
  ExpectFailed(call.get(), 200);
}

TEST_P(HttpTransport, EveryOutParameterMayBeNull) {
  server::Next(server::Answer(200, "ok"));
  EXPECT_EQ(HttpPostJson(Target(), u"/x", "{}", nullptr, nullptr, nullptr, nullptr, nullptr),
            u"ok");
  server::Next("close");
  EXPECT_EQ(HttpPostJson(Target(), u"/x", "{}", nullptr, nullptr, nullptr, nullptr, nullptr), u"");
}

TEST_P(HttpTransport, CallsOnSeveralThreadsDoNotMeet) {
  std::vector<std::future<Outcome>> calls;
  for (int i = 0; i < 4; ++i) {
    calls.push_back(std::async(std::launch::async, [i] {
      const std::string body = "{\"texts\":[\"" + std::to_string(i) + "\"]}";
      return Post(Target(), nullptr, nullptr, nullptr, body);
    }));
  }
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(
        calls[static_cast<std::size_t>(i)].get().text,
        u"{\"translations\": [\"T:" + DecimalUnsigned(static_cast<std::uint64_t>(i)) + u"\"]}");
  }
}

class HttpTransportTrust : public HttpTransport {};
INSTANTIATE_TEST_SUITE_P(OverHttps, HttpTransportTrust, testing::Values(Road::kTls));

TEST_P(HttpTransportTrust, ACertificateOfAStrangerIsRefused) {
  ExpectFailed(Post(server::HttpsOfAStranger()), 0);
  EXPECT_EQ(server::RequestCount(), 0);
}

TEST_P(HttpTransportTrust, ACertificateForAnotherNameIsRefused) {
  ExpectFailed(Post(server::HttpsOfAnotherName()), 0);
  EXPECT_EQ(server::RequestCount(), 0);
}

TEST_P(HttpTransportTrust, PlainTextOnATlsPortIsAFailure) {
  Endpoint endpoint = server::Http();
  endpoint.useHttps = true;
  ExpectFailed(Post(endpoint), 0);
}

TEST(HttpTransportFailure, AHostWithoutNameCannotBeConnected) {
  EXPECT_EQ(Post({u"", 443, true}).error, u"WinHttpConnect failed");
}

TEST(HttpTransportFailure, APortThatNobodyListensOnIsAFailure) {
  // Port 9 of the loopback address: the tests' proxy variables lead there as well.
  ExpectFailed(Post({u"127.0.0.1", 9, false}), 0);
}

TEST(HttpTransportFailure, AnUnknownHostIsAFailure) {
  ExpectFailed(Post({u"no-such-host.invalid", 80, false}), 0);
}

}  // namespace

}  // namespace quillmarch::addin
