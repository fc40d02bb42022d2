#include <gtest/gtest.h>

#include <new>

#include "foundation/automation/HostMembers.h"
#include "pane/PaneHarness.h"
#include "pane/PanelDispatch.h"
#include "pane/RunEvents.h"
#include "run/document/StaGate.h"
#include "support/LogCapture.h"
#include "support/ScriptedObject.h"

namespace quillmarch::addin {

namespace {

using test::LogCapture;
using test::PaneHarness;
using Texts = std::vector<std::string>;

TEST(OnWebMessage, WithoutAnActionNothingHappensAndNothingIsLogged) {
  PaneHarness h;
  LogCapture log;
  for (const char* text : {"", "{}", "null", R"({"action":""})", R"({"act)", R"({"Action":"x"})"}) {
    h.Say(text);
  }
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(h.page->calls.empty());
}

TEST(OnWebMessage, AnUnknownActionIsLoggedAndNotAnswered) {
  PaneHarness h;
  LogCapture log;
  h.Say(R"({"action":"Start"})");
  h.Say(R"({"action":"sessionQuery"})");
  EXPECT_EQ(log.lines(), Texts{"PptPane unknown action: Start"});
  EXPECT_TRUE(h.page->calls.empty());
  EXPECT_FALSE(h.pane->run().runActive());
}

TEST(OnWebMessage, AStartIsOnlyPostedByTheHandler) {
  PaneHarness h;
  LogCapture log;
  h.AddSlide(u"hello");
  OnWebMessage(*h.pane, u"{\"action\":\"restart\",\"panelMode\":\"slide\"}");
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_EQ(log.lines(), Texts{"PptPane start action=restart panelMode=slide"});
  h.RunPosts();
  EXPECT_TRUE(h.pane->run().runActive());
  h.Finish();
}

TEST(OnWebMessage, ATraceGoesToTheLog) {
  PaneHarness h;
  LogCapture log;
  h.Say(R"({"action":"trace","phase":"loaded \"x\""})");
  EXPECT_EQ(log.lines(), Texts{"[panel] loaded \"x\""});
}

TEST(OnWebMessage, TheTokenIsKeptForThisPaneAndForLaterOnes) {
  PaneHarness h;
  h.Say(R"({"action":"requestAccessToken"})");
  EXPECT_TRUE(h.page->calls.empty());
  h.Say(R"({"action":"setAccessToken","accessToken":"a\"b"})");
  EXPECT_EQ(ProcessAccessToken(), u"a\"b");
  h.Say(R"({"action":"requestAccessToken"})");
  EXPECT_EQ(h.page->Messages(), Texts{R"({"action":"accessToken","accessToken":"a\"b"})"});
  PaneHarness later(h, {});
  EXPECT_EQ(later.pane->session().accessToken(), u"a\"b");
  h.Say(R"({"action":"clearAccessToken"})");
  EXPECT_TRUE(h.pane->session().accessToken().empty());
  EXPECT_TRUE(ProcessAccessToken().empty());
  h.Say(R"({"action":"setAccessToken","accessToken":"x"})");
  h.Say(R"({"action":"setAccessToken","accessToken":""})");
  EXPECT_TRUE(h.pane->session().accessToken().empty());
  EXPECT_TRUE(ProcessAccessToken().empty());
}

TEST(OnWebMessage, AStyleTouchesOnlyTheKeysThatItNames) {
  PaneHarness h;
  h.Say(R"({"action":"setTargetStyle","targetFont":"Arial","targetFontSize":12.5,)"
        R"("targetFontColor":"#0102fF","targetFontBold":1})");
  EXPECT_EQ(h.pane->session().targetStyle().font, u"Arial");
  EXPECT_EQ(h.pane->session().targetStyle().size, 12.5);
  EXPECT_EQ(h.pane->session().targetStyle().color, 0x01 + 0x02 * 256 + 0xFF * 65536);
  EXPECT_EQ(h.pane->session().targetStyle().bold, 1);
  h.Say(R"({"action":"setTargetStyle","targetFontBold":2})");
  EXPECT_EQ(h.pane->session().targetStyle().bold, -1);
  h.Say(R"({"action":"setTargetStyle","targetFontColor":"#12345"})");
  EXPECT_EQ(h.pane->session().targetStyle().color, -1);
  EXPECT_EQ(h.pane->session().targetStyle().font, u"Arial");
  EXPECT_EQ(h.pane->session().targetStyle().size, 12.5);
}

TEST(OnWebMessage, FontsAreListedAsTheDesktopListsThemWithoutVerticalOnes) {
  PaneHarness h;
  h.fonts.names = {u"Zed", u"", u"@Mincho", u"Arial", u"Zed", u"a\"b"};
  h.Say(R"({"action":"getFontList"})");
  h.fonts.names.clear();
  h.Say(R"({"action":"getFontList"})");
  EXPECT_EQ(h.page->Messages(),
            (Texts{R"({"action":"fontList","fonts":["Zed","Arial","Zed","a\"b"]})",
                   R"({"action":"fontList","fonts":[]})"}));
}

TEST(OnWebMessage, ThePreviewOfNoSelectionIsEmpty) {
  PaneHarness h;
  h.AddSlide(u"hello");
  h.Say(R"({"action":"requestSelectionPreview"})");
  EXPECT_EQ(h.page->Scripts(), Texts{"if(window.onSelectionPreview)onSelectionPreview("
                                     "{fragments:0,chars:0,pptEmpty:true})"});
}

// A window of which memory runs out as it is asked for its identity.
class WindowWithoutMemory final : public AutomationObject {
 public:
  void AddRef() override {}
  void Release() override {}
  ResultCode IdOfName(WideView, DispId&) override { return kUnknownName; }
  ResultCode Invoke(DispId, std::uint16_t, const ParamBlock&, Variant*) override { return kFail; }
  ResultCode QueryTyped(const InterfaceId&, ObjectRef& out) override {
    out = ObjectRef(this);
    return kOk;
  }
  std::uintptr_t Identity() override { throw std::bad_alloc(); }
};

TEST(OnWebMessage, APreviewThatFailsInTheMidstTellsThePageSo) {
  WindowWithoutMemory window;
  PaneHarness h;
  test::ScriptedObject* application = nullptr;
  h.RemakePane([&](HandOver& block, PaneSurroundings&) {
    block.app = test::ScriptedObject::Make(application);
  });
  application->Interface(ppt::kApplication);
  application->Value(u"ActiveWindow", ppt::application::kActiveWindow.id,
                     Variant::Object(ObjectRef(&window)));
  h.Say(R"({"action":"requestSelectionPreview"})");
  EXPECT_EQ(h.page->Scripts(), Texts{"if(window.onSelectionPreview)onSelectionPreview("
                                     "{error:\"无法读取选区\",pptEmpty:true})"});
}

TEST(OnWebMessage, NoPreviewIsPushedDuringARunOrAMutationOrWithoutAPage) {
  PaneHarness h;
  h.AddSlide(u"hello");
  {
    const int owner = 0;
    h.thread.Advance(1000);
    const GateHold gate(&owner, h.thread);
    ASSERT_TRUE(gate.held());
    h.Say(R"({"action":"requestSelectionPreview"})");
  }
  h.pageAnswers = false;
  h.Start();
  ASSERT_TRUE(h.WaitForRequests(1));
  h.Say(R"({"action":"requestSelectionPreview"})");
  PushSelectionPreview(*h.pane);
  for (const std::string& script : h.page->Scripts()) {
    EXPECT_EQ(script.find("Preview"), std::string::npos);
  }
  h.Say(R"({"action":"cancel"})");
  h.Finish();
  h.pane->browser().CloseWebView();
  PushSelectionPreview(*h.pane);
}

TEST(OnWebMessage, TheTerminologyPagesQuestionsAreKnownAndUnanswered) {
  PaneHarness h;
  LogCapture log;
  for (const char* action : {"docKeyGet", "exportLocalSnapshot", "clientInfoGet", "uiLangGet"}) {
    h.Say(std::string(R"({"action":")") + action + R"(","requestId":"1"})");
  }
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(h.page->calls.empty());
}

TEST(OnWebMessage, ActionsInTheWrongStateDoNothing) {
  PaneHarness h;
  LogCapture log;
  for (const char* action :
       {"cancel", "pause", "resume", "translateBatchResult", "terminologyResolveResult"}) {
    h.Say(std::string(R"({"action":")") + action + R"("})");
  }
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(h.page->calls.empty());
  EXPECT_FALSE(h.pane->run().runActive());
}

TEST(OnWebMessage, BrokenMessagesDoNoHarm) {
  PaneHarness h;
  const Wide megabyte(1 << 20, u'x');
  const std::vector<Wide> texts = {
      u"{\"action\":\"setAccessToken\",\"accessToken\":\"unclosed",
      u"{\"action\":\"setTargetStyle\",\"targetFont\":1,\"targetFontSize\":\"x\","
      u"\"targetFontColor\":null,\"targetFontBold\":{}}",
      u"{\"action\":\"translateBatchResult\",\"requestId\":{\"a\":[]},\"ok\":3}",
      u"{\"action\":\"trace\",\"phase\":\"" + megabyte + u"\"}",
      u"{\"action\":\"trace\",\"phase\":\"\\ud800 \\udc00\\",
      Wide(u"{\"action\":\"trace\",\"phase\":\"") + char16_t(0xD800) + u"\"}",
      u"{\"action\":\"nested \\\"quotes\\\" \\\\\"}",
      u"{\"action\":true,\"x\":\"start\"}",
      u"\"action\":",
      u"{\"action\":\"" + megabyte,
  };
  for (const Wide& text : texts) h.SayWide(text);
  EXPECT_EQ(h.pane->session().accessToken(), u"unclosed");
  EXPECT_FALSE(h.pane->run().runActive());
  EXPECT_TRUE(h.page->calls.empty());
}

TEST(FillRunSink, EachEventBecomesOneCallOfAPageFunction) {
  PaneHarness h;
  RunSink sink;
  FillRunSink(*h.pane, 9007199254740993U, sink);
  sink.onRunStarted();
  sink.onScanProgress(1, 2, u"slides");
  sink.onReady(-1, 0);
  sink.onProgress(3, 4, true, u"a\"\n", u"\\\t\x01");
  sink.onComplete(-5, 0, true);
  sink.onError(u"c\"", u"m\r");
  sink.onCancelled();
  EXPECT_TRUE(h.page->calls.empty());  // never inside the call that raised them
  h.RunPosts();
  EXPECT_EQ(
      h.page->Scripts(),
      (Texts{
          R"(window.onRunStarted&&window.onRunStarted({"runId":9007199254740993}))",
          R"(window.onScanProgress&&window.onScanProgress({"runId":9007199254740993,"current":1,"total":2,"phase":"slides"}))",
          R"(window.onReady&&window.onReady({"runId":9007199254740993,"total":-1,"translatable":0}))",
          R"(window.onProgress&&window.onProgress({"runId":9007199254740993,"wordIndex":3,"total":4,"skipped":true,"original":"a\"\n","translated":"\\\t\u0001"}))",
          R"(window.onComplete&&window.onComplete({"runId":9007199254740993,"elapsed":-5,"total":0,"bilingualCopy":true}))",
          R"(window.onError&&window.onError({"runId":9007199254740993,"code":"c\"","message":"m\r"}))",
          R"(window.onCancelled&&window.onCancelled({"runId":9007199254740993}))"}));
}

TEST(FillRunSink, SurrogatesGoThroughAsTheyStand) {
  PaneHarness h;
  RunSink sink;
  FillRunSink(*h.pane, 1, sink);
  const Wide lone = {u'a', char16_t(0xD83D)};
  sink.onError(lone, u"\U0001F600");
  h.RunPosts();
  ASSERT_EQ(h.page->calls.size(), 1U);
  EXPECT_NE(h.page->calls[0].text.find(lone), Wide::npos);
  EXPECT_NE(h.page->calls[0].text.find(u"\U0001F600"), Wide::npos);
}

TEST(FillRunSink, AnEventWithoutAPageOrAfterThePaneIsLost) {
  PaneHarness h;
  RunSink sink;
  FillRunSink(*h.pane, 1, sink);
  h.pane->browser().CloseWebView();
  sink.onRunStarted();
  h.RunPosts();
  h.pane->OnDestroy();
  h.pane.reset();
  sink.onCancelled();
  h.RunPosts();
  EXPECT_TRUE(h.page->calls.empty());
}

}  // namespace

}  // namespace quillmarch::addin
