// A browser for tests: remembers what the pane tells it, in order, and lets the test answer.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/seams/WebView.h"

namespace quillmarch::addin::test {

// Page, window's side and settings in one.
class ScriptedWebView final : public WebView,
                              public WebViewController,
                              public WebViewSettings,
                              public std::enable_shared_from_this<ScriptedWebView> {
 public:
  struct Call {
    bool isScript = false;  // else a message
    Wide text;
  };

  void ExecuteScript(const Wide& script) override {
    calls.push_back({true, script});
    if (onScript) onScript(script);
    if (onCall) onCall();
  }
  void PostWebMessageAsJson(const Wide& json) override {
    calls.push_back({false, json});
    if (onMessage) onMessage(json);
    if (onCall) onCall();
  }
  void PutVisible(bool visible) override { Step(visible ? "visible" : "hidden"); }
  void PutBounds(std::int32_t w, std::int32_t h) override {
    Step("bounds " + std::to_string(w) + "x" + std::to_string(h));
    width = w;
    height = h;
  }
  std::shared_ptr<WebView> GetWebView() override {
    if (onGetWebView) onGetWebView();
    return hasWebView ? shared_from_this() : nullptr;
  }
  std::shared_ptr<WebViewSettings> Settings() override {
    return hasSettings ? shared_from_this() : nullptr;
  }
  void PutAreDevToolsEnabled(bool on) override { Step(on ? "devtools on" : "devtools off"); }
  void PutIsStatusBarEnabled(bool on) override { Step(on ? "status bar on" : "status bar off"); }
  void AddWebMessageReceived(std::weak_ptr<WebViewSink>) override { Step("hear messages"); }
  void AddNavigationStarting(std::weak_ptr<WebViewSink>) override { Step("hear starting"); }
  void AddNavigationCompleted(std::weak_ptr<WebViewSink>) override { Step("hear completed"); }
  void Navigate(const Wide& url) override {
    Step("navigate");
    addresses.push_back(url);
  }
  bool Source(Wide& url) override {
    url = source;
    return hasSource;
  }
  ResultCode Close() override {
    Step("close");
    ++closed;
    return closeResult;
  }

  // In UTF-8.
  std::vector<std::string> Scripts() const { return Texts(true); }
  std::vector<std::string> Messages() const { return Texts(false); }

  std::vector<Call> calls;
  std::vector<std::string> steps;  // all that is neither script nor message
  std::vector<Wide> addresses;     // gone to
  Wide source;
  bool hasSource = true;
  bool hasSettings = true;
  bool hasWebView = true;
  std::function<void()> onGetWebView;
  std::function<void(const Wide&)> onScript;
  std::function<void(const Wide&)> onMessage;
  std::function<void()> onCall;  // behind the other two, for either
  std::int32_t width = 0;
  std::int32_t height = 0;
  int closed = 0;
  ResultCode closeResult = kOk;

 private:
  void Step(std::string step) { steps.push_back(std::move(step)); }
  std::vector<std::string> Texts(bool scripts) const {
    std::vector<std::string> texts;
    for (const Call& call : calls) {
      if (call.isScript == scripts) texts.push_back(ToUtf8(call.text));
    }
    return texts;
  }
};

}  // namespace quillmarch::addin::test
