// The browser's failures at each stage, and what comes from it late.
#include "foundation/settings/DisplayLanguage.h"
#include "windows/host/Fixture.h"

namespace quillmarch::addin {

using standin::Stage;
using winhost::Browser;
using winhost::Logged;
using winhost::ModuleTest;
using winhost::PumpFor;
using winhost::PumpUntil;

namespace {

class BrowserTest : public ModuleTest {
 protected:
  void Open() {
    application = OpenSample();
    ASSERT_EQ(S_OK, host.Start(application.get()));
    ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  }
  void FailAt(Stage stage, HRESULT code, bool nothing = false) {
    Browser().Fail(stage, code);
    Browser().GiveNothing(stage, nothing);
    Open();
    PumpFor(150);
    host.Stop();
    Browser().Fail(stage, S_OK);
    Browser().GiveNothing(stage, false);
  }
  bool WaitForHeld() {
    return PumpUntil([] { return Browser().Held() > 0; }, 20000);
  }

  ComPtr<IDispatch> application;
};

class NoBrowserTest : public BrowserTest {};

std::wstring ClipboardText() {
  std::wstring text;
  if (OpenClipboard(nullptr) == FALSE) return text;
  const HANDLE block = GetClipboardData(CF_UNICODETEXT);
  if (block != nullptr) {
    const SIZE_T bytes = GlobalSize(block);
    text.assign(static_cast<const wchar_t*>(GlobalLock(block)), bytes / sizeof(wchar_t));
    GlobalUnlock(block);
  }
  CloseClipboard();
  return text;
}

}  // namespace

TEST_F(BrowserTest, EachStageMayFailAndOnlyTheFirstFailureOfTheProcessIsShown) {
  FailAt(Stage::kCreate, E_ACCESSDENIED);
  EXPECT_TRUE(Logged("PptPane WebView2 create failed hr=0x80070005"));
  ASSERT_EQ(1U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[0].text), Text(u"msg.webview2.body"));
  EXPECT_EQ(FromWinText(boxes.seen()[0].title), Text(u"msg.title"));
  // Twelve characters and the terminator.
  EXPECT_EQ(std::wstring(L"Quillmarch-1\0", 13), ClipboardText());

  FailAt(Stage::kEnvironment, static_cast<HRESULT>(0x8007139F));
  EXPECT_TRUE(Logged("PptPane WebView2 environment failed hr=0x8007139F"));
  FailAt(Stage::kEnvironment, S_OK, true);
  EXPECT_TRUE(Logged("PptPane WebView2 environment failed hr=0x00000000"));
  FailAt(Stage::kController, E_ABORT);
  EXPECT_TRUE(Logged("PptPane WebView2 controller failed hr=0x80004004"));
  FailAt(Stage::kController, S_OK, true);
  EXPECT_TRUE(Logged("PptPane WebView2 controller failed hr=0x00000000"));
  FailAt(Stage::kView, E_FAIL);
  EXPECT_TRUE(Logged("PptPane WebView2 core failed hr=0x80004005"));
  FailAt(Stage::kView, S_OK, true);
  EXPECT_EQ(1U, boxes.seen().size());
}

// Run with a module that lies alone in its folder.
TEST_F(NoBrowserTest, AMissingLoaderLibraryIsToldToTheUser) {
  Open();
  ASSERT_EQ(1U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[0].text), Text(u"msg.webview2.body"));
  EXPECT_TRUE(Logged("PptPane WebView2 create failed hr=0x80070002"));
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  EXPECT_EQ(1U, boxes.seen().size());
}

TEST_F(BrowserTest, ABrowserWithoutSettingsIsAsGoodAsAnyOther) {
  Browser().Fail(Stage::kSettings, E_NOTIMPL);
  Open();
  EXPECT_TRUE(PumpUntil([this] { return !pages.empty() && !page().navigations.empty(); }, 20000));
}

TEST_F(BrowserTest, AnEnvironmentThatComesAfterTheShutdownIsLetGoOf) {
  Browser().Hold(Stage::kEnvironment, true);
  Open();
  ASSERT_TRUE(WaitForHeld());
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  Browser().Deliver();
  PumpFor(50);
  EXPECT_TRUE(pages.empty());
  EXPECT_EQ("completed 0x00000000 answer 0x00000000", Browser().Calls().back());
}

TEST_F(BrowserTest, AControllerThatComesAfterTheShutdownIsClosed) {
  Browser().Hold(Stage::kController, true);
  Open();
  ASSERT_TRUE(WaitForHeld());
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  Browser().Deliver();
  ASSERT_EQ(1U, pages.size());
  EXPECT_TRUE(page().closed);
  EXPECT_TRUE(page().navigations.empty());
}

TEST_F(BrowserTest, AControllerThatComesWhenThePaneIsGoneIsClosed) {
  Browser().Hold(Stage::kController, true);
  Open();
  ASSERT_TRUE(WaitForHeld());
  host.Stop();
  Browser().Deliver();
  ASSERT_EQ(1U, pages.size());
  EXPECT_TRUE(page().closed);
}

TEST_F(BrowserTest, AnEnvironmentThatComesWhenThePaneIsGoneIsLetGoOf) {
  Browser().Hold(Stage::kEnvironment, true);
  Open();
  ASSERT_TRUE(WaitForHeld());
  host.Stop();
  Browser().Deliver();
  PumpFor(50);
  EXPECT_TRUE(pages.empty());
}

TEST_F(BrowserTest, APageThatFailsToLoadIsNotTriedAgain) {
  Open();
  ASSERT_TRUE(PumpUntil([this] { return !pages.empty() && !page().navigations.empty(); }, 20000));
  page().Load(false);
  EXPECT_TRUE(Logged("CPptPane nav completed failed (no retry)"));
  EXPECT_EQ(1U, page().navigations.size());
}

TEST_F(BrowserTest, MessagesOfThePageAreAnsweredToIt) {
  Open();
  ASSERT_TRUE(PumpUntil([this] { return !pages.empty() && !page().navigations.empty(); }, 20000));
  page().Say(L"{\"action\":\"setAccessToken\",\"accessToken\":\"tok\"}");
  page().Say(L"{\"action\":\"requestAccessToken\"}");
  ASSERT_EQ(1U, page().Messages(u"accessToken").size());
  EXPECT_EQ(u"tok", JsonGetString(page().Messages(u"accessToken")[0], u"accessToken"));
  page().Say(L"{\"action\":\"getFontList\"}");
  EXPECT_EQ(1U, page().Messages(u"fontList").size());
  page().Say(L"{\"action\":\"clearAccessToken\"}");
  page().Say(L"\"a text and no object\"");
  page().Say(L"");
}

}  // namespace quillmarch::addin
