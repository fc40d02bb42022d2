#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "foundation/identity/ClientIdentity.h"
#include "translate/RecordingServer.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace server = recording_server;

namespace {

struct Outcome {
  bool ok = false;
  std::vector<Wide> translations;
  Wide message;
  Wide code;
};

class TranslateOverWire : public testing::Test {
 protected:
  void SetUp() override {
    server::Clear();
    const Endpoint endpoint = server::Http();
    config_.host = endpoint.host;
    config_.port = endpoint.port;
    config_.useHttps = endpoint.useHttps;
    config_.targetLang = u"es";
  }

  Outcome Translate(const std::vector<Wide>& texts) {
    Outcome outcome;
    outcome.ok = TranslateTexts(config_, texts, outcome.translations, outcome.message, outcome.code,
                                nullptr);
    return outcome;
  }

  void ExpectFailure(const Outcome& outcome, WideView message, WideView code) {
    EXPECT_FALSE(outcome.ok);
    EXPECT_EQ(outcome.message, message);
    EXPECT_EQ(outcome.code, code);
  }

  TranslateConfig config_;
};

std::string BodyOf(const std::string& request) {
  return request.substr(request.find("\r\n\r\n") + 4);
}

TEST_F(TranslateOverWire, TheRequestsBodyIsTheSameByteForByte) {
  config_.accessToken = u"secret";
  config_.clientTraceId = u"t-1";
  config_.runId = 42;
  config_.instruction = u"Formal";
  config_.glossary = {{u"計画", u"plan", u""}, {u"unused", u"x", u""}};
  const Outcome outcome = Translate({u"計画 \"A\"", Wide(u"lone ") + char16_t{0xD800}, u"😀"});
  EXPECT_TRUE(outcome.ok);
  const std::string request = server::Request(0);
  EXPECT_TRUE(request.starts_with("POST /v1/translate HTTP/1.1\r\n"));
  EXPECT_NE(request.find("\r\nAuthorization: Bearer secret\r\n"), std::string::npos);
  EXPECT_EQ(BodyOf(request),
            "{\"texts\":[\"\xE8\xA8\x88\xE7\x94\xBB \\\"A\\\"\",\"lone \xEF\xBF\xBD\","
            "\"\xF0\x9F\x98\x80\"],\"sourceLang\":\"auto\",\"targetLang\":\"es\","
            "\"usageKind\":\"translate_full\",\"clientProduct\":\"ppt\",\"glossary\":["
            "{\"source\":\"\xE8\xA8\x88\xE7\x94\xBB\",\"target\":\"plan\"}],"
            "\"instruction\":\"Formal\",\"trace\":{\"clientTraceId\":\"t-1\",\"runId\":\"42\"},"
            "\"clientContext\":" +
                ToUtf8(ClientContextJson()) + "}");
}

TEST_F(TranslateOverWire, TranslationsComeBackInTheirOrder) {
  const Outcome outcome = Translate({u"uno", u"計画", u"😀"});
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"T:uno", u"T:計画", u"T:😀"}));
  EXPECT_EQ(server::Request(0).find("Authorization"), std::string::npos);
}

TEST_F(TranslateOverWire, A401WithoutBodyEndsAtOnce) {
  server::Always(server::Answer(401, ""));
  ExpectFailure(Translate({u"a", u"b"}), u"登录已失效，请重新登录", u"unauthorized");
  EXPECT_EQ(server::RequestCount(), 1);
}

TEST_F(TranslateOverWire, A402EndsAtOnceWithoutASecondAttemptOrASplit) {
  server::Always(server::Answer(402, ""));
  const Outcome outcome = Translate({u"a", u"b"});
  EXPECT_FALSE(outcome.ok);
  EXPECT_EQ(outcome.code, u"insufficient_credits");
  EXPECT_EQ(server::RequestCount(), 1);
}

TEST_F(TranslateOverWire, A402WithABodyEndsAtOnceToo) {
  server::Always(server::Answer(402, "{\"code\":\"insufficient_credits\",\"message\":\"Pay\"}"));
  ExpectFailure(Translate({u"a", u"b"}), u"Pay", u"insufficient_credits");
  EXPECT_EQ(server::RequestCount(), 1);
}

TEST_F(TranslateOverWire, A500IsTriedTwiceAtEachLevel) {
  server::Always(server::Answer(500, "{\"code\":\"engine_failed\",\"message\":\"No engine\"}"));
  ExpectFailure(Translate({u"a", u"b"}), u"No engine", u"engine_failed");
  EXPECT_EQ(server::RequestCount(), 4);
}

TEST_F(TranslateOverWire, AnEmptyBodyIsTriedAgain) {
  server::Next(server::Answer(200, ""));
  EXPECT_TRUE(Translate({u"a", u"b"}).ok);
  EXPECT_EQ(server::RequestCount(), 2);
}

TEST_F(TranslateOverWire, AnEmptyBodyEachTimeIsANetworkError) {
  server::Always(server::Answer(200, ""));
  ExpectFailure(Translate({u"a"}), u"HTTP request failed", u"network_error");
  EXPECT_EQ(server::RequestCount(), 2);
}

TEST_F(TranslateOverWire, AWrongCountIsTriedAgainSplitAndNamed) {
  server::Always(server::Answer(200, "{\"translations\":[\"1\",\"2\",\"3\"]}"));
  ExpectFailure(Translate({u"a", u"b"}), u"Translation count mismatch", u"");
  EXPECT_EQ(server::RequestCount(), 4);
}

TEST_F(TranslateOverWire, AStubbornTextFailsItsBatchWithTheServersMessage) {
  server::Always("stubborn " + server::Hex("\"b\""));
  ExpectFailure(Translate({u"a", u"b"}), u"The engine failed", u"engine_failed");
  // The pair twice, the good half once, the stubborn one twice.
  EXPECT_EQ(server::RequestCount(), 5);
}

TEST_F(TranslateOverWire, AResetConnectionIsTriedAgain) {
  server::Next("reset");
  EXPECT_TRUE(Translate({u"a", u"b"}).ok);
  EXPECT_EQ(server::RequestCount(), 2);
}

TEST_F(TranslateOverWire, ACancelDuringAHangEndsAsCancelledWithoutAFurtherRequest) {
  server::Next("held close");
  auto call = std::async(std::launch::async, [&] { return Translate({u"a", u"b"}); });
  server::WaitForRequests(1);
  config_.cancelled = 1;
  server::Release();
  ExpectFailure(call.get(), u"Cancelled", u"cancelled");
  EXPECT_EQ(server::RequestCount(), 1);
}

TEST_F(TranslateOverWire, APauseOfTwoSecondsHoldsTheNextRequestAndLosesNothing) {
  server::Next("held " + server::Answer(500, "{\"code\":\"x\",\"message\":\"m\"}"));
  auto call = std::async(std::launch::async, [&] { return Translate({u"a", u"b"}); });
  server::WaitForRequests(1);
  config_.paused = 1;
  server::Release();
  EXPECT_EQ(call.wait_for(std::chrono::seconds(2)), std::future_status::timeout);
  EXPECT_EQ(server::RequestCount(), 1);
  config_.paused = 0;
  const Outcome outcome = call.get();
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"T:a", u"T:b"}));
}

TEST_F(TranslateOverWire, ACancelReachesTheTransportBetweenTwoPiecesOfTheAnswer) {
  server::Next("held " + server::Answer(200, "{\"translations\":[\"uno\"]}"));
  const TranslateBatchRequest request =
      BuildBatchRequest(config_, std::vector<Wide>{u"one"}, nullptr);
  auto call = std::async(std::launch::async, [&] { return PostTranslate(config_, request); });
  server::WaitForRequests(1);
  config_.cancelled = 1;
  server::Release();
  const TranslateBatchResult result = call.get();
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.code, u"network_error");
  EXPECT_EQ(result.message, u"HTTP request failed");
}

TEST_F(TranslateOverWire, APauseReachesTheTransport) {
  config_.paused = 1;
  const TranslateBatchRequest request =
      BuildBatchRequest(config_, std::vector<Wide>{u"one"}, nullptr);
  auto call = std::async(std::launch::async, [&] { return PostTranslate(config_, request); });
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
  EXPECT_EQ(server::ConnectionCount(), 0);
  config_.paused = 0;
  EXPECT_TRUE(call.get().ok);
}

TEST_F(TranslateOverWire, ALostPlaceholderIsAskedForOnceMore) {
  server::Next(server::Answer(200, "{\"translations\":[\"uno\",\"lost\"]}"));
  const Outcome outcome = Translate({u"one", u"[[QM_REF_1]]"});
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"uno", u"T:[[QM_REF_1]]"}));
  EXPECT_NE(server::Request(1).find("{\"texts\":[\"[[QM_REF_1]]\"],"), std::string::npos);
}

}  // namespace

}  // namespace quillmarch::addin
