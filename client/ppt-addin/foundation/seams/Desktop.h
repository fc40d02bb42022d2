// What the add-in asks of the user's desktop. Host thread only.
#pragma once

#include <cstdint>

#include "foundation/text/Wide.h"

namespace quillmarch {

class Desktop {
 public:
  // Styles of a message, as MessageBoxW numbers them.
  static constexpr std::uint32_t kIconError = 0x10;
  static constexpr std::uint32_t kIconWarning = 0x30;
  static constexpr std::uint32_t kSetForeground = 0x10000;

  virtual ~Desktop() = default;

  // Returns when the user has closed it; timers and posts run meanwhile. `owner` is a window, or 0.
  virtual void ShowMessage(std::uintptr_t owner, const Wide& text, const Wide& title,
                           std::uint32_t style) = 0;

  // Puts the text and its terminator on the clipboard, and nothing else. Any failure leaves the
  // caller nothing to do.
  virtual void PutClipboardText(std::uintptr_t owner, const Wide& text) = 0;

  // What ShellExecuteW gives for the verb "open": 32 or less is a failure.
  virtual std::intptr_t OpenInBrowser(const Wide& url) = 0;
};

}  // namespace quillmarch
