#include "service/TranslateRequest.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "service/PrivateFile.h"
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
  asked.answer = AnswerTranslate(body, {engine, tokens, nullptr, "", maxTexts, stop});
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
                            return Failed(EngineFailure::kRateLimited, "Later.");
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
  EXPECT_EQ(asked.answer.status, 502);
  EXPECT_NE(asked.answer.body.find("\"engine_failed\""), std::string::npos);
}

TEST(TranslateRequest, CreditsAreTakenInUtf16UnitsAndGivenBackWhenTheEngineFails) {
  // "😀a" is 3 units.
  const std::string body = R"({"texts":["😀a"],"targetLang":"es"})";
  const std::atomic<bool> stop{false};
  bool works = false;
  ScriptedEngine engine([&](const EngineRequest& request, const std::atomic<bool>&) {
    return works ? Translated(request.texts) : Failed(EngineFailure::kFailed, "No.");
  });
  const TempFolder folder;
  TokenTable limited;
  ASSERT_TRUE(limited.Load(PutPrivate(folder, "tokens", "t 7\n"), {}));
  const TokenHandle token = limited.Find("Bearer t");
  const auto ask = [&] {
    return AnswerTranslate(body, {engine, limited, token, "t", 100, stop}).status;
  };
  EXPECT_EQ(ask(), 502);
  works = true;
  EXPECT_EQ(ask(), 200);
  EXPECT_EQ(ask(), 200);
  EXPECT_EQ(ask(), 402);
}

TEST(TranslateRequest, AGlossaryOfAMillionObjectsIsRefusedBeforeItIsBuilt) {
  std::string body = R"({"texts":["a"],"targetLang":"es","glossary":[{})";
  for (int i = 0; i < 1'000'000; ++i) body += ",{}";
  const Asked asked = Ask(body + "]}");
  EXPECT_EQ(asked.answer.status, 413);
  EXPECT_EQ(asked.answer.cause, "payload_too_large");
  EXPECT_FALSE(asked.called);
}

TEST(TranslateRequest, AThousandTermsAreTakenAndOneMoreIsNot) {
  std::string terms = R"({"source":"a","target":"b","note":"n"})";
  for (std::size_t i = 1; i < kMaxTerms; ++i) terms += R"(,{"source":"a","target":"b","note":"n"})";
  const std::string head = R"({"texts":["a"],"targetLang":"es","glossary":[)";
  EXPECT_EQ(Ask(head + terms + "]}").request.glossary.size(), kMaxTerms);
  EXPECT_EQ(Ask(head + terms + ",{}]}").answer.status, 413);
}

TEST(TranslateRequest, ATextThatTheEngineAnswersWithNothingKeepsItsWordsAndIsNamed) {
  const Asked asked = Ask(R"({"texts":["one","two"," "],"targetLang":"es"})",
                          [](const EngineRequest&, const std::atomic<bool>&) {
                            return Translated({"uno", " ", ""});
                          });
  EXPECT_EQ(asked.answer.body, R"({"translations":["uno","two",""]})");
  ASSERT_EQ(asked.answer.left.size(), 1u);
  EXPECT_EQ(asked.answer.left[0].text, "two");
  EXPECT_EQ(asked.answer.left[0].cause, LeftCause::kNoTranslation);
}

TEST(TranslateRequest, ARefusalForGoodGoesOutUnderACodeThatEndsTheClientsTries) {
  for (const auto& [failure, cause] :
       {std::pair(EngineFailure::kRefused, "engine_refused"),
        std::pair(EngineFailure::kUnsupportedPair, "unsupported_language_pair")}) {
    const Asked asked = Ask(R"({"texts":["a"],"targetLang":"es"})",
                            [&, why = failure](const EngineRequest&, const std::atomic<bool>&) {
                              return Failed(why, "Never.");
                            });
    EXPECT_EQ(asked.answer.body, std::string(R"({"code":"unauthorized","message":"Never.",)") +
                                     R"("cause":")" + cause + "\"}");
    EXPECT_EQ(asked.answer.cause, cause);
    EXPECT_EQ(asked.answer.failure, failure);
    EXPECT_EQ(asked.answer.failureMessage, "Never.");
  }
}

TEST(TranslateRequest, TheRunIsKnownByItsClientItsTraceAndItsNumber) {
  const auto run = [](const std::string& trace) {
    return Ask(R"({"texts":["a"],"targetLang":"es")" + trace + "}").request.run;
  };
  EXPECT_EQ(run(""), "");
  EXPECT_EQ(run(R"(,"trace":{})"), "");
  const std::string one = run(R"(,"trace":{"clientTraceId":"ppt_1","runId":"1"})");
  EXPECT_NE(one, "");
  EXPECT_EQ(run(R"(,"trace":{"runId":"1","clientTraceId":"ppt_1"})"), one);
  EXPECT_NE(run(R"(,"trace":{"clientTraceId":"ppt_1","runId":"2"})"), one);
}

}  // namespace quillmarch::service
