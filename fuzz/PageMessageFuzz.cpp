// Any text whatever as a message of the panel's page: no crash, no hang, and no run is left behind.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "pane/CPptPane.h"
#include "pane/PanelTransport.h"

namespace {

// Without a deck: every run is turned away in its start, so no worker ever lives.
class FuzzThread final : public HostThread {
 public:
  std::uint64_t TickCount() override { return ++ticks_; }
  void Sleep(std::uint32_t) override {}
  bool PumpUntil(const std::function<bool()>& done, std::uint32_t) override {
    RunPosts();
    return done();
  }
  bool Post(Callable call) override {
    posts_.push_back(std::move(call));
    return true;
  }
  bool SetTimer(TimerId, std::uint32_t, Callable) override { return true; }
  void KillTimer(TimerId) override {}
  void OutsideWorkBegins() override {}
  void OutsideWorkEnds() override {}
  bool OnHostThread() const override { return true; }

  void RunPosts() {
    while (!posts_.empty()) {
      const Callable call = std::move(posts_.front());
      posts_.pop_front();
      call();
    }
  }

 private:
  std::uint64_t ticks_ = 0;
  std::deque<Callable> posts_;
};

class NoHands final : public InputState {
 public:
  bool LeftButtonDown() override { return false; }
  bool HasCapture() override { return false; }
  std::uint32_t QueueStatus(std::uint32_t) override { return 0; }
};

class TwoFonts final : public FontList {
 public:
  std::vector<Wide> FamilyNames() override { return {u"Arial", u"@Mincho"}; }
};

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

void Hear(CPptPane& pane, FuzzThread& thread, const Wide& text) {
  pane.OnWebMessageReceived(text);
  thread.RunPosts();
  Require(pane.runActive == 0);
  Require(pane.targetStyle.bold >= -1 && pane.targetStyle.bold <= 1);
}

// The text as the rest of both answers that a run waits for.
void Answer(FuzzThread& thread, const Wide& text) {
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
  static FuzzThread thread;
  static NoHands hands;
  static TwoFonts fonts;
  const std::shared_ptr<CPptPane> pane = CPptPane::Create({thread, hands, fonts, {}, {}, {}});
  pane->OnCreate(1);
  pane->AttachWebView(nullptr, std::make_shared<DeafPage>());
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
