#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "translate/ResponseChecks.h"
#include "translate/ScriptedPage.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

const Wide kSource = u"See [[QM_REF_1]] now";
const Wide kKept = u"Ver [[QM_REF_1]] ya";
const Wide kLost = u"Ver ya";

struct Outcome {
  bool ok = false;
  std::vector<Wide> translations;
  Wide message;
  Wide code;
};

Outcome Check(TranslateConfig& config, const std::vector<Wide>& sources,
              std::vector<Wide> translations) {
  Outcome outcome;
  outcome.translations = std::move(translations);
  outcome.ok =
      CheckPlaceholders(config, sources, outcome.translations, outcome.message, outcome.code);
  return outcome;
}

TEST(CheckPlaceholders, TextsWithoutPlaceholdersMayGainSome) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  EXPECT_TRUE(Check(config, {u"plain"}, {u"[[QM_A_1]]"}).ok);
  EXPECT_TRUE(page.requests.empty());
}

TEST(CheckPlaceholders, OnlyTheNumberIsCompared) {
  TranslateConfig config;
  ScriptedPage page(config, Echo);
  EXPECT_TRUE(Check(config, {kSource}, {u"[[QM_OTHER_9]]"}).ok);
  EXPECT_TRUE(page.requests.empty());
}

TEST(CheckPlaceholders, ALostPlaceholderIsRepairedByOneAttemptOfThatTextAlone) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Translated({kKept}); });
  const Outcome outcome = Check(config, {u"plain", kSource}, {u"llano", kLost});
  EXPECT_TRUE(outcome.ok);
  EXPECT_EQ(outcome.translations, (std::vector<Wide>{u"llano", kKept}));
  ASSERT_EQ(page.requests.size(), 1u);
  EXPECT_EQ(page.requests[0].texts, (std::vector<Wide>{kSource}));
  EXPECT_TRUE(page.requests[0].unitIds.empty());
}

TEST(CheckPlaceholders, AGainedPlaceholderIsRepairedToo) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Translated({kKept}); });
  EXPECT_EQ(Check(config, {kSource}, {kKept + kKept}).translations, (std::vector<Wide>{kKept}));
}

TEST(CheckPlaceholders, ARepairThatIsStillWrongFails) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Translated({kLost}); });
  const Outcome outcome = Check(config, {kSource}, {kLost});
  EXPECT_FALSE(outcome.ok);
  EXPECT_EQ(outcome.message, u"Translation altered locked placeholders (cross-ref/formula)");
  EXPECT_EQ(outcome.code, u"");
  EXPECT_EQ(page.requests.size(), 1u);
}

TEST(CheckPlaceholders, AFailedRepairKeepsItsOwnMessageAndCode) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Refused(u"x", u"m"); });
  const Outcome outcome = Check(config, {kSource}, {kLost});
  EXPECT_FALSE(outcome.ok);
  EXPECT_EQ(outcome.message, u"m");
  EXPECT_EQ(outcome.code, u"x");
}

TEST(CheckPlaceholders, AFailedRepairWithoutMessageIsNamed) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest&) { return Refused(u"x", u""); });
  const Outcome outcome = Check(config, {kSource}, {kLost});
  EXPECT_EQ(outcome.message, u"Placeholder repair failed");
  EXPECT_EQ(outcome.code, u"x");
}

TEST(CheckPlaceholders, ACancelEndsIt) {
  TranslateConfig config;
  config.cancelled = 1;
  const Outcome outcome = Check(config, {u"plain"}, {u"llano"});
  EXPECT_FALSE(outcome.ok);
  EXPECT_EQ(outcome.message, u"Cancelled");
  EXPECT_EQ(outcome.code, u"cancelled");
}

TEST(CheckPlaceholders, APauseHoldsItUntilItIsLiftedOrTheRunCancelled) {
  for (const bool cancel : {false, true}) {
    TranslateConfig config;
    config.paused = 1;
    auto check =
        std::async(std::launch::async, [&] { return Check(config, {u"plain"}, {u"llano"}); });
    EXPECT_EQ(check.wait_for(std::chrono::milliseconds(120)), std::future_status::timeout);
    if (cancel) {
      config.cancelled = 1;
    } else {
      config.paused = 0;
    }
    const Outcome outcome = check.get();
    EXPECT_EQ(outcome.ok, !cancel);
    EXPECT_EQ(outcome.code, cancel ? u"cancelled" : u"");
  }
}

TEST(TranslateTexts, AFailedPlaceholderCheckIsNeitherRetriedNorSplit) {
  TranslateConfig config;
  ScriptedPage page(config, [](const TranslateBatchRequest& request) {
    return Translated(std::vector<Wide>(request.texts.size(), kLost));
  });
  std::vector<Wide> translations;
  Wide message;
  Wide code;
  EXPECT_FALSE(TranslateTexts(config, std::vector<Wide>{u"plain", kSource}, translations, message,
                              code, nullptr));
  EXPECT_EQ(message, u"Translation altered locked placeholders (cross-ref/formula)");
  // The batch and the one repair.
  EXPECT_EQ(page.Sizes(), (std::vector<std::size_t>{2, 1}));
}

TEST(CheckPlaceholders, APauseHoldsIt) {
  TranslateConfig config;
  config.paused = 1;
  auto call = std::async(std::launch::async, [&] { return Check(config, {u"plain"}, {u"llano"}); });
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(150)), std::future_status::timeout);
  config.paused = 0;
  EXPECT_TRUE(call.get().ok);
}

}  // namespace

}  // namespace quillmarch::addin
