#include "host/driver/PlayedBrowser.h"

#include <utility>

namespace quillmarch::host {

void PlayedPage::Later(std::function<void(PlayedPage&)> step) {
  thread_.Post([weak = weak_from_this(), step = std::move(step)] {
    const std::shared_ptr<PlayedPage> page = weak.lock();
    if (page != nullptr && !page->closed_) step(*page);
  });
}

void PlayedPage::Say(const Wide& json) {
  Later([json](PlayedPage& page) {
    if (const auto sink = page.messages_.lock()) sink->OnWebMessageReceived(json);
  });
}

void PlayedPage::AddWebMessageReceived(std::weak_ptr<WebViewSink> sink) {
  messages_ = std::move(sink);
}

void PlayedPage::AddNavigationStarting(std::weak_ptr<WebViewSink> sink) {
  starting_ = std::move(sink);
}

void PlayedPage::AddNavigationCompleted(std::weak_ptr<WebViewSink> sink) {
  completed_ = std::move(sink);
}

void PlayedPage::Navigate(const Wide& url) {
  if (Failed(Answer("Navigate"))) return;
  Later([url](PlayedPage& page) {
    if (const auto sink = page.starting_.lock()) sink->OnNavigationStarting();
    page.Later([url](PlayedPage& loaded) {
      const bool isSuccess = Succeeded(loaded.Answer("navigation completed"));
      if (isSuccess) loaded.address_ = url;
      if (const auto sink = loaded.completed_.lock()) sink->OnNavigationCompleted(isSuccess);
      if (isSuccess && loaded.onLoaded) loaded.onLoaded(url);
    });
  });
}

bool PlayedPage::Source(Wide& url) {
  if (closed_ || Failed(Answer("Source"))) return false;
  url = address_;
  return true;
}

void PlayedPage::ExecuteScript(const Wide& script) {
  if (Succeeded(Answer("ExecuteScript")) && onScript) onScript(script);
}

void PlayedPage::PostWebMessageAsJson(const Wide& json) {
  if (Succeeded(Answer("PostWebMessageAsJson")) && onMessage) onMessage(json);
}

std::shared_ptr<WebView> PlayedPage::GetWebView() {
  return Succeeded(Answer("CoreWebView2")) ? shared_from_this() : nullptr;
}

ResultCode PlayedPage::Close() {
  closed_ = true;
  return Answer("Close");
}

class PlayedBrowser::Environment final : public WebViewEnvironment {
 public:
  Environment(HostThread& thread, std::shared_ptr<PlayedPage> page, PlayedAnswer answer)
      : thread_(thread), page_(std::move(page)), answer_(std::move(answer)) {}

  ResultCode CreateController(std::uintptr_t, std::weak_ptr<WebViewSink> sink) override {
    const ResultCode code = answer_ ? answer_("CreateController") : kOk;
    if (Failed(code)) return code;
    const auto complete = [page = page_, answer = answer_, to = std::move(sink)] {
      const ResultCode made = answer ? answer("controller completed") : kOk;
      if (const auto held = to.lock()) {
        held->OnControllerCompleted(made, Succeeded(made) ? page : nullptr);
      }
    };
    return thread_.Post(complete) ? kOk : kFail;
  }

 private:
  HostThread& thread_;
  std::shared_ptr<PlayedPage> page_;
  PlayedAnswer answer_;
};

PlayedBrowser::PlayedBrowser(HostThread& thread, std::function<void(PlayedPage&)> onPage,
                             PlayedAnswer answer)
    : thread_(thread), onPage_(std::move(onPage)), answer_(std::move(answer)) {}

ResultCode PlayedBrowser::CreateEnvironment(const Wide&, std::weak_ptr<WebViewSink> sink) {
  const ResultCode code = answer_ ? answer_("CreateEnvironment") : kOk;
  if (Failed(code)) return code;
  page_ = std::make_shared<PlayedPage>(thread_, answer_);
  if (onPage_) onPage_(*page_);
  const auto environment = std::make_shared<Environment>(thread_, page_, answer_);
  const auto complete = [environment, answer = answer_, to = std::move(sink)] {
    const ResultCode made = answer ? answer("environment completed") : kOk;
    if (const auto held = to.lock()) {
      held->OnEnvironmentCompleted(made, Succeeded(made) ? environment : nullptr);
    }
  };
  return thread_.Post(complete) ? kOk : kFail;
}

}  // namespace quillmarch::host
