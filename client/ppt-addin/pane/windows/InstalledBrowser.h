// The browser control that the system has, found through the loader library beside the module.
// Windows only.
#pragma once

#include "foundation/seams/WebView.h"

namespace quillmarch::addin {

class InstalledBrowser final : public WebViewLoader {
 public:
  // "file not found" where there is no loader library, otherwise whatever the loader fails with at
  // once.
  ResultCode CreateEnvironment(const Wide& userDataFolder,
                               std::weak_ptr<WebViewSink> sink) override;
};

}  // namespace quillmarch::addin
