#include "translate/ResponseChecks.h"

#include <gtest/gtest.h>

namespace quillmarch::addin {

namespace {

const std::vector<Wide> kTwoTexts = {u"one", u"two"};

void ExpectFailure(const TranslateBatchResult& result, WideView code, WideView message) {
  EXPECT_FALSE(result.ok);
  EXPECT_TRUE(result.translations.empty());
  EXPECT_EQ(result.code, code);
  EXPECT_EQ(result.message, message);
}

TEST(ReadTranslateResponse, TakesAsManyTranslationsAsTexts) {
  const TranslateBatchResult result =
      ReadTranslateResponse(200, u"{\"translations\":[\"uno\",\"dos\"]}", u"", kTwoTexts);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.translations, (std::vector<Wide>{u"uno", u"dos"}));
  EXPECT_TRUE(result.unitIds.empty());
  EXPECT_EQ(result.code, u"");
  EXPECT_EQ(result.message, u"");
}

TEST(ReadTranslateResponse, AGoodArrayCountsWhateverTheStatus) {
  for (const std::uint32_t status : {0u, 401u, 402u, 500u}) {
    EXPECT_TRUE(ReadTranslateResponse(status, u"{\"translations\":[\"uno\",\"dos\"]}",
                                      u"HTTP request failed", kTwoTexts)
                    .ok);
  }
}

TEST(ReadTranslateResponse, KeepsTheEchoOfUnitIdsOnlyWhenItsLengthFits) {
  EXPECT_EQ(ReadTranslateResponse(
                200, u"{\"translations\":[\"a\",\"b\"],\"unitIds\":[\"x\",\"y\"]}", u"", kTwoTexts)
                .unitIds,
            (std::vector<Wide>{u"x", u"y"}));
  EXPECT_TRUE(ReadTranslateResponse(200, u"{\"translations\":[\"a\",\"b\"],\"unitIds\":[\"x\"]}",
                                    u"", kTwoTexts)
                  .unitIds.empty());
}

TEST(ReadTranslateResponse, AnEmptyBodyWith401AsksToSignInAgain) {
  ExpectFailure(ReadTranslateResponse(401, u"", u"HTTP request failed", kTwoTexts), u"unauthorized",
                u"登录已失效，请重新登录");
}

TEST(ReadTranslateResponse, AnEmptyBodyWith402SaysThatTheCreditsAreGone) {
  const TranslateBatchResult result =
      ReadTranslateResponse(402, u"", u"HTTP request failed", kTwoTexts);
  EXPECT_EQ(result.code, u"insufficient_credits");
  EXPECT_EQ(result.message.size(), 21u);
  EXPECT_EQ(result.message.substr(0, 4), u"积分不足");
  EXPECT_EQ(result.message[4], 0x00EF);
  EXPECT_EQ(result.message[5], 0x00BC);
  EXPECT_EQ(result.message[6], 0x008C);
  EXPECT_EQ(result.message.substr(7), u"请充值或升级套餐后继续翻译。");
}

TEST(ReadTranslateResponse, AnEmptyBodyOfAnyOtherStatusIsANetworkError) {
  for (const std::uint32_t status : {0u, 200u, 500u}) {
    ExpectFailure(ReadTranslateResponse(status, u"", u"WinHttpConnect failed", kTwoTexts),
                  u"network_error", u"WinHttpConnect failed");
  }
  ExpectFailure(ReadTranslateResponse(0, u"", u"", kTwoTexts), u"network_error",
                u"HTTP request failed");
}

TEST(ReadTranslateResponse, AnEmptyObjectIsAnEmptyResponseWithoutCode) {
  ExpectFailure(ReadTranslateResponse(200, u"{}", u"", kTwoTexts), u"",
                u"Empty translation response");
}

TEST(ReadTranslateResponse, TakesCodeAndMessageOfAnErrorBody) {
  ExpectFailure(ReadTranslateResponse(
                    500, u"{\"code\":\"engine_failed\",\"message\":\"No engine\"}", u"", kTwoTexts),
                u"engine_failed", u"No engine");
}

TEST(ReadTranslateResponse, AnErrorTextServesAsCodeAndAsMessage) {
  ExpectFailure(ReadTranslateResponse(500, u"{\"error\":\"broken\"}", u"", kTwoTexts), u"broken",
                u"broken");
}

TEST(ReadTranslateResponse, AnErrorTextIsTheCodeBesideAMessageOfItsOwn) {
  ExpectFailure(
      ReadTranslateResponse(500, u"{\"error\":\"broken\",\"message\":\"Sorry\"}", u"", kTwoTexts),
      u"broken", u"Sorry");
}

TEST(ReadTranslateResponse, TheStatusGivesTheCodeOfABodyWithoutOne) {
  ExpectFailure(ReadTranslateResponse(401, u"{\"message\":\"Who?\"}", u"", kTwoTexts),
                u"unauthorized", u"Who?");
  ExpectFailure(ReadTranslateResponse(402, u"{\"message\":\"Pay\"}", u"", kTwoTexts),
                u"insufficient_credits", u"Pay");
  ExpectFailure(ReadTranslateResponse(500, u"{\"message\":\"Oh\"}", u"", kTwoTexts), u"", u"Oh");
}

TEST(ReadTranslateResponse, TheBodysCodeGoesBeforeTheStatus) {
  ExpectFailure(
      ReadTranslateResponse(401, u"{\"code\":\"expired\",\"message\":\"Who?\"}", u"", kTwoTexts),
      u"expired", u"Who?");
}

TEST(ReadTranslateResponse, CreditsGoneInTheTextAloneAreRecognised) {
  ExpectFailure(
      ReadTranslateResponse(200, u"{\"message\":\"x insufficient_credits y\"}", u"", kTwoTexts),
      u"insufficient_credits", u"x insufficient_credits y");
  ExpectFailure(ReadTranslateResponse(200, u"{\"message\":\"您的积分不足了\"}", u"", kTwoTexts),
                u"insufficient_credits", u"您的积分不足了");
  // Status 401 has already given the code.
  EXPECT_EQ(ReadTranslateResponse(401, u"{\"message\":\"积分不足\"}", u"", kTwoTexts).code,
            u"unauthorized");
}

TEST(ReadTranslateResponse, TooFewAndTooManyTranslationsAreACountMismatch) {
  for (const WideView body : {WideView(u"{\"translations\":[\"a\"]}"),
                              WideView(u"{\"translations\":[\"a\",\"b\",\"c\"]}")}) {
    ExpectFailure(ReadTranslateResponse(200, body, u"", kTwoTexts), u"",
                  u"Translation count mismatch");
  }
}

// The array reader runs on past an empty array, so the code that follows is not looked at.
TEST(ReadTranslateResponse, AnEmptyArrayBeforeACodeIsACountMismatch) {
  ExpectFailure(ReadTranslateResponse(402, u"{\"translations\":[],\"code\":\"x\"}", u"", {u"one"}),
                u"", u"Translation count mismatch");
}

TEST(ReadTranslateResponse, PageOfAnotherServerIsAnEmptyResponse) {
  ExpectFailure(ReadTranslateResponse(502, u"<html>Bad Gateway</html>", u"", kTwoTexts), u"",
                u"Empty translation response");
}

TEST(ReadErrorMessage, PrefersTheMessageAndFallsBackToTheError) {
  EXPECT_EQ(ReadErrorMessage(u"{\"error\":\"e\",\"message\":\"m\"}"), u"m");
  EXPECT_EQ(ReadErrorMessage(u"{\"error\":\"e\",\"message\":\"\"}"), u"e");
  EXPECT_EQ(ReadErrorMessage(u"{\"error\":\"e\"}"), u"e");
  EXPECT_EQ(ReadErrorMessage(u"{}"), u"");
}

struct PlaceholderCase {
  const char16_t* text;
  std::int32_t count;
};

class CountPlaceholdersIn : public testing::TestWithParam<PlaceholderCase> {};

TEST_P(CountPlaceholdersIn, Text) {
  EXPECT_EQ(CountPlaceholders(GetParam().text), GetParam().count) << ToUtf8(GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    WholePlaceholders, CountPlaceholdersIn,
    testing::Values(PlaceholderCase{u"[[QM_REF_12]]", 1}, PlaceholderCase{u"[[qm_ref_1]]", 1},
                    PlaceholderCase{u"[[qM_1_1]]", 1}, PlaceholderCase{u"[[QM__1]]", 1},
                    PlaceholderCase{u"at the end [[QM_A_1]]", 1},
                    PlaceholderCase{u"[[QM_A_1]][[QM_B_2]]", 2},
                    PlaceholderCase{u"[[QM_A_1]] and [[QM_A_1]].", 2},
                    PlaceholderCase{u"[[[QM_A_1]]]", 1}, PlaceholderCase{u"[[QM_[[QM_A_1]]", 1},
                    PlaceholderCase{u"[[QM_公式_3]]", 1},
                    PlaceholderCase{u"[[QM_A_00000000000000000001]]", 1}));

INSTANTIATE_TEST_SUITE_P(
    BrokenPlaceholders, CountPlaceholdersIn,
    testing::Values(PlaceholderCase{u"", 0}, PlaceholderCase{u"[[QM_]]", 0},
                    PlaceholderCase{u"[[QM_A_]]", 0}, PlaceholderCase{u"[[QM_A1]]", 0},
                    PlaceholderCase{u"[QM_A_1]", 0}, PlaceholderCase{u"[[QM_A_1]", 0},
                    PlaceholderCase{u"[[QM_A_1] ]", 0}, PlaceholderCase{u"[[QM_A_1", 0},
                    PlaceholderCase{u"[[QM_A_", 0}, PlaceholderCase{u"[[QM_ABC", 0},
                    PlaceholderCase{u"[[XM_A_1]]", 0}, PlaceholderCase{u"[[QMA_1]]", 0},
                    PlaceholderCase{u"[[QM_A B_1]]", 0}, PlaceholderCase{u"[[QM_A-B_1]]", 0},
                    PlaceholderCase{u"[[QM_A_B_1]]", 0}, PlaceholderCase{u"[[QM_A_1x]]", 0},
                    PlaceholderCase{u"[[QM_A_\u0663]]", 0}));

TEST(CountPlaceholders, ALongTextOfBeginningsHasNone) {
  Wide text;
  for (int i = 0; i < 20'000; ++i) text += u"[[QM_";
  EXPECT_EQ(CountPlaceholders(text), 0);
}

}  // namespace

}  // namespace quillmarch::addin
