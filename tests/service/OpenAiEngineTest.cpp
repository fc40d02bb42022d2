#include "service/engines/OpenAiEngine.h"

#include <gtest/gtest.h>

#include <future>
#include <nlohmann/json.hpp>

#include "service/RunningService.h"
#include "service/ScriptedModel.h"
#include "service/TestCertificate.h"

namespace quillmarch::service {

namespace {

class OpenAi : public testing::Test {
 protected:
  OpenAi() {
    options.name = "openai";
    options.openaiModel = "m";
    request.texts = {"one", "two"};
    request.sourceLang = "en";
    request.targetLang = "es";
  }
  EngineResult Ask(const ScriptedModel& model) {
    if (options.openaiUrl.empty()) options.openaiUrl = model.url();
    std::string error;
    const std::unique_ptr<Engine> engine = MakeEngine(options, error);
    EXPECT_NE(engine, nullptr) << error;
    return engine->Translate(request, stop);
  }
  void ExpectFailure(const EngineResult& result, int status, const char* code) {
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.code, code);
    EXPECT_NE(result.message, "");
  }
  EngineOptions options;
  EngineRequest request;
  std::atomic<bool> stop{false};
  TempFolder folder;
};

constexpr char kGood[] = R"({"1":"uno","2":"dos"})";

}  // namespace

TEST_F(OpenAi, TranslatesWithKeyAndModel) {
  options.openaiKeyFile = folder.Put("key", "k-123\r\nsecond line\n");
  ScriptedModel model({{200, ChatMessage(kGood)}});
  const EngineResult result = Ask(model);
  ASSERT_TRUE(result.ok) << result.message;
  EXPECT_EQ(result.translations, (std::vector<std::string>{"uno", "dos"}));
  const ModelRequest seen = model.requests().at(0);
  EXPECT_EQ(seen.path, "/v1/chat/completions");
  EXPECT_EQ(seen.authorization, "Bearer k-123");
  EXPECT_EQ(nlohmann::json::parse(seen.body)["model"], "m");
}

TEST_F(OpenAi, WithoutAKeyFileNoKeyIsSent) {
  ScriptedModel model({{200, ChatMessage(kGood)}});
  ASSERT_TRUE(Ask(model).ok);
  EXPECT_EQ(model.requests().at(0).authorization, "");
}

TEST_F(OpenAi, NoTextsNeedNoServer) {
  ScriptedModel model({});
  request.texts.clear();
  EXPECT_TRUE(Ask(model).ok);
  EXPECT_TRUE(model.requests().empty());
}

TEST_F(OpenAi, AnotherOrderAndProseArePutRight) {
  ScriptedModel model({{200, ChatMessage("Here:\n```\n{\"2\":\"dos\",\"1\":\"uno\"}\n```")}});
  EXPECT_EQ(Ask(model).translations, (std::vector<std::string>{"uno", "dos"}));
}

TEST_F(OpenAi, AWrongCountAndInvalidJsonAreBadAnswers) {
  ScriptedModel few({{200, ChatMessage(R"({"1":"uno"})")}});
  ExpectFailure(Ask(few), 502, "engine_bad_answer");
  options.openaiUrl.clear();
  ScriptedModel prose({{200, ChatMessage("no idea")}});
  ExpectFailure(Ask(prose), 502, "engine_bad_answer");
  options.openaiUrl.clear();
  ScriptedModel broken({{200, "{\"choices\":"}});
  ExpectFailure(Ask(broken), 502, "engine_bad_answer");
}

TEST_F(OpenAi, ABusyServerIsAskedOnceMoreAfterItsTime) {
  ScriptedModel model({{429, "", "0"}, {200, ChatMessage(kGood)}});
  EXPECT_TRUE(Ask(model).ok);
  EXPECT_EQ(model.requests().size(), 2u);
}

TEST_F(OpenAi, AServerThatStaysBusyIsRateLimited) {
  ScriptedModel model({{429, "", "0"}, {429, "", "0"}, {200, ChatMessage(kGood)}});
  ExpectFailure(Ask(model), 429, "rate_limited");
  EXPECT_EQ(model.requests().size(), 2u);
}

TEST_F(OpenAi, AWaitBeyondTheBoundIsNotWaited) {
  ScriptedModel model({{429, "", "30"}, {200, ChatMessage(kGood)}});
  ExpectFailure(Ask(model), 429, "rate_limited");
  EXPECT_EQ(model.requests().size(), 1u);
}

TEST_F(OpenAi, AStopEndsTheWaitForABusyServer) {
  ScriptedModel model({{429, "", "15"}, {200, ChatMessage(kGood)}});
  std::future<EngineResult> result = std::async(std::launch::async, [&] { return Ask(model); });
  model.WaitForRequests(1);
  stop = true;
  ExpectFailure(result.get(), 503, "shutting_down");
  EXPECT_EQ(model.requests().size(), 1u);
}

TEST_F(OpenAi, AServerThatHangsTimesOut) {
  options.openaiTimeLimitMs = 200;
  ScriptedModel model({{200, "", "", true}});
  ExpectFailure(Ask(model), 504, "engine_timeout");
}

TEST_F(OpenAi, AStopEndsARequestThatHangs) {
  ScriptedModel model({{200, "", "", true}});
  std::future<EngineResult> result = std::async(std::launch::async, [&] { return Ask(model); });
  model.WaitForRequests(1);
  stop = true;
  ExpectFailure(result.get(), 503, "shutting_down");
}

TEST_F(OpenAi, ErrorsOfTheServerAreTold) {
  ScriptedModel broken({{500, "{}"}});
  ExpectFailure(Ask(broken), 502, "engine_failed");
  options.openaiUrl.clear();
  ScriptedModel closed({{401, "{}"}});
  ExpectFailure(Ask(closed), 502, "engine_refused");
  options.openaiUrl.clear();
  ScriptedModel elsewhere({{302, "", "", false, "http://127.0.0.1:9/"}});
  ExpectFailure(Ask(elsewhere), 502, "engine_failed");
}

TEST_F(OpenAi, ARefusedConnectionIsTold) {
  {
    const ScriptedModel gone({});
    options.openaiUrl = gone.url();
  }
  const ScriptedModel unused({});
  ExpectFailure(Ask(unused), 502, "engine_unavailable");
}

TEST_F(OpenAi, HttpsIsVerified) {
  const TestCertificate certificate = MakeTestCertificate(folder, "model");
  ScriptedModel model({{200, ChatMessage(kGood)}}, &certificate);
  ExpectFailure(Ask(model), 502, "engine_unavailable");
  EXPECT_TRUE(model.requests().empty());
  options.openaiCaFile = certificate.certificateFile;
  EXPECT_TRUE(Ask(model).ok);
}

TEST_F(OpenAi, MissingSettingsAreNamed) {
  const auto refuse = [&] {
    std::string error;
    EXPECT_EQ(MakeEngine(options, error), nullptr);
    return error;
  };
  EXPECT_NE(refuse().find("--openai-url"), std::string::npos);
  options.openaiUrl = "ftp://x";
  EXPECT_NE(refuse().find("http://"), std::string::npos);
  options.openaiUrl = "http://x";
  options.openaiKeyFile = folder.Path("none");
  EXPECT_NE(refuse().find("none"), std::string::npos);
  options.openaiKeyFile = folder.Put("empty", "");
  EXPECT_NE(refuse().find("empty"), std::string::npos);
}

TEST(ChatCompletionsUrl, ABaseWithoutAPathGetsTheUsualOne) {
  EXPECT_EQ(ChatCompletionsUrl("http://h:1"), "http://h:1/v1/chat/completions");
  EXPECT_EQ(ChatCompletionsUrl("http://h:1/"), "http://h:1/v1/chat/completions");
  EXPECT_EQ(ChatCompletionsUrl("https://h/v1"), "https://h/v1/chat/completions");
  EXPECT_EQ(ChatCompletionsUrl("https://h/api/v3/"), "https://h/api/v3/chat/completions");
}

}  // namespace quillmarch::service
