// An account without any data folder.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "foundation/identity/Analytics.h"
#include "pane/PaneHarness.h"
#include "pane/WebViewFailure.h"
#include "support/LogCapture.h"
#include "support/ScriptedBrowser.h"
#include "support/ScriptedDesktop.h"

namespace quillmarch::addin {

namespace {

class Unset {
 public:
  explicit Unset(const char* name) : name_(name) {
    if (const char* old = std::getenv(name)) {
      had_ = true;
      old_ = old;
    }
    ::unsetenv(name);
  }
  ~Unset() {
    if (had_) ::setenv(name_, old_.c_str(), 1);
  }
  Unset(const Unset&) = delete;
  Unset& operator=(const Unset&) = delete;

 private:
  const char* name_;
  bool had_ = false;
  std::string old_;
};

TEST(WebViewFolder, WithoutADataFolderNoBrowserIsBegunAndTheUserIsTold) {
  test::PaneHarness h;
  test::ScriptedBrowser browser;
  test::ScriptedDesktop desktop;
  ForgetFailureDialog();
  SetBeaconSender([](const AnalyticsBeacon&) {});
  PaneSurroundings surroundings = h.Surroundings();
  surroundings.loader = &browser;
  surroundings.desktop = &desktop;
  const auto pane = CPptPane::Create(surroundings);
  {
    test::LogCapture log;
    const Unset data("XDG_DATA_HOME");
    const Unset home("HOME");
    pane->OnCreate(1);
    EXPECT_TRUE(log.Has("PptPane WebView2 userdata failed hr=0x80004005"));
  }
  EXPECT_TRUE(browser.folders.empty());
  EXPECT_EQ(desktop.messages.size(), 1U);
  pane->OnDestroy();
  SetBeaconSender({});
  ForgetFailureDialog();
  ForgetWebViewInitError();
}

}  // namespace

}  // namespace quillmarch::addin
