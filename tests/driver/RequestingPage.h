// A page that makes the pane's requests by itself, as the panel's does: over the real client, off
// the host thread, and with the service's answer said as a message.
#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/seams/HostThread.h"
#include "host/driver/PanelPage.h"

namespace quillmarch::host::test {

class RequestingPage final : public WebView {
 public:
  // `token` pays for the requests; the service is the process's endpoint.
  RequestingPage(HostThread& thread, Wide token);
  ~RequestingPage() override;  // waits for the requests under way

  void ExecuteScript(const Wide& script) override;
  void PostWebMessageAsJson(const Wide& json) override;
  std::shared_ptr<WebViewSettings> Settings() override { return nullptr; }
  void AddWebMessageReceived(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationStarting(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationCompleted(std::weak_ptr<WebViewSink>) override {}
  void Navigate(const Wide&) override {}
  bool Source(Wide&) override { return false; }

  std::function<void(const Wide&)> say;  // to the pane; host thread
  // Behind everything that the page is told.
  std::function<void()> onTold;
  std::vector<std::string> events;    // name and payload
  std::vector<std::string> messages;  // in UTF-8

 private:
  void Answer(const Wide& answer);

  HostThread& thread_;
  Wide token_;
  std::vector<std::thread> requests_;
  // Answers that come when the page has gone find nobody.
  std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace quillmarch::host::test
