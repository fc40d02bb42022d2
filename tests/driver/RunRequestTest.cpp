#include "host/driver/RunRequest.h"

#include <gtest/gtest.h>

#include "foundation/text/JsonText.h"

namespace quillmarch::host {

using namespace addin;

namespace {

std::string Said(const RunRequest& request) {
  return ToUtf8(StartMessage(request));
}

TEST(StartMessage, NamesTheScopeByActionAndPanelMode) {
  EXPECT_EQ(Said({}),
            R"({"action":"start","panelMode":"full","targetFont":"","transport":"native"})");
  EXPECT_EQ(Said({.scope = Scope::kCurrentSlide}),
            R"({"action":"start","panelMode":"slide","targetFont":"","transport":"native"})");
  EXPECT_EQ(
      Said({.scope = Scope::kSelection}),
      R"({"action":"startSelection","panelMode":"selection","targetFont":"","transport":"native"})");
}

TEST(StartMessage, LeavesOutWhatTheRunHasItsOwnDefaultFor) {
  EXPECT_EQ(Said({.targetLang = u"es",
                  .sourceLang = u"en",
                  .targetFont = u"Arial",
                  .accessToken = u"t",
                  .viaPage = true}),
            R"({"action":"start","panelMode":"full","targetLang":"es","sourceLang":"en",)"
            R"("targetFont":"Arial","accessToken":"t","nativeTranslateViaJs":true})");
}

TEST(StartMessage, AnyTextComesBackAsItWas) {
  const Wide odd = u"\"transport\":\"native\" \\ \n\t\x01 \U0001F600" + Wide(1, char16_t(0xD800));
  const Wide message = StartMessage({.targetLang = odd, .accessToken = odd, .viaPage = true});
  EXPECT_EQ(JsonGetString(message, u"targetLang"), odd);
  EXPECT_EQ(JsonGetString(message, u"accessToken"), odd);
  EXPECT_FALSE(JsonHasKey(message, u"transport"));
}

}  // namespace

}  // namespace quillmarch::host
