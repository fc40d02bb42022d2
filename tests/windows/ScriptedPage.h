// The page behind a stand-in view, as the test plays it: what it was told, in order, and what it
// says.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "foundation/system/WinText.h"
#include "foundation/text/JsonText.h"
#include "windows/browser/StandInBrowser.h"

namespace quillmarch::addin::winhost {

// Kept by the test beyond the view's end.
struct PageRecord {
  std::vector<std::wstring> navigations;
  std::vector<std::wstring> scripts;
  std::vector<std::wstring> messages;
  std::vector<RECT> bounds;
  bool closed = false;
  standin::PageEvents* events = nullptr;  // null when the view has gone

  void Say(const std::wstring& json) {
    if (events != nullptr) events->OnMessage(json);
  }
  // A page that is loaded as it was asked for.
  void Load(bool success = true) {
    if (events != nullptr) events->OnNavigationStarting();
    if (events != nullptr) events->OnNavigationCompleted(success);
  }
  // How often a page function was called.
  std::size_t Called(const std::wstring& function) const {
    return static_cast<std::size_t>(
        std::count_if(scripts.begin(), scripts.end(), [&](const std::wstring& script) {
          return script.starts_with(L"window." + function + L"&&");
        }));
  }
  // The argument of the last call; empty without one.
  Wide Payload(const std::wstring& function) const {
    const std::wstring head = L"window." + function + L"&&window." + function + L"(";
    for (auto at = scripts.rbegin(); at != scripts.rend(); ++at) {
      if (at->starts_with(head)) {
        return FromWinText(at->substr(head.size(), at->size() - head.size() - 1));
      }
    }
    return {};
  }
  // Messages of one action.
  std::vector<Wide> Messages(WideView action) const {
    std::vector<Wide> found;
    for (const std::wstring& message : messages) {
      const Wide json = FromWinText(message);
      if (JsonGetString(json, u"action") == action) found.push_back(json);
    }
    return found;
  }
};

class ScriptedPage final : public standin::PageBackend {
 public:
  ScriptedPage(std::shared_ptr<PageRecord> record, standin::PageEvents& events)
      : record_(std::move(record)) {
    record_->events = &events;
  }
  ~ScriptedPage() override { record_->events = nullptr; }
  ScriptedPage(const ScriptedPage&) = delete;
  ScriptedPage& operator=(const ScriptedPage&) = delete;

  void Navigate(const std::wstring& url) override { record_->navigations.push_back(url); }
  std::wstring Source() override {
    return record_->navigations.empty() ? L"about:blank" : record_->navigations.back();
  }
  void ExecuteScript(const std::wstring& script) override { record_->scripts.push_back(script); }
  void PostMessageAsJson(const std::wstring& json) override { record_->messages.push_back(json); }
  void PutBounds(const RECT& bounds) override { record_->bounds.push_back(bounds); }
  void Close() override {
    record_->closed = true;
    record_->events = nullptr;
  }

 private:
  std::shared_ptr<PageRecord> record_;
};

}  // namespace quillmarch::addin::winhost
