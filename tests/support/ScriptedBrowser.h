// The making of a browser as a test steers it: each stage is completed when the test says so.
#pragma once

#include <memory>
#include <vector>

#include "support/ScriptedWebView.h"

namespace quillmarch::addin::test {

class ScriptedBrowser final : public WebViewLoader {
 public:
  ResultCode CreateEnvironment(const Wide& userDataFolder,
                               std::weak_ptr<WebViewSink> sink) override {
    folders.push_back(userDataFolder);
    sink_ = std::move(sink);
    return createResult;
  }

  // The two completions; a failure comes without an object.
  ResultCode CompleteEnvironment(ResultCode code = kOk, bool withObject = true) {
    std::shared_ptr<Environment> made;
    if (withObject && Succeeded(code)) made = std::make_shared<Environment>(*this);
    environment = made;
    return sink_.lock()->OnEnvironmentCompleted(code, std::move(made));
  }
  ResultCode CompleteController(ResultCode code = kOk, bool withObject = true) {
    const bool has = withObject && Succeeded(code);
    return sink_.lock()->OnControllerCompleted(code, has ? page : nullptr);
  }
  // Both, as they come without a fault.
  void Complete() {
    CompleteEnvironment();
    CompleteController();
  }

  std::shared_ptr<ScriptedWebView> page = std::make_shared<ScriptedWebView>();
  ResultCode createResult = kOk;
  ResultCode controllerResult = kOk;
  std::vector<Wide> folders;                      // of each environment asked for
  std::vector<std::uintptr_t> parents;            // of each controller asked for
  std::weak_ptr<WebViewEnvironment> environment;  // the last one

 private:
  class Environment final : public WebViewEnvironment {
   public:
    explicit Environment(ScriptedBrowser& browser) : browser_(browser) {}
    ResultCode CreateController(std::uintptr_t parentWindow, std::weak_ptr<WebViewSink>) override {
      browser_.parents.push_back(parentWindow);
      return browser_.controllerResult;
    }

   private:
    ScriptedBrowser& browser_;
  };

  std::weak_ptr<WebViewSink> sink_;
};

}  // namespace quillmarch::addin::test
