// The browser of a pane as the add-in uses it: loader, environment, controller, page. Each comes
// from the one before it, the middle two later, by a call of WebViewSink. Host thread only. No call
// waits for the page.
#pragma once

#include <cstdint>
#include <memory>

#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"

namespace quillmarch {

class WebViewController;
class WebViewEnvironment;

// Who hears of the browser: the pane. Browsers hold it weakly, as a completion may come after the
// pane's end. Never called from inside a call of the browser.
class WebViewSink {
 public:
  // Each object is null where `code` is a failure, and may be null all the same where it is none.
  // What comes back is the handler's own result.
  virtual ResultCode OnEnvironmentCompleted(ResultCode code,
                                            std::shared_ptr<WebViewEnvironment> environment) = 0;
  virtual ResultCode OnControllerCompleted(ResultCode code,
                                           std::shared_ptr<WebViewController> controller) = 0;
  // The message as JSON text, whatever the page posted.
  virtual void OnWebMessageReceived(const Wide& json) = 0;
  virtual void OnNavigationStarting() = 0;
  virtual void OnNavigationCompleted(bool isSuccess) = 0;

 protected:
  ~WebViewSink() = default;
};

class WebViewSettings {
 public:
  virtual ~WebViewSettings() = default;
  virtual void PutAreDevToolsEnabled(bool enabled) = 0;
  virtual void PutIsStatusBarEnabled(bool enabled) = 0;
};

// The page's side.
class WebView {
 public:
  virtual ~WebView() = default;

  // Null when the browser refuses.
  virtual std::shared_ptr<WebViewSettings> Settings() = 0;

  virtual void AddWebMessageReceived(std::weak_ptr<WebViewSink> sink) = 0;
  virtual void AddNavigationStarting(std::weak_ptr<WebViewSink> sink) = 0;
  virtual void AddNavigationCompleted(std::weak_ptr<WebViewSink> sink) = 0;

  virtual void Navigate(const Wide& url) = 0;
  // The address of the page. False, and `url` empty, when it cannot be had.
  virtual bool Source(Wide& url) = 0;

  // Runs a script in the page that is loaded; its value and its errors are dropped.
  virtual void ExecuteScript(const Wide& script) = 0;

  // Hands the page one JSON text as a message.
  virtual void PostWebMessageAsJson(const Wide& json) = 0;
};

// The window's side.
class WebViewController {
 public:
  virtual ~WebViewController() = default;

  virtual void PutVisible(bool visible) = 0;

  // The place of the page in the pane's window, in its client pixels.
  virtual void PutBounds(std::int32_t width, std::int32_t height) = 0;

  // Null when the browser has none.
  virtual std::shared_ptr<WebView> GetWebView() = 0;

  // Ends the browser. No other call follows.
  virtual ResultCode Close() = 0;
};

class WebViewEnvironment {
 public:
  virtual ~WebViewEnvironment() = default;

  // Ends in OnControllerCompleted, unless it fails at once.
  virtual ResultCode CreateController(std::uintptr_t parentWindow,
                                      std::weak_ptr<WebViewSink> sink) = 0;
};

class WebViewLoader {
 public:
  virtual ~WebViewLoader() = default;

  // Ends in OnEnvironmentCompleted, unless it fails at once.
  virtual ResultCode CreateEnvironment(const Wide& userDataFolder,
                                       std::weak_ptr<WebViewSink> sink) = 0;
};

}  // namespace quillmarch
