// Making a pane's browser, its events, and what happens when it cannot be had.
#include "pane/WebViewHost.h"

#include <atomic>
#include <exception>
#include <utility>

#include "foundation/identity/Analytics.h"
#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "foundation/settings/DisplayLanguage.h"
#include "foundation/system/Files.h"
#include "foundation/system/KnownFolders.h"
#include "pane/CPptPane.h"
#include "pane/PanelPages.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kProductFolder = u"Quillmarch";
constexpr WideView kWebViewFolder = u"WebView2";
constexpr char16_t kSupportHandle[] = u"Quillmarch-1";  // of the service's support account

std::atomic<std::uint32_t> failureDialogShown{0};

}  // namespace

Wide WebViewDataFolder() {
  const Wide data = LocalDataFolder();
  if (data.empty()) return {};
  const Wide product = JoinPath(data, kProductFolder);
  CreateFolder(product);
  Wide folder = JoinPath(product, kWebViewFolder);
  CreateFolder(folder);
  return folder;
}

bool TakeFailureDialog() {
  std::uint32_t untaken = 0;
  return failureDialogShown.compare_exchange_strong(untaken, 1);
}

void ForgetFailureDialog() {
  failureDialogShown = 0;
}

void CPptPane::InitWebView() {
  if (webViewStarted) return;
  webViewStarted = true;
  LogLine(u"CPptPane InitWebView begin hwnd=" + PointerText(windowHandle));
  if (surroundings_.loader == nullptr) {
    if (surroundings_.startWebView) surroundings_.startWebView(*this);
    return;
  }
  const Wide folder = WebViewDataFolder();
  if (folder.empty()) {
    ReportWebViewFailure(u"userdata", kFail);
    return;
  }
  webViewParent_ = windowHandle;
  const ResultCode code = surroundings_.loader->CreateEnvironment(folder, weak_from_this());
  if (Failed(code)) ReportWebViewFailure(u"create", code);
}

ResultCode CPptPane::OnEnvironmentCompleted(ResultCode code,
                                            std::shared_ptr<WebViewEnvironment> environment) {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  LogLine(u"CPptPane env callback hr=" + HrText(code));
  if (shuttingDown != 0) return kOk;
  if (Failed(code) || environment == nullptr) {
    ReportWebViewFailure(u"environment", code);
    return kOk;
  }
  webEnvironment = environment;
  if (shuttingDown != 0) {
    webEnvironment.reset();
    return kOk;
  }
  return environment->CreateController(webViewParent_, weak_from_this());
}

ResultCode CPptPane::OnControllerCompleted(ResultCode code,
                                           std::shared_ptr<WebViewController> browser) {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  LogLine(u"CPptPane controller callback hr=" + HrText(code));
  if (Failed(code) || browser == nullptr) {
    ReportWebViewFailure(u"controller", code);
    return kOk;
  }
  if (shuttingDown != 0) {
    browser->Close();
    webEnvironment.reset();
    return kOk;
  }
  webController = browser;
  browser->PutVisible(true);
  std::shared_ptr<WebView> view = browser->GetWebView();
  // Either call may have let messages through.
  if (shuttingDown != 0 || webController == nullptr) {
    CloseWebView();
    return kOk;
  }
  if (view == nullptr) {
    CloseWebView();
    ReportWebViewFailure(u"core", kFail);
    return kOk;
  }
  webView = view;
  pageThere_ = true;
  if (const std::shared_ptr<WebViewSettings> settings = view->Settings()) {
    settings->PutAreDevToolsEnabled(false);
    settings->PutIsStatusBarEnabled(false);
  }
  view->AddWebMessageReceived(weak_from_this());
  view->AddNavigationStarting(weak_from_this());
  view->AddNavigationCompleted(weak_from_this());
  PutBoundsOfWindow();
  Wide page = std::exchange(pendingPage, Wide());
  NavigateTo(page.empty() ? Wide(u"translate") : page);
  return kOk;
}

void CPptPane::PutBoundsOfWindow() {
  const ClientSize size = surroundings_.clientSize ? surroundings_.clientSize(*this) : ClientSize{};
  OnSize(size.width, size.height);
}

void CPptPane::AttachWebView(std::shared_ptr<WebViewController> browser,
                             std::shared_ptr<WebView> view) {
  webController = std::move(browser);
  webView = std::move(view);
  pageThere_ = webView != nullptr;
}

void CPptPane::CloseWebView() {
  pageThere_ = false;
  // Out of the fields first: the browser's end may let messages through.
  const std::shared_ptr<WebViewController> browser = std::exchange(webController, nullptr);
  const std::shared_ptr<WebView> view = std::exchange(webView, nullptr);
  if (browser != nullptr) LogLine(u"PptPane WebView2 Close hr=" + HrText(browser->Close()));
  webEnvironment.reset();
}

void CPptPane::OnWebMessageReceived(const Wide& text) {
  if (shuttingDown != 0) return;
  // The pane may lose its last holder inside the message.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  try {
    OnWebMessage(text);
  } catch (const std::exception&) {
    // Memory ran out: the message is dropped, as no action ever gets an error for an answer.
  }
}

void CPptPane::OnNavigationStarting() {
  if (shuttingDown == 0) transport_.FailAllPendingTranslate(u"webview_navigating");
}

void CPptPane::OnNavigationCompleted(bool isSuccess) {
  if (shuttingDown != 0) return;
  const std::shared_ptr<CPptPane> self = shared_from_this();
  if (!isSuccess) {
    // No second try, on purpose: the browser's own error page stays.
    LogLine(u"CPptPane nav completed failed (no retry)");
    return;
  }
  RefreshCurrentPage();
  PushAccessToken();
  if (!pendingPage.empty()) {
    NavigateTo(std::exchange(pendingPage, Wide()));
    return;
  }
  if (SamePage(currentPage, u"translate") && !pendingMode.empty() && pendingMode != mode) {
    SetMode(pendingMode);
  }
}

void CPptPane::ReportWebViewFailure(const char16_t* stage, ResultCode code) {
  LogLine(u"PptPane WebView2 " + Wide(stage) + u" failed hr=" + HrText(code));
  try {
    SendWebViewInitError(stage, static_cast<std::uint32_t>(code));
  } catch (const std::exception&) {
    // No thread could be had: the user is told all the same.
  }
  if (!TakeFailureDialog() || surroundings_.desktop == nullptr) return;
  // The window may go while the user reads.
  const auto owner = [this] { return HasWindow() ? windowHandle : 0; };
  surroundings_.desktop->ShowMessage(owner(), Text(u"msg.webview2.body"), Text(u"msg.title"),
                                     Desktop::kIconWarning | Desktop::kSetForeground);
  surroundings_.desktop->PutClipboardText(owner(), kSupportHandle);
}

}  // namespace quillmarch::addin
