// The user's desktop as Windows serves it. Windows only.
#pragma once

#include "foundation/seams/Desktop.h"

namespace quillmarch {

class SystemDesktop final : public Desktop {
 public:
  void ShowMessage(std::uintptr_t owner, const Wide& text, const Wide& title,
                   std::uint32_t style) override;
  void PutClipboardText(std::uintptr_t owner, const Wide& text) override;
  std::intptr_t OpenInBrowser(const Wide& url) override;
};

}  // namespace quillmarch
