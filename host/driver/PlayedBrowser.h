// A browser without any engine: it is made in stages and goes to addresses as a real one does, each
// step told by a post of the host thread, and hands messages and scripts to whoever plays the page.
// Host thread only.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "foundation/seams/HostThread.h"
#include "foundation/seams/WebView.h"

namespace quillmarch::host {

// What a host or its browser answers to one call, or tells of one step: the step's own result.
// Empty answers success. Anything may be let in here, as at every call of a real host.
using PlayedAnswer = std::function<ResultCode(const char* step)>;

class PlayedPage final : public WebView,
                         public WebViewController,
                         public std::enable_shared_from_this<PlayedPage> {
 public:
  // `thread` outlives the page.
  PlayedPage(HostThread& thread, PlayedAnswer answer)
      : thread_(thread), answer_(std::move(answer)) {}

  // A message of the page arrives, later. One said before the pane listens is lost.
  void Say(const Wide& json);

  std::function<void(const Wide& url)> onLoaded;  // behind the pane's own
  std::function<void(const Wide& json)> onMessage;
  std::function<void(const Wide& script)> onScript;
  const Wide& address() const { return address_; }
  bool closed() const { return closed_; }

  // As the pane sees it.
  std::shared_ptr<WebViewSettings> Settings() override { return nullptr; }
  void AddWebMessageReceived(std::weak_ptr<WebViewSink> sink) override;
  void AddNavigationStarting(std::weak_ptr<WebViewSink> sink) override;
  void AddNavigationCompleted(std::weak_ptr<WebViewSink> sink) override;
  void Navigate(const Wide& url) override;
  bool Source(Wide& url) override;
  void ExecuteScript(const Wide& script) override;
  void PostWebMessageAsJson(const Wide& json) override;
  void PutVisible(bool) override {}
  void PutBounds(std::int32_t, std::int32_t) override {}
  std::shared_ptr<WebView> GetWebView() override;
  ResultCode Close() override;

 private:
  ResultCode Answer(const char* step) const { return answer_ ? answer_(step) : kOk; }
  // Runs `step` by a post, unless the page has been closed by then.
  void Later(std::function<void(PlayedPage&)> step);

  HostThread& thread_;
  PlayedAnswer answer_;
  Wide address_;
  bool closed_ = false;
  std::weak_ptr<WebViewSink> messages_;
  std::weak_ptr<WebViewSink> starting_;
  std::weak_ptr<WebViewSink> completed_;
};

// One for each pane; ready when its page is there.
class PlayedBrowser final : public WebViewLoader {
 public:
  // `onPage` hears of the page before anybody uses it.
  PlayedBrowser(HostThread& thread, std::function<void(PlayedPage&)> onPage,
                PlayedAnswer answer = {});

  ResultCode CreateEnvironment(const Wide& userDataFolder,
                               std::weak_ptr<WebViewSink> sink) override;

  const std::shared_ptr<PlayedPage>& page() const { return page_; }

 private:
  class Environment;

  HostThread& thread_;
  std::function<void(PlayedPage&)> onPage_;
  PlayedAnswer answer_;
  std::shared_ptr<PlayedPage> page_;
};

}  // namespace quillmarch::host
