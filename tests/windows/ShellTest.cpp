// Connection, ribbon and task panes over real COM, with PowerPoint's objects forwarded to the
// headless host.
#include <windows.h>

#include <olectl.h>

#include <algorithm>

#include "foundation/automation/ComObject.h"
#include "foundation/settings/DisplayLanguage.h"
#include "windows/host/Fixture.h"

namespace quillmarch::addin {

using winhost::Activation;
using winhost::Browser;
using winhost::HostTaskPane;
using winhost::Logged;
using winhost::ModuleTest;
using winhost::PumpUntil;

namespace {

constexpr LONG kDefaultWidth = 520;
constexpr LONG kDockRight = 2;

class ShellTest : public ModuleTest {
 protected:
  void Start() {
    application = OpenSample();
    ASSERT_EQ(S_OK, host.Start(application.get()));
  }
  ComPtr<IDispatch> ActiveWindow() {
    return ComPtr<IDispatch>(DispatchOf(Member(application.get(), u"ActiveWindow").get()));
  }
  HostTaskPane& taskPane() { return *host.factory->panes.back().get(); }
  bool WaitForPage() {
    return PumpUntil([this] { return !pages.empty() && !page().navigations.empty(); }, 20000);
  }

  ComPtr<IDispatch> application;
};

}  // namespace

TEST_F(ShellTest, TheHostStartsTheAddinAndReadsItsRibbon) {
  Start();
  EXPECT_EQ(L"OnRibbonLoad", host.onLoad);
  EXPECT_EQ(9U, host.buttons.size());
  EXPECT_EQ(L"TranslateFullDocClicked", host.buttons[L"btnTranslateFullDoc"].onAction);
  EXPECT_EQ(L"Account", host.Label(L"btnAccount"));
  EXPECT_EQ(L"Account and plan", host.Label(L"btnAccount", L"GetScreentip"));
  EXPECT_NE(L"", host.Label(L"btnTranslateFullDoc"));
  EXPECT_EQ(L"btnNobody", host.Label(L"btnNobody"));
  EXPECT_TRUE(Logged("PPT CTPFactoryAvailable"));
  // No pane before a button is pressed.
  EXPECT_TRUE(host.factory->progIds.empty());
}

TEST_F(ShellTest, AButtonOpensThePaneInTheWindowThatItWasPressedIn) {
  Start();
  const ComPtr<IDispatch> window = ActiveWindow();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc", window.get()));
  ASSERT_EQ(1U, host.factory->panes.size());
  EXPECT_EQ(L"Quillmarch.PptPane", host.factory->progIds.at(0));
  EXPECT_EQ(FromWinText(taskPane().title), Text(u"msg.paneTitle"));
  EXPECT_EQ(window.get(), taskPane().window.get());
  EXPECT_EQ(kDockRight, taskPane().dockPosition);
  EXPECT_EQ(kDefaultWidth, taskPane().width);
  EXPECT_TRUE(taskPane().visible);
  EXPECT_EQ((std::vector<std::string>{"CanInPlaceActivate", "OnInPlaceActivate", "GetWindowContext",
                                      "ShowObject"}),
            taskPane().siteCalls);

  const HWND control = taskPane().controlWindow();
  ASSERT_NE(nullptr, control);
  EXPECT_EQ(taskPane().container(), GetParent(control));
  wchar_t name[64] = {};
  GetClassNameW(control, name, 64);
  EXPECT_STREQ(L"QuillmarchPptPaneWnd", name);
  EXPECT_EQ(0x56000000L, GetWindowLongW(control, GWL_STYLE) & 0x56000000L);

  ASSERT_TRUE(WaitForPage());
  const std::wstring& url = page().navigations.at(0);
  EXPECT_EQ(0U, url.find(L"https://localhost:")) << ToUtf8(FromWinText(url));
  EXPECT_NE(std::wstring::npos, url.find(L"/panel/ppt/?_="));
  EXPECT_NE(std::wstring::npos, url.find(L"&host=ppt"));
  EXPECT_NE(std::wstring::npos, url.find(L"&mode=full"));
}

TEST_F(ShellTest, TheBrowserIsMadeInThePublishedOrderWithTheParentsWindow) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  EXPECT_EQ(
      (std::vector<std::string>{
          "CreateCoreWebView2EnvironmentWithOptions", "CreateCoreWebView2Controller window",
          "completed 0x00000000 answer 0x00000000", "put_IsVisible 1", "put_AreDevToolsEnabled 0",
          "put_IsStatusBarEnabled 0", "add_WebMessageReceived", "add_NavigationStarting",
          "add_NavigationCompleted", "completed 0x00000000 answer 0x00000000"}),
      Browser().Calls());
  const std::wstring folder = Browser().UserDataFolder();
  EXPECT_TRUE(folder.ends_with(L"\\Quillmarch\\WebView2")) << ToUtf8(FromWinText(folder));
  EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(folder.c_str()));
  RECT client = {};
  GetClientRect(taskPane().controlWindow(), &client);
  ASSERT_FALSE(page().bounds.empty());
  EXPECT_TRUE(EqualRect(&client, &page().bounds.back()));
}

TEST_F(ShellTest, ThePageFollowsThePanesSize) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  taskPane().Resize(500, 400);
  RECT client = {};
  GetClientRect(taskPane().controlWindow(), &client);
  RECT outer = {};
  GetClientRect(taskPane().container(), &outer);
  EXPECT_EQ(outer.right, client.right);
  EXPECT_TRUE(EqualRect(&client, &page().bounds.back()));
}

TEST_F(ShellTest, ASecondPressUsesThePaneThatIsThere) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  page().Load();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateSelection"));
  EXPECT_EQ(1U, host.factory->panes.size());
  // The page that is shown changes its mode and is not loaded again.
  EXPECT_EQ(1U, page().navigations.size());
  const std::vector<Wide> modes = page().Messages(u"setMode");
  ASSERT_FALSE(modes.empty());
  EXPECT_EQ(u"selection", JsonGetString(modes.back(), u"mode"));
  ASSERT_EQ(S_OK, host.Click(L"btnGlossary"));
  EXPECT_NE(std::wstring::npos, page().navigations.back().find(L"/panel/ppt/glossary.html"));
}

TEST_F(ShellTest, EachWindowGetsAPaneOfItsOwn) {
  Start();
  const ComPtr<IDispatch> first = ActiveWindow();
  const std::wstring samples = winhost::Setting(L"QUILLMARCH_TEST_SAMPLES");
  ASSERT_TRUE(VariantToFlag(
      Ask(u"OpenToo", {Variant::Text(FromWinText(samples + L"/many-scripts.pptx"))})));
  const ComPtr<IDispatch> second = ActiveWindow();
  ASSERT_NE(first.get(), second.get());
  ASSERT_EQ(S_OK, host.Click(L"btnAccount", second.get()));
  // The first window is not the active one, yet the click was made there.
  ASSERT_EQ(S_OK, host.Click(L"btnAccount", first.get()));
  ASSERT_EQ(2U, host.factory->panes.size());
  EXPECT_EQ(second.get(), host.factory->panes[0]->window.get());
  EXPECT_EQ(first.get(), host.factory->panes[1]->window.get());
  ASSERT_EQ(S_OK, host.Click(L"btnAccount", second.get()));
  EXPECT_EQ(2U, host.factory->panes.size());
}

TEST_F(ShellTest, AHostThatDoesNotActivateInPlaceGetsAWindowAllTheSame) {
  for (const Activation activation : {Activation::kRefused, Activation::kNoSite}) {
    Start();
    host.factory->activation = activation;
    ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
    EXPECT_EQ(activation == Activation::kRefused ? E_FAIL : S_OK, taskPane().verbCode);
    const HWND control = taskPane().controlWindow();
    ASSERT_NE(nullptr, control);
    EXPECT_EQ(taskPane().container(), GetParent(control));
    EXPECT_TRUE(Logged("CPptPane fallback create window"));
    EXPECT_TRUE(WaitForPage());
    pages.clear();
    host.Stop();
  }
}

TEST_F(ShellTest, AVerbWithoutASiteOrAParentDoesNothing) {
  Start();
  host.factory->activation = Activation::kNoParent;
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  EXPECT_EQ(nullptr, taskPane().controlWindow());
  winhost::PumpFor(100);
  EXPECT_TRUE(Browser().Calls().empty());
}

TEST_F(ShellTest, ASecondVerbMakesNeitherAWindowNorABrowser) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  const HWND control = taskPane().controlWindow();
  const std::size_t calls = Browser().Calls().size();
  const RECT place = {0, 0, 200, 200};
  for (const LONG verb : {OLEIVERB_INPLACEACTIVATE, OLEIVERB_SHOW, OLEIVERB_PRIMARY,
                          OLEIVERB_UIACTIVATE, OLEIVERB_HIDE}) {
    EXPECT_EQ(S_OK, taskPane().control()->DoVerb(verb, nullptr, nullptr, 0, taskPane().container(),
                                                 &place));
  }
  EXPECT_EQ(E_NOTIMPL, taskPane().control()->DoVerb(OLEIVERB_PROPERTIES, nullptr, nullptr, 0,
                                                    taskPane().container(), &place));
  EXPECT_EQ(OLEOBJ_S_INVALIDVERB,
            taskPane().control()->DoVerb(7, nullptr, nullptr, 0, taskPane().container(), &place));
  winhost::PumpFor(100);
  EXPECT_EQ(control, taskPane().controlWindow());
  EXPECT_EQ(calls, Browser().Calls().size());
}

TEST_F(ShellTest, UiActivationTellsTheFrameAndTheSite) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  taskPane().siteCalls.clear();
  EXPECT_EQ(S_OK, taskPane().control()->DoVerb(OLEIVERB_UIACTIVATE, nullptr, nullptr, 0,
                                               taskPane().container(), nullptr));
  const std::vector<std::string>& calls = taskPane().siteCalls;
  EXPECT_EQ("OnUIActivate", calls.at(0));
  EXPECT_NE(calls.end(), std::find(calls.begin(), calls.end(), "SetActiveObject"));
  taskPane().siteCalls.clear();
  host.factory->panes.back()->Destroy();
  EXPECT_NE(calls.end(), std::find(calls.begin(), calls.end(), "SetActiveObject(null)"));
  EXPECT_EQ("OnInPlaceDeactivate", calls.back());
}

TEST_F(ShellTest, WhatGoesWrongIsOneBoxAndSuccessForTheRibbon) {
  host.Load();
  host.GetCustomUI();
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_EQ(1U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[0].text), Text(u"msg.hostNotReady.ppt"));
  EXPECT_EQ(FromWinText(boxes.seen()[0].title), Text(u"msg.title"));

  application = OpenSample();
  host.OnConnection(application.get());
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_EQ(2U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[1].text), Text(u"msg.paneFactory.ppt"));

  host.CTPFactoryAvailable();
  host.factory->failWith = E_ACCESSDENIED;
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_EQ(3U, boxes.seen().size());
  EXPECT_NE(std::wstring::npos, boxes.seen()[2].text.find(L"0x80070005"));
  EXPECT_TRUE(Logged("PPT CreateCTP failed hr=0x80070005"));

  host.factory->failWith = S_OK;
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  EXPECT_EQ(3U, boxes.seen().size());
  EXPECT_EQ(1U, host.factory->panes.size());
}

TEST_F(ShellTest, AHostThatHasGoneIsNoWindowAndNoCrash) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  world.Disconnect();
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_EQ(1U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[0].text), Text(u"msg.noWindow.ppt"));
  page().Say(L"{\"action\":\"start\",\"panelMode\":\"full\"}");
  winhost::PumpFor(200);
  host.Stop();
}

TEST_F(ShellTest, AnyOneHostCallMayFailWhilePanesAreOpenedAndClosed) {
  for (const HRESULT code : {RPC_E_CALL_REJECTED, RPC_E_SERVERCALL_RETRYLATER, E_OUTOFMEMORY}) {
    for (int number = 1; number <= 12; ++number) {
      application = OpenSample();
      Ask(u"FailCall", {Variant::I4(number), Variant::I4(code)});
      EXPECT_EQ(S_OK, host.Start(application.get()));
      EXPECT_EQ(S_OK, host.Click(L"btnTranslateCurrentSlide"));
      EXPECT_EQ(S_OK, host.Click(L"btnGlossary"));
      host.Stop();
      Ask(u"FailCall", {Variant::I4(0), Variant::I4(0)});
    }
  }
}

TEST_F(ShellTest, EachRoadToTheHostMayBeClosedAlone) {
  for (const auto& [names, types] :
       {std::pair{true, false}, std::pair{false, true}, std::pair{true, true}}) {
    application = OpenSample();
    Ask(u"Refuse", {Variant::Bool(names), Variant::Bool(types)});
    EXPECT_EQ(S_OK, host.Start(application.get()));
    EXPECT_EQ(S_OK, host.Click(L"btnTranslateCurrentSlide"));
    host.Stop();
    Ask(u"Refuse", {Variant::Bool(false), Variant::Bool(false)});
  }
}

TEST_F(ShellTest, CallsMayComeInAnyOrderAndTwice) {
  host.Load();
  EXPECT_EQ(S_OK, host.OnDisconnection());
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  EXPECT_EQ(S_OK, host.OnStartupComplete());
  application = OpenSample();
  EXPECT_EQ(S_OK, host.GetCustomUI());
  EXPECT_EQ(S_OK, host.OnRibbonLoad());
  EXPECT_EQ(S_OK, host.CTPFactoryAvailable());
  EXPECT_EQ(S_OK, host.CTPFactoryAvailable());
  EXPECT_EQ(S_OK, host.OnConnection(nullptr));
  EXPECT_EQ(S_OK, host.OnConnection(application.get()));
  EXPECT_EQ(S_OK, host.OnConnection(application.get()));
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  EXPECT_EQ(S_OK, host.OnDisconnection());
  EXPECT_EQ(S_OK, host.OnDisconnection());
  EXPECT_TRUE(boxes.seen().empty());
  EXPECT_EQ(1U, host.factory->panes.size());
}

TEST_F(ShellTest, AConnectionThatIsReleasedWithoutAnEndLeavesNothing) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  host.Unload();
}

TEST_F(ShellTest, AWindowThatGoesWithItsParentTakesTheBrowserAlong) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  taskPane().DestroyWindowFirst();
  EXPECT_TRUE(page().closed);
  EXPECT_EQ(nullptr, taskPane().controlWindow());
  EXPECT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
}

TEST_F(ShellTest, AControlMayBeClosedTwiceAndBeAskedForMoreBehindThat) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  const ComPtr<IOleObject> control(taskPane().control());
  const auto inPlace = control.As<IOleInPlaceObject>(IID_IOleInPlaceObject);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(S_OK, inPlace->InPlaceDeactivate());
    EXPECT_EQ(S_OK, control->Close(OLECLOSE_NOSAVE));
    EXPECT_EQ(S_OK, control->SetClientSite(nullptr));
  }
  EXPECT_TRUE(page().closed);
  EXPECT_EQ(nullptr, taskPane().controlWindow());
  const std::size_t calls = Browser().Calls().size();
  const RECT place = {0, 0, 200, 200};
  control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, nullptr, 0, taskPane().container(), &place);
  inPlace->SetObjectRects(&place, &place);
  winhost::PumpFor(100);
  EXPECT_EQ(calls, Browser().Calls().size());
  EXPECT_EQ(S_OK, host.Click(L"btnGlossary"));
}

TEST_F(ShellTest, TheHostMayLetGoOfTheConnectionBeforeItsPanes) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  host.OnDisconnection();
  host.Unload();
  EXPECT_FALSE(page().closed);
  // The pane lives on by itself: its page, its timer and its size.
  page().Load();
  winhost::PumpFor(400);
  taskPane().Resize(410, 300);
  page().Say(L"{\"action\":\"getFontList\"}");
  EXPECT_EQ(1U, page().Messages(u"fontList").size());
  host.factory->DestroyPanes();
  EXPECT_TRUE(page().closed);
}

TEST_F(ShellTest, ShutdownClosesTheBrowserBeforeTheHostClosesItsPanes) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  ASSERT_TRUE(WaitForPage());
  EXPECT_EQ(S_OK, host.OnBeginShutdown());
  EXPECT_TRUE(page().closed);
  EXPECT_EQ("Close", Browser().Calls().back());
  EXPECT_TRUE(Logged("PptPane WebView2 Close hr=0x00000000"));
}

TEST_F(ShellTest, TheLastWidthIsSavedAndTheNextPaneOpensWithIt) {
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  taskPane().width = 431;
  host.Stop();
  EXPECT_TRUE(Logged("PaneWidth shutdown-save pt=431"));
  Start();
  ASSERT_EQ(S_OK, host.Click(L"btnTranslateFullDoc"));
  EXPECT_EQ(431, taskPane().width);
  taskPane().width = kDefaultWidth;
}

TEST_F(ShellTest, TheRibbonsOtherCallsSucceedWithoutEffect) {
  Start();
  EXPECT_EQ(S_OK, host.Click(L"btnSettings"));
}

TEST_F(ShellTest, ALinkThatCannotBeOpenedIsToldToTheUser) {
  // No browser is there to open it.
  Start();
  EXPECT_EQ(E_FAIL, host.Click(L"btnPdfTranslate"));
  ASSERT_EQ(1U, boxes.seen().size());
  EXPECT_EQ(FromWinText(boxes.seen()[0].text), Text(u"msg.browserFailed"));
}

}  // namespace quillmarch::addin
