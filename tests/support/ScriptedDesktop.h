// A desktop for tests: remembers what was shown, copied and opened, in order.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "foundation/seams/Desktop.h"

namespace quillmarch::addin::test {

class ScriptedDesktop final : public Desktop {
 public:
  struct Message {
    std::uintptr_t owner = 0;
    Wide text;
    Wide title;
    std::uint32_t style = 0;
  };

  void ShowMessage(std::uintptr_t owner, const Wide& text, const Wide& title,
                   std::uint32_t style) override {
    messages.push_back({owner, text, title, style});
    if (whileShown) whileShown();
  }
  void PutClipboardText(std::uintptr_t owner, const Wide& text) override {
    copied.push_back(text);
    copyOwners.push_back(owner);
  }
  std::intptr_t OpenInBrowser(const Wide& url) override {
    opened.push_back(url);
    return openResult;
  }

  std::vector<Message> messages;
  std::function<void()> whileShown;  // runs before the user closes the message
  std::vector<Wide> copied;
  std::vector<std::uintptr_t> copyOwners;
  std::vector<Wide> opened;
  std::intptr_t openResult = 42;
};

}  // namespace quillmarch::addin::test
