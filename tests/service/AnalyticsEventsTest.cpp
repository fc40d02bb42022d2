#include "service/AnalyticsEvents.h"

#include <gtest/gtest.h>

#include <regex>

#include "service/RunningService.h"

namespace quillmarch::service {

namespace {

// As the add-in sends it.
constexpr char kLoaded[] =
    R"({"events":[{"event":"addin:loaded","context":{"installId":"0f0f-secret","channel":"word",)"
    R"("os":"Windows_NT x64 10.0.22631","hostApp":"ppt","hostVersion":"16.0",)"
    R"("clientVersion":"0.1.0"},"outcome":"ok","props":{"source":"client"}}]})";

HttpReply Send(const RunningService& running, const std::string& body,
               const std::string& method = "POST") {
  return HttpRequest(method, LocalUrl(running.port(), "/v1/analytics/events"), body);
}

std::string Reason(const std::string& body) {
  const EventsAnswer answer = AnswerEvents(body);
  EXPECT_EQ(answer.status, 400) << body;
  EXPECT_TRUE(answer.lines.empty()) << body;
  return answer.body;
}

TEST(AnalyticsEvents, AnEventIsAcceptedWithATextAndLoggedWithoutItsInstallation) {
  const EventsAnswer answer = AnswerEvents(kLoaded);
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.body, R"({"accepted":1})");
  ASSERT_EQ(answer.lines.size(), 1U);
  EXPECT_EQ(answer.lines[0],
            "event addin:loaded outcome=ok clientVersion=0.1.0 hostApp=ppt hostVersion=16.0 "
            "os=Windows_NT?x64?10.0.22631 source=client");
}

TEST(AnalyticsEvents, AnErrorsCodeStageAndRawCodeAreLogged) {
  const EventsAnswer answer = AnswerEvents(
      R"({"events":[{"event":"plugin:error","outcome":"error","errorCode":"webview2_init",)"
      R"("props":{"feature":"pane","stage":"init","rawErrorCode":"0x80070002"}}]})");
  ASSERT_EQ(answer.lines.size(), 1U);
  EXPECT_EQ(answer.lines[0],
            "event plugin:error outcome=error errorCode=webview2_init feature=pane "
            "rawErrorCode=0x80070002 stage=init");
}

TEST(AnalyticsEvents, SeveralEventsAreTakenTogetherOrNotAtAll) {
  EXPECT_EQ(AnswerEvents(R"({"events":[{"event":"a"},{"event":"b"}]})").body, R"({"accepted":2})");
  Reason(R"({"events":[{"event":"a"},{"event":""}]})");
}

TEST(AnalyticsEvents, WhatIsNoListOfEventsIsRefusedWithAReason) {
  EXPECT_NE(Reason("").find("not valid JSON"), std::string::npos);
  EXPECT_NE(Reason("{").find("not valid JSON"), std::string::npos);
  for (const char* body : {"[]", "7", "{}", R"({"events":{}})", R"({"events":[]})"}) {
    EXPECT_NE(Reason(body).find("must be an array with an event"), std::string::npos) << body;
  }
  EXPECT_NE(Reason(R"({"events":[1]})").find("only objects"), std::string::npos);
  EXPECT_NE(Reason(R"({"events":[{}]})").find("event is missing"), std::string::npos);
  EXPECT_NE(Reason(R"({"events":[{"event":1}]})").find("must be a string"), std::string::npos);
  EXPECT_NE(Reason(R"({"events":[{"event":"a","context":1}]})").find("context must be an object"),
            std::string::npos);
  EXPECT_NE(Reason(R"({"events":[{"event":"a","props":{"x":1}}]})").find("only strings"),
            std::string::npos);
  EXPECT_NE(Reason(R"({"events":)" + std::string(50, '[')).find("too deeply"), std::string::npos);
}

TEST(AnalyticsEvents, TooManyEventsAreRefused) {
  std::string events;
  for (std::size_t i = 0; i < kMaxEventsOfARequest; ++i) events += R"({"event":"e"},)";
  EXPECT_EQ(AnswerEvents(R"({"events":[)" + events.substr(0, events.size() - 1) + "]}").status,
            200);
  Reason(R"({"events":[)" + events + R"({"event":"e"}]})");
}

TEST(AnalyticsEvents, ALogLineStaysOnePrintableLineWhateverAnEventHolds) {
  const EventsAnswer answer = AnswerEvents(
      R"({"events":[{"event":"a\nb c","outcome":"o=k","props":{"na me\r":"整 x","long":")" +
      std::string(5000, 'y') + R"("}}]})");
  ASSERT_EQ(answer.lines.size(), 1U);
  EXPECT_LT(answer.lines[0].size(), 300U);
  for (const char c : answer.lines[0]) {
    EXPECT_TRUE(c >= ' ' && c < '\x7f');
  }
  EXPECT_EQ(answer.lines[0].find("event a?b?c outcome=o?k "), 0U) << answer.lines[0];
}

// ---- Over a socket -----------------------------------------------------------------------------

TEST(AnalyticsEvents, AreTakenOverASocketWithoutAToken) {
  ServiceOptions options;
  options.tokens = {"secret"};
  RunningService running(options);
  const HttpReply reply = Send(running, kLoaded);
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"accepted":1})");
  const std::vector<std::string> events = running.StopAndGetEvents();
  ASSERT_EQ(events.size(), 1U);
  EXPECT_TRUE(std::regex_match(
      events[0],
      std::regex(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z event addin:loaded outcome=ok .*)")))
      << events[0];
  EXPECT_EQ(events[0].find("secret"), std::string::npos);
}

TEST(AnalyticsEvents, TheRequestLogHasItsLineToo) {
  RunningService running;
  Send(running, kLoaded);
  Send(running, "{");
  const std::vector<std::string> lines = running.StopAndGetLog();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_NE(lines[0].find(" POST /v1/analytics/events 200 token=- texts=0 "), std::string::npos);
  EXPECT_NE(lines[1].find(" POST /v1/analytics/events 400 token=- texts=0 "), std::string::npos);
}

TEST(AnalyticsEvents, AnotherMethodIsRefused) {
  const RunningService running;
  const HttpReply reply = Send(running, "", "GET");
  EXPECT_EQ(reply.status, 405);
  EXPECT_NE(reply.head.find("Allow: POST"), std::string::npos);
}

TEST(AnalyticsEvents, ABodyOverTheirOwnLimitIsRefused) {
  const RunningService running;
  EXPECT_EQ(Send(running, std::string(kMaxEventsBytes + 1, ' ')).status, 413);
  ServiceOptions small;
  small.maxBodyBytes = 10;
  const RunningService smaller(small);
  EXPECT_EQ(Send(smaller, kLoaded).status, 413);
}

}  // namespace

}  // namespace quillmarch::service
