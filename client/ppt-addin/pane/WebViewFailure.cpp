#include "pane/WebViewFailure.h"

#include <atomic>
#include <exception>

#include "foundation/identity/Analytics.h"
#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "foundation/settings/DisplayLanguage.h"

namespace quillmarch::addin {

namespace {

constexpr char16_t kSupportHandle[] = u"Quillmarch-1";  // of the service's support account

std::atomic<std::uint32_t> failureDialogShown{0};

// Whether this is the process's first call.
bool TakeFailureDialog() {
  std::uint32_t untaken = 0;
  return failureDialogShown.compare_exchange_strong(untaken, 1);
}

}  // namespace

void ForgetFailureDialog() {
  failureDialogShown = 0;
}

void ReportWebViewFailure(const char16_t* stage, ResultCode code, Desktop* desktop,
                          const std::function<std::uintptr_t()>& owner) {
  LogLine(u"PptPane WebView2 " + Wide(stage) + u" failed hr=" + HrText(code));
  try {
    SendWebViewInitError(stage, static_cast<std::uint32_t>(code));
  } catch (const std::exception&) {
    // No thread could be had: the user is told all the same.
  }
  if (!TakeFailureDialog() || desktop == nullptr) return;
  desktop->ShowMessage(owner(), Text(u"msg.webview2.body"), Text(u"msg.title"),
                       Desktop::kIconWarning | Desktop::kSetForeground);
  desktop->PutClipboardText(owner(), kSupportHandle);
}

}  // namespace quillmarch::addin
