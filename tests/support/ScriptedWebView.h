// A page for tests: remembers what the pane tells it, in order, and lets the test answer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundation/WebView.h"

namespace test {

class ScriptedWebView final : public WebView {
 public:
  struct Call {
    bool isScript = false;  // else a message
    Wide text;
  };

  void ExecuteScript(const Wide& script) override {
    calls.push_back({true, script});
    if (onScript) onScript(script);
  }
  void PostWebMessageAsJson(const Wide& json) override {
    calls.push_back({false, json});
    if (onMessage) onMessage(json);
  }
  void PutBounds(std::int32_t w, std::int32_t h) override {
    width = w;
    height = h;
  }
  ResultCode Close() override {
    ++closed;
    return closeResult;
  }

  // In UTF-8.
  std::vector<std::string> Scripts() const { return Texts(true); }
  std::vector<std::string> Messages() const { return Texts(false); }

  std::vector<Call> calls;
  std::function<void(const Wide&)> onScript;
  std::function<void(const Wide&)> onMessage;
  std::int32_t width = 0;
  std::int32_t height = 0;
  int closed = 0;
  ResultCode closeResult = kOk;

 private:
  std::vector<std::string> Texts(bool scripts) const {
    std::vector<std::string> texts;
    for (const Call& call : calls) {
      if (call.isScript == scripts) texts.push_back(ToUtf8(call.text));
    }
    return texts;
  }
};

}  // namespace test
