#include "service/TranslateRequest.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "service/ScriptedEngine.h"

namespace quillmarch::service {

namespace {

struct Asked {
  TranslateAnswer answer;
  EngineRequest request;
  bool called = false;
};

Asked Ask(const std::string& body, const ScriptedEngine::Answer& script = Echo,
          std::size_t maxTexts = 100) {
  Asked asked;
  ScriptedEngine engine([&](const EngineRequest& request, const std::atomic<bool>& stop) {
    asked.request = request;
    asked.called = true;
    return script(request, stop);
  });
  TokenTable tokens;
  const std::atomic<bool> stop{false};
  asked.answer = AnswerTranslate(body, maxTexts, engine, tokens, std::nullopt, stop);
  return asked;
}

void ExpectRefused(const std::string& body) {
  const Asked asked = Ask(body);
  EXPECT_EQ(asked.answer.status, 400) << body;
  EXPECT_EQ(asked.answer.body.rfind("{\"code\":\"bad_request\",\"message\":\"", 0), 0u)
      << asked.answer.body;
  EXPECT_FALSE(asked.called);
}

}  // namespace

TEST(TranslateRequest, TranslationsComeInTheOrderOfTheTexts) {
  const Asked asked = Ask(R"({"texts":["one","two"],"targetLang":"es"})",
                          [](const EngineRequest&, const std::atomic<bool>&) {
                            return Translated({"uno", "dos"});
                          });
  EXPECT_EQ(asked.answer.status, 200);
  EXPECT_EQ(asked.answer.body, R"({"translations":["uno","dos"]})");
  EXPECT_EQ(asked.answer.texts, 2u);
  EXPECT_EQ(asked.answer.chars, 6u);
}

TEST(TranslateRequest, UnitIdsAreEchoedBehindTheTranslations) {
  const Asked asked = Ask(R"({"texts":["a"],"unitIds":["u1"],"targetLang":"es"})");
  EXPECT_EQ(asked.answer.body, R"({"translations":["a"],"unitIds":["u1"]})");
}

TEST(TranslateRequest, EverythingTheEngineNeedsIsHandedOn) {
  const Asked asked = Ask(
      R"({"texts":["a"],"sourceLang":"en","targetLang":"es","usageKind":"x","clientProduct":"ppt",)"
      R"("glossary":[{"source":"a","target":"b","note":"n"},{"source":"c","target":"d"}],)"
      R"("instruction":"formal","trace":{"runId":"18446744073709551615"},)"
      R"("clientContext":{"deep":{"deeper":1}}})");
  EXPECT_EQ(asked.request.sourceLang, "en");
  EXPECT_EQ(asked.request.targetLang, "es");
  EXPECT_EQ(asked.request.instruction, "formal");
  ASSERT_EQ(asked.request.glossary.size(), 2u);
  EXPECT_EQ(asked.request.glossary[0].note, "n");
  EXPECT_EQ(asked.request.glossary[1].target, "d");
}

TEST(TranslateRequest, AMissingOrEmptySourceIsDetected) {
  EXPECT_EQ(Ask(R"({"texts":["a"],"targetLang":"es"})").request.sourceLang, "auto");
  EXPECT_EQ(Ask(R"({"texts":["a"],"sourceLang":"","targetLang":"es"})").request.sourceLang, "auto");
}

TEST(TranslateRequest, AnEmptyListGivesAnEmptyList) {
  EXPECT_EQ(Ask(R"({"texts":[],"targetLang":"es"})").answer.body, R"({"translations":[]})");
}

TEST(TranslateRequest, BodiesOfTheWrongShapeAreRefused) {
  ExpectRefused("");
  ExpectRefused("{");
  ExpectRefused("[]");
  ExpectRefused("null");
  ExpectRefused(R"({"targetLang":"es"})");
  ExpectRefused(R"({"texts":["a"]})");
  ExpectRefused(R"({"texts":["a"],"targetLang":""})");
  ExpectRefused(R"({"texts":"a","targetLang":"es"})");
  ExpectRefused(R"({"texts":["a",1],"targetLang":"es"})");
  ExpectRefused(R"({"texts":["a"],"targetLang":7})");
  ExpectRefused(R"({"texts":["a"],"targetLang":"es","glossary":{}})");
  ExpectRefused(R"({"texts":["a"],"targetLang":"es","glossary":["x"]})");
  ExpectRefused(R"({"texts":["a"],"targetLang":"es","glossary":[{"source":1}]})");
  ExpectRefused(R"({"texts":["a"],"targetLang":"es","unitIds":[1]})");
  ExpectRefused("{\"texts\":[\"\xFF\"],\"targetLang\":\"es\"}");
  ExpectRefused(R"({"texts":["\ud800"],"targetLang":"es"})");
}

TEST(TranslateRequest, ALanguageCodeWithAQuoteMarkBreaksTheBodyAndIsRefused) {
  ExpectRefused(R"({"texts":["a"],"targetLang":"e"s"})");
}

TEST(TranslateRequest, ABodyNestedWithoutEndIsRefused) {
  ExpectRefused("{\"texts\":" + std::string(2'000'000, '['));
  ExpectRefused("{\"x\":" + std::string(200, '[') + std::string(200, ']') +
                ",\"texts\":[\"a\"],\"targetLang\":\"es\"}");
}

TEST(TranslateRequest, BracketsInTextsAreNoNesting) {
  const Asked asked =
      Ask(R"({"texts":["\"[[[[[[[[[[[[[[[[[[[[","{\\","}[{[{[{[{[{[{[{[{[{["],"targetLang":"es"})");
  EXPECT_EQ(asked.answer.status, 200) << asked.answer.body;
  EXPECT_EQ(asked.request.texts[0], "\"" + std::string(20, '['));
}

TEST(TranslateRequest, TooManyTextsAreRefusedBeforeTheEngineSeesThem) {
  const Asked asked = Ask(R"({"texts":["a","b","c"],"targetLang":"es"})", Echo, 2);
  EXPECT_EQ(asked.answer.status, 413);
  EXPECT_NE(asked.answer.body.find("\"too_many_texts\""), std::string::npos);
  EXPECT_FALSE(asked.called);
  EXPECT_EQ(Ask(R"({"texts":["a","b"],"targetLang":"es"})", Echo, 2).answer.status, 200);
}

TEST(TranslateRequest, AnEnginesFailureIsPassedOnAsItStands) {
  const Asked asked = Ask(R"({"texts":["a"],"targetLang":"es"})",
                          [](const EngineRequest&, const std::atomic<bool>&) {
                            return Failed(429, "rate_limited", "Later.");
                          });
  EXPECT_EQ(asked.answer.status, 429);
  EXPECT_EQ(asked.answer.body, R"({"code":"rate_limited","message":"Later."})");
}

TEST(TranslateRequest, AnEngineThatGivesTheWrongCountIsABadAnswer) {
  const Asked asked =
      Ask(R"({"texts":["a","b"],"targetLang":"es"})",
          [](const EngineRequest&, const std::atomic<bool>&) { return Translated({"only one"}); });
  EXPECT_EQ(asked.answer.status, 502);
  EXPECT_NE(asked.answer.body.find("\"engine_bad_answer\""), std::string::npos);
  EXPECT_EQ(asked.answer.body.find("translations\""), std::string::npos);
}

TEST(TranslateRequest, AnEngineThatThrowsCostsItsRequestOnly) {
  const Asked asked = Ask(R"({"texts":["a"],"targetLang":"es"})",
                          [](const EngineRequest&, const std::atomic<bool>&) -> EngineResult {
                            throw std::runtime_error("out of cheese");
                          });
  EXPECT_EQ(asked.answer.status, 500);
  EXPECT_NE(asked.answer.body.find("\"engine_failed\""), std::string::npos);
}

TEST(TranslateRequest, CreditsAreTakenInUtf16UnitsAndGivenBackWhenTheEngineFails) {
  TokenTable tokens;
  // "😀a" is 3 units.
  const std::string body = R"({"texts":["😀a"],"targetLang":"es"})";
  std::string error;
  const std::atomic<bool> stop{false};
  bool works = false;
  ScriptedEngine engine([&](const EngineRequest& request, const std::atomic<bool>&) {
    return works ? Translated(request.texts) : Failed(500, "engine_failed", "No.");
  });
  TokenTable limited;
  {
    std::string path = testing::TempDir() + "quillmarch-credits";
    FILE* file = std::fopen(path.c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fputs("t 7\n", file);
    std::fclose(file);
    ASSERT_TRUE(limited.AddFile(path, error)) << error;
    std::remove(path.c_str());
  }
  const auto ask = [&] { return AnswerTranslate(body, 100, engine, limited, 0, stop).status; };
  EXPECT_EQ(ask(), 500);
  works = true;
  EXPECT_EQ(ask(), 200);
  EXPECT_EQ(ask(), 200);
  EXPECT_EQ(ask(), 402);
}

}  // namespace quillmarch::service
