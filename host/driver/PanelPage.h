// The panel's page where there is no browser: it runs no script, but reads which of the page's
// functions the pane calls. Host thread only.
#pragma once

#include <cstdint>
#include <functional>

#include "foundation/seams/WebView.h"

namespace quillmarch::host {

// One call of a page function, such as onReady({"runId":7,...}).
struct PageCall {
  WideView name;
  WideView payload;  // the JSON object, braces included
};

// A whole number among the payload's own fields, which stand before any text; 0 when it is absent.
std::int32_t NumberIn(const PageCall& call, WideView field);

// Reads "window.NAME&&window.NAME(PAYLOAD)"; false for any other script.
bool ReadPageCall(WideView script, PageCall& call);

class PanelPage final : public WebView {
 public:
  // Hears every call of a function; what it gets is good during the call only.
  explicit PanelPage(std::function<void(const PageCall&)> onCall);

  void ExecuteScript(const Wide& script) override;
  // Nobody here answers requests.
  void PostWebMessageAsJson(const Wide&) override {}
  std::shared_ptr<WebViewSettings> Settings() override { return nullptr; }
  void AddWebMessageReceived(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationStarting(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationCompleted(std::weak_ptr<WebViewSink>) override {}
  void Navigate(const Wide&) override {}
  bool Source(Wide&) override { return false; }

 private:
  std::function<void(const PageCall&)> onCall_;
};

}  // namespace quillmarch::host
