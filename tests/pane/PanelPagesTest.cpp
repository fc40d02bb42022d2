#include "pane/PanelPages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "foundation/automation/HostId.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/settings/UserConfigFile.h"
#include "pane/PaneHarness.h"
#include "support/LogCapture.h"

namespace quillmarch::addin {

namespace {

using test::FakeHost;
using test::LogCapture;
using test::PaneHarness;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

// A pane of the API host "api.example" in the first language of the tests.
class PanelPages : public testing::Test {
 protected:
  PanelPages() {
    std::uint32_t ignored = 0;
    WriteUiLang(u"ja", ignored);
    DetectHost(h_.host.Application().get());
    Remake(0);
  }

  void Remake(std::int32_t paneId, const Endpoint& apiHost = {u"api.example", 443, true}) {
    h_.RemakePane([&](HandOver& block, PaneSurroundings& surroundings) {
      block.paneId = paneId;
      surroundings.apiHost = apiHost;
    });
    h_.page->steps.clear();
  }
  // As after a navigation whose address nobody asks for.
  void ShowPage(const Wide& page) {
    h_.pane->browser().NavigateTo(page);
    h_.page->addresses.clear();
  }

  std::string Url(const Wide& page) { return ToUtf8(h_.pane->browser().BuildPanelUrl(page)); }
  std::string Tick() { return std::to_string(h_.thread.TickCount()); }
  // Which page the pane takes a source address for.
  Wide PageAt(const Wide& source) {
    h_.page->source = source;
    ShowPage(u"before");
    h_.pane->browser().RefreshCurrentPage();
    return h_.pane->browser().currentPage();
  }

  UserConfigFile config_;
  PaneHarness h_;
};

// ---- Addresses ---------------------------------------------------------------------------------

TEST_F(PanelPages, AnAddressHasItsFieldsInTheirFixedOrder) {
  EXPECT_EQ(Url(u"translate"),
            "https://api.example/panel/ppt/?_=" + Tick() + "&host=ppt&mode=full&uiLang=ja");
  Remake(1);
  h_.pane->browser().SetMode(u"slide");
  EXPECT_EQ(Url(u"account"), "https://api.example/panel/ppt/account.html?_=" + Tick() +
                                 "&host=ppt&pane=ppt1&mode=slide&uiLang=ja");
}

TEST_F(PanelPages, TheFirstPaneOfAProcessHasNoPaneField) {
  Remake(0);
  EXPECT_EQ(Url(u"translate").find("&pane="), std::string::npos);
  Remake(12);
  EXPECT_NE(Url(u"translate").find("&pane=ppt12&"), std::string::npos);
}

TEST_F(PanelPages, TheAddressNamesThePanesOwnServer) {
  Remake(0, {u"localhost", 8443, true});
  EXPECT_TRUE(Url(u"translate").starts_with("https://localhost:8443/panel/ppt/?"));
  Remake(0, {u"localhost", 8443, false});
  EXPECT_TRUE(Url(u"translate").starts_with("http://localhost:8443/panel/ppt/?"));
}

TEST_F(PanelPages, InWpsTheHostWordIsItsOwn) {
  FakeHost wps({u"WPS Presentation"});
  DetectHost(wps.Application().get());
  EXPECT_NE(Url(u"translate").find("&host=wps-ppt&"), std::string::npos);
  DetectHost(h_.host.Application().get());
}

TEST_F(PanelPages, TwoAddressesOfOnePageDifferInTheirCacheBreaker) {
  const std::string first = Url(u"translate");
  h_.thread.Advance(16);
  EXPECT_NE(Url(u"translate"), first);
}

TEST_F(PanelPages, TheModeGoesInAsItStands) {
  h_.pane->browser().SetMode(u"a b&c");
  EXPECT_NE(Url(u"translate").find("&mode=a b&c&uiLang="), std::string::npos);
}

TEST_F(PanelPages, EachPageHasItsPath) {
  EXPECT_EQ(PanelPath(u"translate"), u"/panel/ppt/");
  EXPECT_EQ(PanelPath(u"login"), u"/panel/ppt/login.html");
  EXPECT_EQ(PanelPath(u"Translate"), u"/panel/ppt/Translate.html");
}

// ---- The page of an address --------------------------------------------------------------------

TEST_F(PanelPages, TheRootsOfThePanelAreTheTranslatePage) {
  for (const char16_t* path : {u"", u"/", u"/panel", u"/panel/", u"/panel/ppt", u"/panel/ppt//",
                               u"/panel/word", u"/panel/excel"}) {
    EXPECT_EQ(PageFromPath(path), u"translate") << ToUtf8(path);
  }
}

TEST_F(PanelPages, AnyOtherPageIsKnownByTheEndOfItsPathInAnyCase) {
  EXPECT_EQ(PageFromPath(u"/panel/ppt/glossary.html"), u"glossary");
  EXPECT_EQ(PageFromPath(u"/panel/ppt/INSTRUCTION.HTML/"), u"instruction");
  EXPECT_EQ(PageFromPath(u"/panel/ppt/my-account.html"), u"account");
  EXPECT_EQ(PageFromPath(u"/panel/word/Login.html"), u"login");
  EXPECT_EQ(PageFromPath(u"/panel/support.html"), u"support");
  EXPECT_EQ(PageFromPath(u"/panel/support.html.bak"), u"translate");
  EXPECT_EQ(PageFromPath(u"/PANEL"), u"translate");
}

TEST_F(PanelPages, TheSourceIsReadFromThePanelToItsQuestionMark) {
  EXPECT_EQ(PageAt(u"https://h/x/panel/ppt/glossary.html?next=account.html"), u"glossary");
  EXPECT_EQ(PageAt(u"https://h/panel/ppt/?_=1"), u"translate");
  EXPECT_EQ(PageAt(u"https://h/panel/web/webtranslate.html?tool=pdftr"), u"translate");
  EXPECT_EQ(PageAt(u"https://h/panel/ppt/login.html#x"), u"translate");  // "#" is not looked for
}

TEST_F(PanelPages, ASourceOutsideThePanelOrNoneLeavesThePage) {
  EXPECT_EQ(PageAt(u"https://elsewhere.example/account.html"), u"before");
  EXPECT_EQ(PageAt(u""), u"before");
  h_.page->hasSource = false;
  EXPECT_EQ(PageAt(u"https://h/panel/ppt/login.html"), u"before");
}

// ---- Going to pages ----------------------------------------------------------------------------

TEST_F(PanelPages, GoingToAPageIsLoggedWithItsAddress) {
  LogCapture log;
  h_.pane->browser().NavigateTo(u"support");
  ASSERT_THAT(h_.page->addresses, SizeIs(1));
  EXPECT_EQ(h_.pane->browser().currentPage(), u"support");
  EXPECT_TRUE(log.Has("CPptPane navigate " + ToUtf8(h_.page->addresses[0])));
}

TEST_F(PanelPages, WithoutABrowserOrAfterTheShutdownNothingIsGoneTo) {
  h_.pane->browser().CloseWebView();
  h_.pane->browser().NavigateTo(u"support");
  h_.pane->BeginShutdownEarly();
  h_.pane->browser().AttachWebView(h_.page, h_.page);
  h_.pane->browser().NavigateTo(u"support");
  EXPECT_THAT(h_.page->addresses, IsEmpty());
  EXPECT_EQ(h_.pane->browser().currentPage(), u"translate");
}

TEST_F(PanelPages, BeforeTheBrowserIsThereThePageWaits) {
  h_.pane->browser().CloseWebView();
  h_.pane->browser().SetPendingMode(u"slide");
  h_.pane->browser().SetPanelPage(u"account");
  EXPECT_EQ(h_.pane->browser().pendingPage(), u"account");
  EXPECT_EQ(h_.pane->browser().pendingMode(), u"slide");
  h_.pane->browser().SetPanelPage(u"");
  EXPECT_EQ(h_.pane->browser().pendingPage(), u"translate");
}

TEST_F(PanelPages, TheTranslatePageThatIsShownGetsANewModeAsAMessageAndNoReload) {
  h_.pane->browser().SetPendingMode(u"selection");
  h_.pane->browser().SetPanelPage(u"translate");
  EXPECT_THAT(h_.page->Messages(), ElementsAre(R"({"action":"setMode","mode":"selection"})"));
  EXPECT_THAT(h_.page->addresses, IsEmpty());
  EXPECT_EQ(h_.pane->browser().mode(), u"selection");
  EXPECT_EQ(h_.pane->browser().pendingPage(), u"");
}

TEST_F(PanelPages, TheModeThatIsShownAlreadyIsNotSentAgain) {
  h_.pane->browser().SetPendingMode(u"full");
  h_.pane->browser().SetPanelPage(u"translate");
  h_.pane->browser().SetPendingMode(Wide());
  h_.pane->browser().SetPanelPage(u"translate");
  EXPECT_THAT(h_.page->Messages(), IsEmpty());
  EXPECT_THAT(h_.page->addresses, IsEmpty());
}

TEST_F(PanelPages, APageNameInAnotherCaseIsTheSamePage) {
  ShowPage(u"Translate");
  h_.pane->browser().SetPanelPage(u"TRANSLATE");
  EXPECT_THAT(h_.page->addresses, IsEmpty());
  EXPECT_TRUE(SamePage(u"Glossary", u"glossary"));
  EXPECT_FALSE(SamePage(u"glossary", u"glossar"));
}

TEST_F(PanelPages, AnotherPageIsGoneToAndDropsThePendingMode) {
  h_.pane->browser().SetPendingMode(u"slide");
  h_.pane->browser().SetPanelPage(u"glossary");
  ASSERT_THAT(h_.page->addresses, SizeIs(1));
  EXPECT_EQ(h_.pane->browser().currentPage(), u"glossary");
  EXPECT_EQ(h_.pane->browser().pendingMode(), u"");
  EXPECT_EQ(h_.pane->browser().pendingPage(), u"");
}

TEST_F(PanelPages, AnotherPageThatIsShownAlreadyIsLoadedAnew) {
  h_.pane->browser().SetPanelPage(u"glossary");
  h_.pane->browser().SetPanelPage(u"glossary");
  EXPECT_THAT(h_.page->addresses, SizeIs(2));
}

TEST_F(PanelPages, FromAnotherPageTheTranslatePageIsGoneToAndKeepsThePendingMode) {
  ShowPage(u"account");
  h_.pane->browser().SetPendingMode(u"slide");
  h_.pane->browser().SetPanelPage(u"translate");
  ASSERT_THAT(h_.page->addresses, SizeIs(1));
  EXPECT_THAT(h_.page->Messages(), IsEmpty());
  EXPECT_EQ(h_.pane->browser().pendingMode(), u"slide");
}

TEST_F(PanelPages, AnUnknownCurrentPageIsNoReasonToStay) {
  ShowPage(Wide());
  h_.pane->browser().SetPanelPage(u"translate");
  EXPECT_THAT(h_.page->addresses, SizeIs(1));
}

TEST_F(PanelPages, AModeIsKeptAlsoWhenThereIsNoPageToTell) {
  h_.pane->browser().CloseWebView();
  h_.pane->browser().SetMode(u"slide");
  EXPECT_EQ(h_.pane->browser().mode(), u"slide");
  EXPECT_THAT(h_.page->Messages(), IsEmpty());
}

}  // namespace

}  // namespace quillmarch::addin
