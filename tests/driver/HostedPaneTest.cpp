#include "host/driver/HostedPane.h"

#include <gtest/gtest.h>

#include "foundation/text/JsonText.h"
#include "host/layout/DesktopFonts.h"
#include "host/thread/LoopThread.h"
#include "support/FakeHost.h"
#include "support/ScriptedWebView.h"

namespace quillmarch::host {

using namespace addin;
using namespace addin::test;

namespace {

struct Desk {
  Desk() { host.AddPresentation(); }
  LoopThread loop{ClockMode::kUnpaced};
  test::FakeHost host;
  std::shared_ptr<test::ScriptedWebView> page = std::make_shared<test::ScriptedWebView>();
};

TEST(HostedPane, StandsInTheActiveWindowWithAPage) {
  Desk desk;
  HostedPane hosted(desk.host.Application(), desk.loop, desk.page, {});
  const WindowContext context = desk.host.ContextOf(*desk.host.activeWindow);
  EXPECT_EQ(hosted.pane().windowContext().hwnd, context.hwnd);
  EXPECT_EQ(hosted.pane().windowContext().id, context.id);
  EXPECT_TRUE(hosted.pane().HasWindow());
  EXPECT_EQ(hosted.pane().browser().webView(), desk.page);
}

TEST(HostedPane, EachHasANumberOfItsOwnAndLeavesNothingForTheNext) {
  Desk desk;
  HostedPane first(desk.host.Application(), desk.loop, desk.page, {});
  desk.host.activeWindow = nullptr;
  HostedPane second(desk.host.Application(), desk.loop, desk.page, {});
  EXPECT_EQ(second.pane().paneId(), first.pane().paneId() + 1);
  EXPECT_EQ(second.pane().windowContext().hwnd, 0);
  EXPECT_EQ(second.pane().windowContext().id, 0U);
}

TEST(HostedPane, ItsEndLetsGoOfThePage) {
  Desk desk;
  { HostedPane hosted(desk.host.Application(), desk.loop, desk.page, {}); }
  EXPECT_EQ(desk.page.use_count(), 1);
}

TEST(HostedPane, ThePageIsToldTheFontsOfThisMachine) {
  Desk desk;
  HostedPane hosted(desk.host.Application(), desk.loop, desk.page, {});
  hosted.Say(u"{\"action\":\"getFontList\"}");
  ASSERT_EQ(desk.page->calls.size(), 1U);
  const std::vector<Wide> fonts = JsonGetStringArray(desk.page->calls[0].text, u"fonts");
  EXPECT_EQ(fonts, DesktopFonts().FamilyNames());
  EXPECT_FALSE(fonts.empty());
}

}  // namespace

}  // namespace quillmarch::host
