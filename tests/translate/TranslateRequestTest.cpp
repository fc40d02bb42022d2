#include "translate/TranslateRequest.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "translate/ScriptedPage.h"

namespace quillmarch::addin {

namespace {

using Sizes = std::vector<std::size_t>;

// What one call gave; the outputs start dirty, as a caller may hand in used ones.
struct Outcome {
  bool ok = false;
  std::vector<Wide> translations = {u"old"};
  Wide message = u"old";
  Wide code = u"old";
};

Outcome Translate(TranslateConfig& config, const std::vector<Wide>& texts,
                  const std::vector<Wide>* unitIds = nullptr) {
  Outcome outcome;
  outcome.ok =
      TranslateTexts(config, texts, outcome.translations, outcome.message, outcome.code, unitIds);
  return outcome;
}

void ExpectFailure(const Outcome& outcome, WideView message, WideView code) {
  EXPECT_FALSE(outcome.ok);
  EXPECT_EQ(outcome.message, message);
  EXPECT_EQ(outcome.code, code);
}

bool Holds(const TranslateBatchRequest& request, WideView text) {
  for (const Wide& each : request.texts) {
    if (each == text) return true;
  }
  return false;
}

TEST(TranslateConfig, StartsWithTheDefaultsOfARun) {
  const TranslateConfig config;
  EXPECT_EQ(config.host, DefaultEndpoint().host);
  EXPECT_EQ(config.port, DefaultEndpoint().port);
  EXPECT_TRUE(config.useHttps);
  EXPECT_EQ(config.targetLang, u"zh-CN");
  EXPECT_EQ(config.sourceLang, u"auto");
  EXPECT_EQ(config.usageKind, u"translate_full");
  EXPECT_EQ(config.clientProduct, u"ppt");
  EXPECT_EQ(config.batchSeq, 0u);
}

TEST(TranslateTexts, NoTextsNeedNoAttempt) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  const Outcome outcome = Translate(config, {});
  EXPECT_TRUE(outcome.ok);
  EXPECT_TRUE(outcome.translations.empty());
  EXPECT_EQ(outcome.message, u"");
  EXPECT_TRUE(page.requests.empty());
}

TEST(TranslateTexts, AGoodBatchTakesOneAttempt) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  const Outcome outcome = Translate(config, {u"a", u"b"});
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"T:a", u"T:b"}));
  EXPECT_EQ(outcome.message, u"");
  EXPECT_EQ(outcome.code, u"");
  EXPECT_EQ(page.Sizes(), (Sizes{2}));
}

TEST(TranslateTexts, TheSecondAttemptMaySucceed) {
  TranslateConfig config;
  int attempts = 0;
  ScriptedPage page(config, [&](const TranslateBatchRequest& request) {
    return ++attempts == 1 ? Refused(u"engine_failed", u"No engine") : Echo(request);
  });
  const Outcome outcome = Translate(config, {u"a", u"b"});
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.message, u"");
  EXPECT_EQ(page.Sizes(), (Sizes{2, 2}));
}

TEST(TranslateTexts, ABatchOf20ThatAlwaysFailsCostsTwoAttemptsAtEachLevelOfItsFirstBranch) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest& request) {
    return Refused(u"engine_failed", u"failed at " + DecimalUnsigned(request.texts.size()));
  });
  ExpectFailure(Translate(config, NumberedTexts(20)), u"failed at 1", u"engine_failed");
  EXPECT_EQ(page.Sizes(), (Sizes{20, 20, 10, 10, 5, 5, 2, 2, 1, 1}));
  EXPECT_EQ(page.requests.back().texts, (std::vector<Wide>{u"text 0"}));
}

TEST(TranslateTexts, AnOddBatchIsSplitWithTheLargerHalfLast) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest& request) {
    return request.texts.size() > 3 ? Refused(u"x", u"x") : Echo(request);
  });
  const Outcome outcome = Translate(config, NumberedTexts(5));
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(page.Sizes(), (Sizes{5, 5, 2, 3}));
  EXPECT_EQ(outcome.translations,
            (std::vector<Wide>{u"T:text 0", u"T:text 1", u"T:text 2", u"T:text 3", u"T:text 4"}));
}

TEST(TranslateTexts, OneStubbornTextFailsTheWholeBatchAndNoGoodHalfIsAskedAgain) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest& request) {
    return Holds(request, u"text 3") ? Refused(u"x", u"stubborn") : Echo(request);
  });
  const Outcome outcome = Translate(config, NumberedTexts(4));
  ExpectFailure(outcome, u"stubborn", u"x");
  EXPECT_EQ(page.Sizes(), (Sizes{4, 4, 2, 2, 2, 1, 1, 1}));
}

TEST(TranslateTexts, CodesThatNoRetryHelpsEndAtTheFirstAttempt) {
  for (const char16_t* code : {u"insufficient_credits", u"unauthorized", u"cancelled"}) {
    TranslateConfig config;
    ScriptedPage page(config, [&](const TranslateBatchRequest&) { return Refused(code, u"m"); });
    ExpectFailure(Translate(config, NumberedTexts(4)), u"m", code);
    EXPECT_EQ(page.Sizes(), (Sizes{4}));
  }
}

TEST(TranslateTexts, CodesThatNoRetryHelpsEndAtTheSecondAttemptToo) {
  TranslateConfig config;
  int attempts = 0;
  ScriptedPage page(config, [&](const TranslateBatchRequest&) {
    return ++attempts == 1 ? Refused(u"x", u"x") : Refused(u"unauthorized", u"m");
  });
  ExpectFailure(Translate(config, NumberedTexts(4)), u"m", u"unauthorized");
  EXPECT_EQ(page.Sizes(), (Sizes{4, 4}));
}

TEST(TranslateTexts, ASingleTextKeepsItsFirstFailureWhenTheSecondSaysNothing) {
  TranslateConfig config;
  int attempts = 0;
  ScriptedPage page(config, [&](const TranslateBatchRequest&) {
    return ++attempts == 1 ? Refused(u"first", u"First") : Refused(u"second", u"");
  });
  ExpectFailure(Translate(config, {u"a"}), u"First", u"first");
}

TEST(TranslateTexts, ASingleTextGivesItsSecondFailureWhenThatSaysSomething) {
  TranslateConfig config;
  int attempts = 0;
  ScriptedPage page(config, [&](const TranslateBatchRequest&) {
    return ++attempts == 1 ? Refused(u"first", u"First") : Refused(u"", u"Second");
  });
  ExpectFailure(Translate(config, {u"a"}), u"Second", u"");
}

TEST(TranslateTexts, AWrongCountIsRetriedAndSplitAndThenNamed) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) {
    return Translated({u"1", u"2", u"3"});
  });
  ExpectFailure(Translate(config, {u"a", u"b"}), u"Translation count mismatch", u"");
  EXPECT_EQ(page.Sizes(), (Sizes{2, 2, 1, 1}));
}

TEST(TranslateTexts, UnitIdsAreSplitWithTheirTexts) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest& request) {
    return request.texts.size() > 1 ? Refused(u"x", u"x") : Echo(request);
  });
  const std::vector<Wide> ids = {u"u0", u"u1"};
  EXPECT_TRUE(Translate(config, NumberedTexts(2), &ids).ok);
  EXPECT_EQ(page.requests[0].unitIds, ids);
  EXPECT_EQ(page.requests[2].unitIds, (std::vector<Wide>{u"u0"}));
  EXPECT_EQ(page.requests[3].unitIds, (std::vector<Wide>{u"u1"}));
}

TEST(TranslateTexts, ACancelBeforehandMakesNoAttempt) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  config.cancelled = 1;
  config.paused = 1;
  ExpectFailure(Translate(config, {u"a"}), u"Cancelled", u"cancelled");
  EXPECT_TRUE(page.requests.empty());
}

TEST(TranslateTexts, ACancelDuringAFailingAttemptEndsAsCancelledAtTheNextCheck) {
  TranslateConfig config;
  ScriptedPage page(config, [&](const TranslateBatchRequest&) {
    config.cancelled = 1;
    return Refused(u"network_error", u"HTTP request failed");
  });
  ExpectFailure(Translate(config, NumberedTexts(4)), u"Cancelled", u"cancelled");
  EXPECT_EQ(page.Sizes(), (Sizes{4}));
}

TEST(TranslateTexts, APauseDuringABatchHoldsTheNextAttemptAndLosesNothing) {
  TranslateConfig config;
  std::atomic<int> attempts{0};
  ScriptedPage page(config, [&](const TranslateBatchRequest& request) {
    if (++attempts == 1) {
      config.paused = 1;
      return Refused(u"x", u"x");
    }
    return Echo(request);
  });
  auto call = std::async(std::launch::async, [&] { return Translate(config, {u"a", u"b"}); });
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(150)), std::future_status::timeout);
  EXPECT_EQ(attempts, 1);
  config.paused = 0;
  const Outcome outcome = call.get();
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"T:a", u"T:b"}));
}

TEST(TranslateTexts, ACancelEndsAPause) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  config.paused = 1;
  auto call = std::async(std::launch::async, [&] { return Translate(config, {u"a"}); });
  config.cancelled = 1;
  ExpectFailure(call.get(), u"Cancelled", u"cancelled");
}

TEST(TranslateOnce, NoTextsNeedNoAttemptEvenWhenCancelled) {
  TranslateConfig config;
  config.cancelled = 1;
  std::vector<Wide> translations = {u"old"};
  Wide message = u"old";
  Wide code = u"old";
  EXPECT_TRUE(TranslateOnce(config, {}, translations, message, code, nullptr));
  EXPECT_TRUE(translations.empty());
  EXPECT_EQ(message + code, u"");
}

TEST(TranslateOnce, AFailureIsNotTriedAgain) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Refused(u"x", u"m"); });
  std::vector<Wide> translations;
  Wide message;
  Wide code;
  EXPECT_FALSE(TranslateOnce(config, NumberedTexts(4), translations, message, code, nullptr));
  EXPECT_EQ(message, u"m");
  EXPECT_EQ(code, u"x");
  EXPECT_EQ(page.Sizes(), (Sizes{4}));
}

TEST(TranslateSingle, GivesTheOneTranslation) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  Wide translation = u"old";
  Wide message;
  Wide code;
  EXPECT_TRUE(TranslateSingle(config, u"a", translation, message, code));
  EXPECT_EQ(translation, u"T:a");
}

TEST(TranslateSingle, GivesTheFailureOfItsAttempts) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Refused(u"x", u"m"); });
  Wide translation = u"old";
  Wide message;
  Wide code;
  EXPECT_FALSE(TranslateSingle(config, u"a", translation, message, code));
  EXPECT_EQ(translation, u"");
  EXPECT_EQ(message, u"m");
  EXPECT_EQ(code, u"x");
  EXPECT_EQ(page.Sizes(), (Sizes{1, 1}));
}

TEST(BuildBatchRequest, CopiesWhatTheRunKnows) {
  TranslateConfig config;
  config.sourceLang = u"en";
  config.targetLang = u"es";
  config.usageKind = u"kind";
  config.clientProduct = u"product";
  config.instruction = u"Be brief";
  config.clientTraceId = u"trace";
  config.runId = 7;
  config.batchSeq = 3;
  const TranslateBatchRequest request = BuildBatchRequest(config, std::vector<Wide>{u"a"}, nullptr);
  EXPECT_EQ(request.texts, (std::vector<Wide>{u"a"}));
  EXPECT_TRUE(request.unitIds.empty());
  EXPECT_EQ(request.sourceLang, u"en");
  EXPECT_EQ(request.targetLang, u"es");
  EXPECT_EQ(request.usageKind, u"kind");
  EXPECT_EQ(request.clientProduct, u"product");
  EXPECT_EQ(request.instruction, u"Be brief");
  EXPECT_EQ(request.clientTraceId, u"trace");
  EXPECT_EQ(request.runId, 7u);
  EXPECT_EQ(request.batchSeq, 3u);
}

TEST(BuildBatchRequest, TakesUnitIdsOnlyWhenTheyAreAsManyAsTheTexts) {
  const TranslateConfig config;
  const std::vector<Wide> ids = {u"u0", u"u1"};
  EXPECT_EQ(BuildBatchRequest(config, std::vector<Wide>{u"a", u"b"}, &ids).unitIds, ids);
  EXPECT_TRUE(BuildBatchRequest(config, std::vector<Wide>{u"a"}, &ids).unitIds.empty());
}

TEST(BuildBatchRequest, TakesTheTermsThatThisBatchUsesInTheirOrder) {
  TranslateConfig config;
  config.glossary = {{u"profit", u"1", u""},
                     {u"", u"2", u""},
                     {u"Plan", u"3", u"n"},
                     {u"plan", u"4", u""},
                     {u"cost", u"5", u""}};
  const TranslateBatchRequest request =
      BuildBatchRequest(config, std::vector<Wide>{u"Plan A", u"net profits"}, nullptr);
  ASSERT_EQ(request.glossary.size(), 2u);
  EXPECT_EQ(request.glossary[0].target, u"1");
  EXPECT_EQ(request.glossary[1].target, u"3");
  EXPECT_EQ(request.glossary[1].note, u"n");
}

TEST(BuildBatchRequest, ATermAcrossTwoTextsIsInNeither) {
  TranslateConfig config;
  config.glossary = {{u"AB", u"x", u""}};
  EXPECT_TRUE(BuildBatchRequest(config, std::vector<Wide>{u"A", u"B"}, nullptr).glossary.empty());
}

}  // namespace

}  // namespace quillmarch::addin
