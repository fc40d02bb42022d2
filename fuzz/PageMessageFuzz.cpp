// Any text whatever as a message of the panel's page: no crash, no hang, and no run is left behind.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include "pane/CPptPane.h"
#include "pane/PanelTransport.h"
#include "support/IdleSurroundings.h"

namespace quillmarch::host {

using namespace addin;

namespace {

class DeafPage final : public WebView {
 public:
  std::shared_ptr<WebViewSettings> Settings() override { return nullptr; }
  void AddWebMessageReceived(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationStarting(std::weak_ptr<WebViewSink>) override {}
  void AddNavigationCompleted(std::weak_ptr<WebViewSink>) override {}
  void Navigate(const Wide&) override {}
  bool Source(Wide&) override { return false; }
  void ExecuteScript(const Wide&) override {}
  void PostWebMessageAsJson(const Wide&) override {}
};

void Require(bool holds) {
  if (!holds) std::abort();
}

void Hear(CPptPane& pane, test::IdleThread& thread, const Wide& text) {
  pane.OnWebMessageReceived(text);
  thread.RunPosts();
  Require(!pane.run().runActive());
  Require(pane.session().targetStyle().bold >= -1 && pane.session().targetStyle().bold <= 1);
}

// The text as the rest of both answers that a run waits for.
void Answer(test::IdleThread& thread, const Wide& text) {
  PanelTransport* asked = nullptr;
  PanelTransport transport({thread, [] { return true; },
                            [&](const Wide&) {
                              thread.Post([&] {
                                asked->CompleteTranslate(u"{\"requestId\":\"ppttr_1\"," + text);
                                asked->CompleteTerminology(u"{\"requestId\":\"pptterm_2\"," + text);
                              });
                            }});
  asked = &transport;
  const TranslateBatchResult result = transport.TranslateViaPage({});
  Require(result.code != u"request_timeout" || text.find(u"request_timeout") != Wide::npos);
  Require(result.ok || result.translations.empty());
  Wide instruction;
  Wide code;
  Wide message;
  std::vector<GlossaryEntry> glossary;
  if (!transport.ResolveTerminologyViaPage({}, {}, {}, instruction, glossary, code, message)) {
    Require(glossary.empty());
  }
  for (const GlossaryEntry& entry : glossary) {
    Require(!entry.source.empty() && !entry.target.empty());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Without a deck: every run is turned away in its start, so no worker ever lives.
  static test::IdleThread thread;
  static UnattendedInput hands;
  static test::TwoFonts fonts;
  const std::shared_ptr<CPptPane> pane = CPptPane::Create({thread, hands, fonts, {}, {}, {}});
  pane->OnCreate(1);
  pane->browser().AttachWebView(nullptr, std::make_shared<DeafPage>());
  const Wide text = ToWide({reinterpret_cast<const char*>(data), size});
  Hear(*pane, thread, text);
  // The same text behind every action, so that each of them reads it.
  for (const WideView action :
       {u"start", u"startSelection", u"requestSelectionPreview", u"cancel", u"pause", u"resume",
        u"setTargetStyle", u"setAccessToken", u"requestAccessToken", u"getFontList", u"trace",
        u"translateBatchResult", u"terminologyResolveResult", u"docKeyGet"}) {
    Hear(*pane, thread, u"{\"action\":\"" + Wide(action) + u"\"," + text);
  }
  pane->OnDestroy();
  Answer(thread, text);
  return 0;
}

}  // namespace quillmarch::host
