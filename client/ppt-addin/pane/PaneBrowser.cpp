#include "pane/PaneBrowser.h"

#include <utility>

#include "foundation/automation/HostId.h"
#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "foundation/settings/DisplayLanguage.h"
#include "pane/CPptPane.h"
#include "pane/PanelPages.h"
#include "pane/WebViewFailure.h"
#include "pane/WebViewFolder.h"

namespace quillmarch::addin {

PaneBrowser::PaneBrowser(CPptPane& pane, const Wide& page, const Wide& mode) : pane_(pane) {
  if (!page.empty()) pendingPage_ = page;
  if (!mode.empty()) pendingMode_ = mode;
}

// ---- The browser's life ------------------------------------------------------------------------

void PaneBrowser::InitWebView() {
  if (webViewStarted_) return;
  webViewStarted_ = true;
  LogLine(u"CPptPane InitWebView begin hwnd=" + PointerText(pane_.windowHandle()));
  const PaneSurroundings& surroundings = pane_.surroundings();
  if (surroundings.loader == nullptr) {
    if (surroundings.startWebView) surroundings.startWebView(pane_);
    return;
  }
  const Wide folder = WebViewDataFolder();
  if (folder.empty()) {
    ReportFailure(u"userdata", kFail);
    return;
  }
  webViewParent_ = pane_.windowHandle();
  const ResultCode code = surroundings.loader->CreateEnvironment(folder, pane_.weak_from_this());
  if (Failed(code)) ReportFailure(u"create", code);
}

ResultCode PaneBrowser::OnEnvironmentCompleted(ResultCode code,
                                               std::shared_ptr<WebViewEnvironment> environment) {
  LogLine(u"CPptPane env callback hr=" + HrText(code));
  if (pane_.shuttingDown()) return kOk;
  if (Failed(code) || environment == nullptr) {
    ReportFailure(u"environment", code);
    return kOk;
  }
  webEnvironment_ = environment;
  if (pane_.shuttingDown()) {
    webEnvironment_.reset();
    return kOk;
  }
  return environment->CreateController(webViewParent_, pane_.weak_from_this());
}

ResultCode PaneBrowser::OnControllerCompleted(ResultCode code,
                                              std::shared_ptr<WebViewController> browser) {
  LogLine(u"CPptPane controller callback hr=" + HrText(code));
  if (Failed(code) || browser == nullptr) {
    ReportFailure(u"controller", code);
    return kOk;
  }
  if (pane_.shuttingDown()) {
    browser->Close();
    webEnvironment_.reset();
    return kOk;
  }
  webController_ = browser;
  browser->PutVisible(true);
  std::shared_ptr<WebView> view = browser->GetWebView();
  // Either call may have let messages through.
  if (pane_.shuttingDown() || webController_ == nullptr) {
    CloseWebView();
    return kOk;
  }
  if (view == nullptr) {
    CloseWebView();
    ReportFailure(u"core", kFail);
    return kOk;
  }
  webView_ = view;
  pageThere_ = true;
  if (const std::shared_ptr<WebViewSettings> settings = view->Settings()) {
    settings->PutAreDevToolsEnabled(false);
    settings->PutIsStatusBarEnabled(false);
  }
  view->AddWebMessageReceived(pane_.weak_from_this());
  view->AddNavigationStarting(pane_.weak_from_this());
  view->AddNavigationCompleted(pane_.weak_from_this());
  PutBoundsOfWindow();
  Wide page = std::exchange(pendingPage_, Wide());
  NavigateTo(page.empty() ? Wide(kTranslatePage) : page);
  return kOk;
}

void PaneBrowser::AttachWebView(std::shared_ptr<WebViewController> browser,
                                std::shared_ptr<WebView> view) {
  webController_ = std::move(browser);
  webView_ = std::move(view);
  pageThere_ = webView_ != nullptr;
}

void PaneBrowser::CloseWebView() {
  pageThere_ = false;
  // Out of the fields first: the browser's end may let messages through.
  const std::shared_ptr<WebViewController> browser = std::exchange(webController_, nullptr);
  const std::shared_ptr<WebView> view = std::exchange(webView_, nullptr);
  if (browser != nullptr) LogLine(u"PptPane WebView2 Close hr=" + HrText(browser->Close()));
  webEnvironment_.reset();
}

void PaneBrowser::PutBounds(std::int32_t width, std::int32_t height) {
  if (const std::shared_ptr<WebViewController> browser = webController_) {
    browser->PutBounds(width, height);
  }
}

void PaneBrowser::PutBoundsOfWindow() {
  const PaneSurroundings& surroundings = pane_.surroundings();
  const ClientSize size = surroundings.clientSize ? surroundings.clientSize(pane_) : ClientSize{};
  PutBounds(size.width, size.height);
}

void PaneBrowser::ReportFailure(const char16_t* stage, ResultCode code) {
  ReportWebViewFailure(stage, code, pane_.surroundings().desktop,
                       [this] { return pane_.HasWindow() ? pane_.windowHandle() : 0; });
}

// ---- Pages and modes ---------------------------------------------------------------------------

Wide PaneBrowser::BuildPanelUrl(const Wide& page) {
  const PaneSurroundings& surroundings = pane_.surroundings();
  Wide url = BuildUrl(surroundings.apiHost, PanelPath(page));
  url += u"?_=" + DecimalUnsigned(surroundings.thread.TickCount());
  url += IsWpsProcess() ? u"&host=wps-ppt" : u"&host=ppt";
  if (pane_.paneId() > 0) url += u"&pane=ppt" + Decimal(pane_.paneId());
  url += u"&mode=" + mode_;
  // Held, as the last release of the pane's object may come inside the call.
  const ObjectRef application = pane_.hostApp();
  url += u"&uiLang=" + ResolveLang(application.get());
  return url;
}

void PaneBrowser::NavigateTo(const Wide& page) {
  const std::shared_ptr<WebView> view = webView_;
  if (view == nullptr || pane_.shuttingDown()) return;
  currentPage_ = page;
  const Wide url = BuildPanelUrl(page);
  LogLine(u"CPptPane navigate " + url);
  view->Navigate(url);
}

void PaneBrowser::RefreshCurrentPage() {
  const std::shared_ptr<WebView> view = webView_;
  Wide source;
  if (view == nullptr || !view->Source(source)) return;
  PageFromSource(source, currentPage_);
}

void PaneBrowser::GoToPending() {
  if (!pendingPage_.empty()) {
    NavigateTo(std::exchange(pendingPage_, Wide()));
    return;
  }
  if (SamePage(currentPage_, kTranslatePage) && !pendingMode_.empty() && pendingMode_ != mode_) {
    SetMode(pendingMode_);
  }
}

void PaneBrowser::SetPanelPage(const Wide& asked) {
  const Wide page = asked.empty() ? Wide(kTranslatePage) : asked;
  pendingPage_ = page;
  if (webView_ == nullptr) return;
  const bool toTranslate = SamePage(page, kTranslatePage);
  if (!toTranslate) pendingMode_.clear();
  if (toTranslate && !currentPage_.empty() && SamePage(currentPage_, page)) {
    if (!pendingMode_.empty() && pendingMode_ != mode_) SetMode(pendingMode_);
  } else {
    NavigateTo(page);
  }
  pendingPage_.clear();
}

void PaneBrowser::SetMode(const Wide& newMode) {
  mode_ = newMode;
  PostToPage(u"{\"action\":\"setMode\",\"mode\":\"" + mode_ + u"\"}");
}

// ---- To the page -------------------------------------------------------------------------------

void PaneBrowser::RunScript(const Wide& script) {
  if (pane_.shuttingDown()) return;
  if (const std::shared_ptr<WebView> view = webView_) view->ExecuteScript(script);
}

void PaneBrowser::PostToPage(const Wide& json) {
  if (pane_.shuttingDown()) return;
  if (const std::shared_ptr<WebView> view = webView_) view->PostWebMessageAsJson(json);
}

void PaneBrowser::CallPage(const char16_t* name, const Wide& payload) {
  const Wide function = Wide(u"window.") + name;
  Wide script;
  script.reserve(2 * function.size() + payload.size() + 4);
  (((((script += function) += u"&&") += function) += u'(') += payload) += u')';
  RunScript(script);
}

}  // namespace quillmarch::addin
