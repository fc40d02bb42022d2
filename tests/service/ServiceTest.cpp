#include "service/Service.h"

#include <gtest/gtest.h>

#include <regex>

#include "service/PrivateFile.h"
#include "service/RunningService.h"

namespace quillmarch::service {

namespace {

std::string Json(const char* code, const std::string& message) {
  return std::string("{\"code\":\"") + code + "\",\"message\":\"" + message + "\"}";
}

std::string Refusal(const ServiceOptions& options) {
  const auto started = Service::Start(options, std::make_unique<ScriptedEngine>(Echo));
  return started ? "" : started.error().words;
}

}  // namespace

TEST(Service, TranslatesOverASocket) {
  const RunningService running;
  const HttpReply reply = running.Post(R"({"texts":["Plan","计划 \"x\""],"targetLang":"es"})");
  EXPECT_TRUE(reply.arrived);
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"translations":["Plan","计划 \"x\""]})");
  EXPECT_NE(reply.head.find("Content-Type: application/json\r\n"), std::string::npos) << reply.head;
}

TEST(Service, HealthNamesTheEngineAndAsksForNoToken) {
  ServiceOptions options;
  options.tokens = {"secret"};
  const RunningService running(options);
  const HttpReply reply = HttpRequest("GET", LocalUrl(running.port(), "/v1/health"));
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"status":"ok","engine":"scripted"})");
  EXPECT_EQ(HttpRequest("HEAD", LocalUrl(running.port(), "/v1/health")).status, 200);
}

TEST(Service, UnknownPathsGetJson) {
  const RunningService running;
  for (const char* path :
       {"/", "/v1/translate/", "/v1", "/v1/terminology/resolve", "/v1/analytics/event"}) {
    const HttpReply reply = HttpRequest("POST", LocalUrl(running.port(), path), "{}");
    EXPECT_EQ(reply.status, 404) << path;
    EXPECT_EQ(reply.body, Json("not_found", "There is nothing at this address."));
  }
}

TEST(Service, TheWrongMethodIsRefused) {
  const RunningService running;
  for (const char* method : {"GET", "PUT", "DELETE"}) {
    const HttpReply reply = HttpRequest(method, LocalUrl(running.port()));
    EXPECT_EQ(reply.status, 405) << method;
    EXPECT_NE(reply.head.find("Allow: POST"), std::string::npos) << reply.head;
    EXPECT_NE(reply.body.find("\"method_not_allowed\""), std::string::npos);
  }
}

TEST(Service, AVeryLongPathIsAnsweredToo) {
  const RunningService running;
  const std::string path = "/" + std::string(7000, 'x');
  EXPECT_EQ(HttpRequest("POST", LocalUrl(running.port(), path), "{}").status, 404);
  EXPECT_EQ(HttpRequest("GET", LocalUrl(running.port(), path + std::string(5000, 'y'))).status,
            414);
}

TEST(Service, AMissingOrWrongTokenIsUnauthorized) {
  ServiceOptions options;
  options.tokens = {"secret"};
  bool asked = false;
  RunningService running(options, [&](const EngineRequest& request, const std::atomic<bool>&) {
    asked = true;
    return Translated(request.texts);
  });
  const std::string refused = Json("unauthorized", "The access token is missing or not valid.");
  EXPECT_EQ(running.Post(kOneText).status, 401);
  EXPECT_EQ(running.Post(kOneText).body, refused);
  EXPECT_EQ(running.Post(kOneText, {"Authorization: Bearer wrong"}).body, refused);
  EXPECT_FALSE(asked);
  EXPECT_EQ(running.Post(kOneText, {"Authorization: Bearer secret"}).status, 200);
}

TEST(Service, CreditsOfTheTokenFileRunOut) {
  const TempFolder folder;
  ServiceOptions options;
  options.tokenFile = PutPrivate(folder, "tokens", "poor 6\nrich\n");
  const RunningService running(options);
  EXPECT_EQ(running.Post(kOneText, {"Authorization: Bearer poor"}).status, 200);
  const HttpReply refused = running.Post(kOneText, {"Authorization: Bearer poor"});
  EXPECT_EQ(refused.status, 402);
  EXPECT_EQ(refused.body,
            Json("insufficient_credits", "The token has not enough credits left for this."));
  EXPECT_EQ(running.Post(kOneText, {"Authorization: Bearer rich"}).status, 200);
}

TEST(Service, ABodyOverTheLimitIsRefusedHoweverItComes) {
  ServiceOptions options;
  options.maxBodyBytes = 1000;
  const RunningService running(options);
  const std::string big = R"({"texts":[")" + std::string(300'000, 'x') + R"("],"targetLang":"es"})";
  const std::string refused = Json("payload_too_large", "A request may hold at most 1000 bytes.");
  const HttpReply announced = running.Post(big);
  EXPECT_EQ(announced.status, 413);
  EXPECT_EQ(announced.body, refused);
  const HttpReply chunked = running.Post(big, {"Transfer-Encoding: chunked"});
  EXPECT_EQ(chunked.status, 413);
  EXPECT_EQ(chunked.body, refused);
  const std::string fits =
      R"({"texts":[")" + std::string(1000 - 32, 'x') + R"("],"targetLang":"es"})";
  ASSERT_EQ(fits.size(), 1000u);
  EXPECT_EQ(running.Post(fits).status, 200);
  EXPECT_EQ(running.Post(fits, {"Transfer-Encoding: chunked"}).status, 200);
  EXPECT_EQ(running.Post(fits + " ").status, 413);
}

TEST(Service, TooManyTextsAreRefused) {
  ServiceOptions options;
  options.maxTexts = 1;
  const RunningService running(options);
  EXPECT_EQ(running.Post(R"({"texts":["a","b"],"targetLang":"es"})").status, 413);
}

TEST(Service, BadJsonIsRefusedWithAReason) {
  const RunningService running;
  const HttpReply reply = running.Post("{\"texts\":");
  EXPECT_EQ(reply.status, 400);
  EXPECT_EQ(reply.body, Json("bad_request", "The body cannot be read: it is not valid JSON."));
  EXPECT_EQ(running.Post("").status, 400);
}

TEST(Service, AFormIsNoBody) {
  const RunningService running;
  const HttpReply reply =
      running.Post("--x\r\nContent-Disposition: form-data; name=\"a\"\r\n\r\nb\r\n--x--\r\n",
                   {"Content-Type: multipart/form-data; boundary=x"});
  EXPECT_EQ(reply.status, 400);
  EXPECT_NE(reply.body.find("\"bad_request\""), std::string::npos);
}

TEST(Service, WhatIsNoHttpGetsAnErrorInJson) {
  RunningService running;
  const RawConnection connection(running.port());
  connection.Send("hello there\r\n\r\n");
  const std::string answer = connection.ReadToEnd();
  EXPECT_EQ(answer.rfind("HTTP/1.1 400 ", 0), 0u) << answer;
  EXPECT_NE(answer.find("{\"code\":\"bad_request\""), std::string::npos) << answer;
}

TEST(Service, ARequestThatIsFramedInTwoWaysIsRefused) {
  const RunningService running;
  const RawConnection connection(running.port());
  connection.Send(
      "POST /v1/translate HTTP/1.1\r\nContent-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}");
  EXPECT_EQ(connection.ReadToEnd().rfind("HTTP/1.1 400 ", 0), 0u);
}

TEST(Service, AHeadWithoutEndIsRefused) {
  const RunningService running;
  const RawConnection connection(running.port());
  connection.Send("GET /v1/health HTTP/1.1\r\nX: " + std::string(100'000, 'x'));
  EXPECT_EQ(connection.ReadToEnd().rfind("HTTP/1.1 431 ", 0), 0u);
}

TEST(Service, ABodyCutShortIsRefused) {
  const RunningService running;
  const RawConnection connection(running.port());
  connection.Send("POST /v1/translate HTTP/1.1\r\nHost: x\r\nContent-Length: 4000\r\n\r\n{}");
  connection.FinishSending();
  EXPECT_EQ(connection.ReadToEnd().rfind("HTTP/1.1 400 ", 0), 0u);
}

TEST(Service, AClientThatAsksForLeaveToSendGetsItAtOnce) {
  const RunningService running;
  const RawConnection asking(running.port());
  asking.Send(
      "POST /v1/translate HTTP/1.1\r\nHost: x\r\nContent-Length: 2\r\n"
      "Expect: 100-continue\r\n\r\n");
  asking.WaitReadable();
  asking.Send("{}");
  EXPECT_EQ(asking.ReadToEnd().rfind("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 400 ", 0), 0u);
}

TEST(Service, EachConnectionServesOneRequest) {
  const RunningService running;
  const RawConnection connection(running.port());
  connection.Send("GET /v1/health HTTP/1.1\r\nHost: x\r\n\r\n");
  const std::string answer = connection.ReadToEnd();
  EXPECT_NE(answer.find("Connection: close\r\n"), std::string::npos) << answer;
}

TEST(Service, TheLogHasOneLineForEachRequestAndNeverATextOrAToken) {
  ServiceOptions options;
  options.tokens = {"topsecret"};
  RunningService running(options);
  running.Post(R"({"texts":["private","words"],"targetLang":"es"})",
               {"Authorization: Bearer topsecret"});
  running.Post(kOneText, {"Authorization: Bearer guessed"});
  HttpRequest("GET", LocalUrl(running.port(), "/a%0Ab%20c?token=topsecret"));
  const std::vector<std::string> lines = running.StopAndGetLog();
  ASSERT_EQ(lines.size(), 3u);
  const std::regex form(
      R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z [A-Z]+ \S+ \d{3} token=\S+ texts=\d+ chars=\d+ )"
      R"(engine=scripted ms=\d+ cause=\S+)");
  for (const std::string& line : lines) {
    EXPECT_TRUE(std::regex_match(line, form)) << line;
    for (const char* never : {"topsecret", "guessed", "private", "words"}) {
      EXPECT_EQ(line.find(never), std::string::npos) << line;
    }
  }
  EXPECT_NE(lines[0].find(" POST /v1/translate 200 token=given-1 texts=2 chars=12 "),
            std::string::npos)
      << lines[0];
  EXPECT_NE(lines[1].find(" POST /v1/translate 401 token=- texts=0 chars=0 "), std::string::npos)
      << lines[1];
  EXPECT_NE(lines[1].find(" cause=unauthorized"), std::string::npos) << lines[1];
  EXPECT_NE(lines[2].find(" GET /a?b?c 404 "), std::string::npos) << lines[2];
}

TEST(Service, WithoutThreadsOneAfterTheOtherIsServed) {
  ServiceOptions options;
  options.threads = 0;
  const RunningService running(options);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(running.Post(kOneText).status, 200);
  std::vector<std::thread> clients;
  for (int i = 0; i < 4; ++i) {
    clients.emplace_back([&] { EXPECT_EQ(running.Post(kOneText).status, 200); });
  }
  for (std::thread& client : clients) client.join();
  running.service->Stop();
}

TEST(Service, ClientsAreServedSideBySide) {
  Gate gate;
  const RunningService running({},
                               [&](const EngineRequest& request, const std::atomic<bool>& stop) {
                                 if (request.texts[0] == "slow") {
                                   gate.Arrive();
                                   gate.Wait(stop);
                                 }
                                 return Translated(request.texts);
                               });
  std::thread slow(
      [&] { EXPECT_EQ(running.Post(R"({"texts":["slow"],"targetLang":"es"})").status, 200); });
  gate.WaitArrived();
  EXPECT_EQ(running.Post(kOneText).status, 200);
  gate.Open();
  slow.join();
}

TEST(Service, TheReportTellsWhatWasLeftAndWhyAnEngineFailed) {
  ServiceOptions options;
  options.keepReport = true;
  bool fails = false;
  const RunningService running(options,
                               [&](const EngineRequest& request, const std::atomic<bool>&) {
                                 if (fails)
                                   return Failed(EngineFailure::kRefused, "The key is wrong.");
                                 EngineResult result = Translated(request.texts);
                                 result.left.push_back({0, LeftCause::kNoPair, "deu"});
                                 return result;
                               });
  ASSERT_EQ(running.Post(R"({"texts":["Kosten","x"],"targetLang":"es"})").status, 200);
  fails = true;
  running.Post(kOneText);
  const ServiceReport report = running.service->TakeReport();
  ASSERT_EQ(report.left.size(), 1u);
  EXPECT_EQ(report.left[0].text, "Kosten");
  EXPECT_EQ(report.left[0].language, "deu");
  EXPECT_EQ(report.left[0].cause, LeftCause::kNoPair);
  EXPECT_EQ(report.failure, EngineFailure::kRefused);
  EXPECT_EQ(report.failureMessage, "The key is wrong.");
  EXPECT_TRUE(running.service->TakeReport().left.empty());
  EXPECT_FALSE(running.service->TakeReport().failure);
}

TEST(Service, APortThatIsTakenIsRefusedWithASentence) {
  const RunningService first;
  ServiceOptions options;
  options.port = first.port();
  const std::string error = Refusal(options);
  EXPECT_NE(error.find("Address already in use"), std::string::npos) << error;
  EXPECT_NE(error.find(std::to_string(first.port())), std::string::npos) << error;
}

TEST(Service, AnAddressThatIsNoneIsRefusedWithASentence) {
  ServiceOptions options;
  options.address = "256.1.1.1";
  const std::string error = Refusal(options);
  EXPECT_NE(error.find("256.1.1.1"), std::string::npos) << error;
}

TEST(Service, ATokenFileThatCantBeReadIsRefused) {
  ServiceOptions options;
  options.tokenFile = "/nowhere/tokens";
  const std::string error = Refusal(options);
  EXPECT_NE(error.find("/nowhere/tokens"), std::string::npos) << error;
}

}  // namespace quillmarch::service
