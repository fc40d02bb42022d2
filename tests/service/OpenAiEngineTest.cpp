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
    const auto engine = MakeEngine(options);
    EXPECT_TRUE(engine) << engine.error().words;
    return (*engine)->Translate(request, stop);
  }
  void ExpectFailure(const EngineResult& result, EngineFailure failure) {
    EXPECT_FALSE(result.ok);
    EXPECT_EQ(result.failure, failure) << result.message;
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
  ExpectFailure(Ask(few), EngineFailure::kBadAnswer);
  options.openaiUrl.clear();
  ScriptedModel prose({{200, ChatMessage("no idea")}});
  ExpectFailure(Ask(prose), EngineFailure::kBadAnswer);
  options.openaiUrl.clear();
  ScriptedModel broken({{200, "{\"choices\":"}});
  ExpectFailure(Ask(broken), EngineFailure::kBadAnswer);
}

TEST_F(OpenAi, ABusyServerIsAskedOnceMoreAfterItsTime) {
  ScriptedModel model({{429, "", "0"}, {200, ChatMessage(kGood)}});
  EXPECT_TRUE(Ask(model).ok);
  EXPECT_EQ(model.requests().size(), 2u);
}

TEST_F(OpenAi, AServerThatStaysBusyIsRateLimited) {
  ScriptedModel model({{429, "", "0"}, {429, "", "0"}, {200, ChatMessage(kGood)}});
  ExpectFailure(Ask(model), EngineFailure::kRateLimited);
  EXPECT_EQ(model.requests().size(), 2u);
}

TEST_F(OpenAi, AWaitBeyondTheBoundIsNotWaited) {
  ScriptedModel model({{429, "", "30"}, {200, ChatMessage(kGood)}});
  ExpectFailure(Ask(model), EngineFailure::kRateLimited);
  EXPECT_EQ(model.requests().size(), 1u);
}

TEST_F(OpenAi, AStopEndsTheWaitForABusyServer) {
  ScriptedModel model({{429, "", "15"}, {200, ChatMessage(kGood)}});
  std::future<EngineResult> result = std::async(std::launch::async, [&] { return Ask(model); });
  model.WaitForRequests(1);
  stop = true;
  ExpectFailure(result.get(), EngineFailure::kStopping);
  EXPECT_EQ(model.requests().size(), 1u);
}

TEST_F(OpenAi, AServerThatHangsTimesOut) {
  options.openaiTimeLimitMs = 200;
  ScriptedModel model({{200, "", "", true}});
  ExpectFailure(Ask(model), EngineFailure::kTimeout);
}

TEST_F(OpenAi, AStopEndsARequestThatHangs) {
  ScriptedModel model({{200, "", "", true}});
  std::future<EngineResult> result = std::async(std::launch::async, [&] { return Ask(model); });
  model.WaitForRequests(1);
  stop = true;
  ExpectFailure(result.get(), EngineFailure::kStopping);
}

TEST_F(OpenAi, ErrorsOfTheServerAreTold) {
  ScriptedModel broken({{500, "{}"}});
  ExpectFailure(Ask(broken), EngineFailure::kFailed);
  options.openaiUrl.clear();
  ScriptedModel closed({{401, "{}"}});
  ExpectFailure(Ask(closed), EngineFailure::kRefused);
  options.openaiUrl.clear();
  ScriptedModel elsewhere({{302, "", "", false, "http://127.0.0.1:9/"}});
  ExpectFailure(Ask(elsewhere), EngineFailure::kFailed);
}

TEST_F(OpenAi, ARefusedConnectionIsTold) {
  {
    const ScriptedModel gone({});
    options.openaiUrl = gone.url();
  }
  const ScriptedModel unused({});
  ExpectFailure(Ask(unused), EngineFailure::kUnavailable);
}

TEST_F(OpenAi, HttpsIsVerified) {
  const TestCertificate certificate = MakeTestCertificate(folder, "model");
  ScriptedModel model({{200, ChatMessage(kGood)}}, &certificate);
  ExpectFailure(Ask(model), EngineFailure::kUnavailable);
  EXPECT_TRUE(model.requests().empty());
  options.openaiCaFile = certificate.certificateFile;
  EXPECT_TRUE(Ask(model).ok);
}

TEST_F(OpenAi, TheServersOwnSentenceReachesTheUser) {
  ScriptedModel model({{400, R"({"error":{"message":"The context is too long."}})"},
                       {401, R"({"error":{"message":"Incorrect key."}})"},
                       {404, R"({"error":"model \"m\" not found"})"}});
  EXPECT_EQ(Ask(model).message, "The model's server failed (status 400): The context is too long.");
  EXPECT_EQ(Ask(model).message, "The model's server refused the key (status 401): Incorrect key.");
  const EngineResult unknown = Ask(model);
  ExpectFailure(unknown, EngineFailure::kRefused);
  EXPECT_NE(unknown.message.find("model \"m\" not found"), std::string::npos) << unknown.message;
}

TEST_F(OpenAi, WhyThereIsNoConnectionIsSaid) {
  const auto message = [&](const std::string& url) {
    options.openaiUrl = url;
    const ScriptedModel unused({});
    const EngineResult result = Ask(unused);
    ExpectFailure(result, EngineFailure::kUnavailable);
    return result.message;
  };
  EXPECT_NE(message("http://no-such-host.invalid").find("no host of this name"), std::string::npos);
  std::string gone;
  {
    const ScriptedModel model({});
    gone = model.url();
  }
  EXPECT_NE(message(gone).find("nothing accepts connections"), std::string::npos);
  const ScriptedModel plain({});
  EXPECT_NE(message("https" + plain.url().substr(4)).find("does not speak TLS"), std::string::npos);
  const TestCertificate certificate = MakeTestCertificate(folder, "model");
  const ScriptedModel secure({}, &certificate);
  EXPECT_NE(message(secure.url()).find("--openai-ca-file"), std::string::npos);
}

TEST_F(OpenAi, TextsAnsweredWithNothingAreAskedForOnceMore) {
  request.texts = {"one", "two", " "};
  ScriptedModel model(
      {{200, ChatMessage(R"({"1":"uno","2":" ","3":""})")}, {200, ChatMessage(R"({"1":"dos"})")}});
  EXPECT_EQ(Ask(model).translations, (std::vector<std::string>{"uno", "dos", ""}));
  const auto second = nlohmann::json::parse(model.requests().at(1).body);
  EXPECT_EQ(second["messages"][1]["content"], R"({"1":"two"})");
}

TEST_F(OpenAi, AnAnswerWithoutEndIsNotReadToItsEnd) {
  ScriptedModel model({{200, std::string(3'000'000, ' ')}});
  ExpectFailure(Ask(model), EngineFailure::kBadAnswer);
}

TEST_F(OpenAi, MissingSettingsAreNamed) {
  const auto refuse = [&] {
    const auto made = MakeEngine(options);
    return made ? "" : made.error().words;
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
