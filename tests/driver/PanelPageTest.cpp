#include "host/driver/PanelPage.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillmarch::host {

namespace {

TEST(PanelPage, HearsTheFunctionsThatThePaneCallsAndNoOtherScript) {
  std::vector<std::string> heard;
  PanelPage page(
      [&](const PageCall& call) { heard.push_back(ToUtf8(call.name) + ToUtf8(call.payload)); });
  page.ExecuteScript(u"window.onReady&&window.onReady({\"runId\":7,\"total\":2})");
  page.ExecuteScript(u"window.onError&&window.onError({\"message\":\"a)&&window.(b\"})");
  for (const char16_t* other :
       {u"", u"window.", u"window.onReady", u"window.onReady&&window.onOther({})",
        u"window.onReady&&window.onReady(", u"window.onReady&&window.onReady",
        u"if(window.onSelectionPreview)onSelectionPreview({fragments:0})"}) {
    page.ExecuteScript(other);
  }
  EXPECT_EQ(heard, (std::vector<std::string>{R"(onReady{"runId":7,"total":2})",
                                             R"(onError{"message":"a)&&window.(b"})"}));
}

TEST(NumberIn, ReadsAFieldInFrontOfTheTexts) {
  const PageCall call{u"onProgress",
                      u"{\"runId\":1,\"wordIndex\":12,\"total\":-3,\"original\":\"\\\"x\\\":5\"}"};
  EXPECT_EQ(NumberIn(call, u"wordIndex"), 12);
  EXPECT_EQ(NumberIn(call, u"total"), -3);
  EXPECT_EQ(NumberIn(call, u"translatable"), 0);
}

}  // namespace

}  // namespace quillmarch::host
