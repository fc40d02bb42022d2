// A pane's browser: how it is made and closed, which of the panel's pages it shows in which mode,
// and what the add-in sends to the page. Host thread only, except where noted.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include "foundation/seams/WebView.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch::addin {

class CPptPane;

class PaneBrowser {
 public:
  // The page and mode to open with; empty ones leave the translate page and mode "full".
  PaneBrowser(CPptPane& pane, const Wide& page, const Wide& mode);
  PaneBrowser(const PaneBrowser&) = delete;
  PaneBrowser& operator=(const PaneBrowser&) = delete;

  // ---- The browser's life ----------------------------------------------------------------------

  // Starts to create the browser, once for each pane.
  void InitWebView();
  bool webViewStarted() const { return webViewStarted_; }
  ResultCode OnEnvironmentCompleted(ResultCode code,
                                    std::shared_ptr<WebViewEnvironment> environment);
  ResultCode OnControllerCompleted(ResultCode code, std::shared_ptr<WebViewController> browser);
  // Takes a browser that is ready, with its page loaded or loading.
  void AttachWebView(std::shared_ptr<WebViewController> browser, std::shared_ptr<WebView> view);
  void CloseWebView();
  void PutBounds(std::int32_t width, std::int32_t height);  // client pixels
  // Fits the browser to the window's client area.
  void PutBoundsOfWindow();

  const std::shared_ptr<WebViewEnvironment>& webEnvironment() const { return webEnvironment_; }
  const std::shared_ptr<WebViewController>& webController() const { return webController_; }
  const std::shared_ptr<WebView>& webView() const { return webView_; }
  // Whether there is a page to ask. Any thread.
  bool pageThere() const { return pageThere_; }

  // ---- Pages and modes -------------------------------------------------------------------------

  const Wide& mode() const { return mode_; }
  const Wide& currentPage() const { return currentPage_; }
  const Wide& pendingPage() const { return pendingPage_; }
  const Wide& pendingMode() const { return pendingMode_; }

  Wide BuildPanelUrl(const Wide& page);
  void NavigateTo(const Wide& page);
  // Asks the browser which page it shows.
  void RefreshCurrentPage();
  // A page loaded: goes on to a pending page, or gives the translate page its pending mode.
  void GoToPending();
  // What the ribbon asks for: a page other than the current one is opened, now or once there is a
  // browser; the translate page, when it is shown already, only gets the pending mode.
  void SetPanelPage(const Wide& page);
  void SetPendingMode(const Wide& mode) { pendingMode_ = mode; }
  void SetMode(const Wide& mode);

  // ---- To the page: nothing happens without a page or once the pane is shutting down -----------

  void RunScript(const Wide& script);
  void PostToPage(const Wide& json);
  // Calls a function of the page, if the page has it, with `payload` as its only argument.
  void CallPage(const char16_t* name, const Wide& payload);

 private:
  void ReportFailure(const char16_t* stage, ResultCode code);

  CPptPane& pane_;
  std::shared_ptr<WebViewEnvironment> webEnvironment_;
  std::shared_ptr<WebViewController> webController_;
  std::shared_ptr<WebView> webView_;
  std::atomic<bool> pageThere_{false};  // as webView_, for threads that may not touch it
  bool webViewStarted_ = false;
  std::uintptr_t webViewParent_ = 0;  // the window that the browser was started for
  Wide mode_ = u"full";
  Wide currentPage_ = u"translate";
  Wide pendingPage_ = u"translate";
  Wide pendingMode_ = u"full";
};

}  // namespace quillmarch::addin
