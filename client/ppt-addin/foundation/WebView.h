// The browser of a pane as the add-in uses it. Host thread only. No call waits for the page.
#pragma once

#include <cstdint>

#include "foundation/ResultCode.h"
#include "foundation/Wide.h"

class WebView {
 public:
  virtual ~WebView() = default;

  // Runs a script in the page that is loaded; its value and its errors are dropped.
  virtual void ExecuteScript(const Wide& script) = 0;

  // Hands the page one JSON text as a message.
  virtual void PostWebMessageAsJson(const Wide& json) = 0;

  // The place of the page in the pane's window, in its client pixels.
  virtual void PutBounds(std::int32_t width, std::int32_t height) = 0;

  // Ends the browser. No other call follows.
  virtual ResultCode Close() = 0;
};
