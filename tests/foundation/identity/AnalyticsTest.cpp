#include "foundation/identity/Analytics.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "foundation/identity/ClientIdentity.h"

namespace quillmarch::addin {

namespace {

// Keeps the beacons that would have been sent, and puts the process back where it was.
class Analytics : public testing::Test {
 protected:
  Analytics() {
    ForgetWebViewInitError();
    SetBeaconSender([this](AnalyticsBeacon beacon) { beacons_.push_back(std::move(beacon)); });
  }
  ~Analytics() override {
    SetBeaconSender({});
    ForgetWebViewInitError();
  }

  std::string StageSentFor(const char16_t* stage) {
    ForgetWebViewInitError();
    beacons_.clear();
    SendWebViewInitError(stage, 0x80004005);
    if (beacons_.size() != 1) return "nothing";
    const std::string& body = beacons_[0].body;
    const std::string mark = "\"stage\":\"";
    const std::size_t at = body.find(mark) + mark.size();
    return body.substr(at, body.find('"', at) - at);
  }

  std::vector<AnalyticsBeacon> beacons_;
};

TEST_F(Analytics, APlainEventIsWrittenWithoutBlanksInItsFixedOrder) {
  SendAnalyticsEvent(u"addin:loaded", u"client");
  ASSERT_EQ(beacons_.size(), 1U);
  EXPECT_EQ(beacons_[0].body,
            "{\"events\":[{\"event\":\"addin:loaded\",\"context\":" + ToUtf8(ClientContextJson()) +
                ",\"outcome\":\"ok\",\"props\":{\"source\":\"client\"}}]}");
  EXPECT_EQ(beacons_[0].eventName, u"addin:loaded");
}

TEST_F(Analytics, TheErrorEventNamesFeatureStageAndCode) {
  SendWebViewInitError(u"a Controller", 0x8007000E);
  ASSERT_EQ(beacons_.size(), 1U);
  EXPECT_EQ(beacons_[0].body,
            "{\"events\":[{\"event\":\"plugin:error\",\"context\":" + ToUtf8(ClientContextJson()) +
                ",\"outcome\":\"error\",\"errorCode\":\"webview2_init\",\"props\":{\"feature\":"
                "\"pane\",\"stage\":\"controller\",\"rawErrorCode\":\"0x8007000E\"}}]}");
  EXPECT_EQ(beacons_[0].eventName, u"plugin:error");
}

TEST_F(Analytics, EveryEventGoesToTheBuiltInHost) {
  SendAnalyticsEvent(u"support:entry_click", u"ribbon");
  ASSERT_EQ(beacons_.size(), 1U);
  EXPECT_EQ(beacons_[0].endpoint.host, DefaultEndpoint().host);
  EXPECT_EQ(beacons_[0].endpoint.port, DefaultEndpoint().port);
  EXPECT_TRUE(beacons_[0].endpoint.useHttps);
}

TEST_F(Analytics, AnEventWithoutASourceHasTheSourceUnknown) {
  SendAnalyticsEvent(u"addin:loaded", nullptr);
  ASSERT_EQ(beacons_.size(), 1U);
  EXPECT_THAT(beacons_[0].body, testing::HasSubstr(R"("props":{"source":"unknown"})"));
}

TEST_F(Analytics, AnEventWithoutANameSendsNothing) {
  SendAnalyticsEvent(nullptr, u"client");
  SendAnalyticsEvent(u"", u"client");
  EXPECT_TRUE(beacons_.empty());
}

TEST_F(Analytics, OnlyTheFirstBrowserFailureOfAProcessIsSent) {
  SendWebViewInitError(u"create", 1);
  SendWebViewInitError(u"environment", 2);
  ASSERT_EQ(beacons_.size(), 1U);
  EXPECT_THAT(beacons_[0].body, testing::HasSubstr("0x00000001"));
}

TEST_F(Analytics, PlainEventsAreSentEachTime) {
  for (int i = 0; i < 3; ++i) SendAnalyticsEvent(u"support:entry_click", u"ribbon");
  EXPECT_EQ(beacons_.size(), 3U);
}

TEST_F(Analytics, AStageIsKnownByAWordWithCapitals) {
  EXPECT_EQ(StageSentFor(u"CreateController"), "controller");
  EXPECT_EQ(StageSentFor(u"Environment"), "environment");
  EXPECT_EQ(StageSentFor(u"UserDataFolder"), "user_data_dir");
  EXPECT_EQ(StageSentFor(u"EnvironmentController"), "controller");
  EXPECT_EQ(StageSentFor(u"UserDataEnvironment"), "environment");
}

TEST_F(Analytics, TheStagesOfThePaneAreAllSentAsInit) {
  for (const char16_t* stage : {u"userdata", u"create", u"environment", u"controller", u"core"}) {
    EXPECT_EQ(StageSentFor(stage), "init");
  }
  EXPECT_EQ(StageSentFor(nullptr), "init");
}

}  // namespace

}  // namespace quillmarch::addin
