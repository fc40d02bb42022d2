// The browser control that the system has, found through the loader library beside the module.
// Windows only.
#pragma once

#include "foundation/WebView.h"

class InstalledBrowser final : public WebViewLoader {
 public:
  // "file not found" where there is no loader library, and whatever the loader fails with at once.
  ResultCode CreateEnvironment(const Wide& userDataFolder,
                               std::weak_ptr<WebViewSink> sink) override;
};
