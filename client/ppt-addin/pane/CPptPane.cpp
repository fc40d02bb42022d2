#include "pane/CPptPane.h"

#include <array>
#include <exception>
#include <utility>

#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "pane/HandOver.h"
#include "pane/LivePanes.h"

namespace quillmarch::addin {

namespace {

PaneWidthHook& WidthHook() {
  static PaneWidthHook hook;
  return hook;
}

}  // namespace

Wide& ProcessAccessToken() {
  static Wide token;
  return token;
}

void SetPaneWidthHook(PaneWidthHook hook) {
  WidthHook() = std::move(hook);
}

std::shared_ptr<CPptPane> CPptPane::Create(PaneSurroundings surroundings) {
  ReleaseEndedPanes();
  const auto pane = std::make_shared<CPptPane>(Key{}, std::move(surroundings));
  pane->FinalConstruct();
  return pane;
}

CPptPane::CPptPane(Key, PaneSurroundings surroundings)
    : surroundings_(std::move(surroundings)),
      transport_({surroundings_.thread, [this] { return shuttingDown == 0 && pageThere_; },
                  [this](Wide json) {
                    PostToPane(window, [pane = weak_from_this(), json = std::move(json)] {
                      if (const auto held = pane.lock()) held->PostToPage(json);
                    });
                  },
                  surroundings_.bridgeWaitMs}) {}

CPptPane::~CPptPane() {
  shuttingDown = 1;
  transport_.FailAllPendingTranslate(u"addin_shutdown");
  LeaveLivePane(this);
  if (window != nullptr) window->Destroy();
  // Waits for a worker that still runs: it may be inside the transport.
  controller.reset();
}

void CPptPane::FinalConstruct() {
  HandOver& block = HandOverBlock();
  if (block.app && block.app.get() != hostApp.get()) hostApp = block.app;
  windowContext = block.context;
  paneId = block.paneId;
  if (!block.pendingPage.empty()) pendingPage = std::exchange(block.pendingPage, Wide());
  if (!block.pendingMode.empty()) pendingMode = std::exchange(block.pendingMode, Wide());
  if (!ProcessAccessToken().empty()) accessToken = ProcessAccessToken();
  EnterLivePane(this, weak_from_this());
}

ResultCode CPptPane::DoVerb(std::int32_t verb, std::uintptr_t parent,
                            const std::function<ResultCode()>& stock) {
  // The host may drop the pane while its browser's failure is shown.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  LogLine(u"CPptPane DoVerb verb=" + Decimal(verb) + u" parent=" + PointerText(parent) + u" hwnd=" +
          PointerText(windowHandle));
  if (parent != 0) parentWindow = parent;
  const ResultCode result = stock();
  EnsureWindowAndWebView();
  LogLine(u"CPptPane DoVerb done hr=" + HrText(result) + u" hwnd=" + PointerText(windowHandle));
  return result;
}

void CPptPane::EnsureWindowAndWebView() {
  if (!HasWindow() && parentWindow != 0 && shuttingDown == 0) {
    LogLine(u"CPptPane fallback create window");
    if (surroundings_.createWindow && surroundings_.createWindow(*this, parentWindow)) {
      LogLine(u"CPptPane fallback create OK hwnd=" + PointerText(windowHandle));
    }
  }
  if (HasWindow()) InitWebView();
}

bool CPptPane::HasWindow() const {
  return window != nullptr && window->lives();
}

void CPptPane::OnCreate(std::uintptr_t handle) {
  LogLine(u"CPptPane WM_CREATE");
  windowHandle = handle;
  window = PaneWindow::Make(surroundings_.thread);
  InitWebView();
  SetPaneTimer(kWidthTimer, kWidthPollMs);
}

void CPptPane::OnSize(std::int32_t width, std::int32_t height) {
  if (const std::shared_ptr<WebViewController> browser = webController) {
    browser->PutBounds(width, height);
  }
}

MessageAnswer CPptPane::OnWindowMessage(const WindowMessage& message) {
  const MessageAnswer answer = RouteFirst(message);
  if (answer.route != MessageRoute::kHandled) return answer;
  // The message may let go of the pane's last holder.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  try {
    Serve(message);
  } catch (const std::exception&) {
    // Memory ran out: the message is served as far as it got.
  }
  return answer;
}

void CPptPane::Serve(const WindowMessage& message) {
  switch (message.message) {
    case WindowMessage::kCreate:
      OnCreate(message.window);
      return;
    case WindowMessage::kSize:
      PutBoundsOfWindow();
      return;
    case WindowMessage::kTimer:
      OnTimer(static_cast<std::uint32_t>(message.wParam));
      return;
    case WindowMessage::kDestroy:
      OnDestroy();
      return;
    default:
      // The thread's own queue carries the posted calls: a message that says it holds one is
      // nobody's, whatever stands in it.
      return;
  }
}

void CPptPane::OnTimer(std::uint32_t id) {
  // The run's end inside may let go of the pane's last holder.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  switch (id) {
    case kWidthTimer:
      // A copy, as the connection may take the hook back inside it.
      if (const PaneWidthHook hook = WidthHook()) hook(*this);
      return;
    case kDeferredStartTimer:
      OnDeferredStart();
      return;
    case kRunTickTimer:
      OnRunTick();
      return;
    default:
      return;
  }
}

bool CPptPane::SetPaneTimer(std::uint32_t id, std::uint32_t ms) {
  return window != nullptr && window->SetTimer(id, ms, [weak = weak_from_this(), id] {
    const std::shared_ptr<CPptPane> pane = weak.lock();
    if (pane == nullptr) return;
    try {
      pane->OnTimer(id);
    } catch (const std::exception&) {
      // Memory ran out: the next tick takes the work up again.
    }
  });
}

void CPptPane::KillPaneTimer(std::uint32_t id) {
  if (window != nullptr) window->KillTimer(id);
}

void CPptPane::RunScript(const Wide& script) {
  if (shuttingDown != 0) return;
  if (const std::shared_ptr<WebView> view = webView) view->ExecuteScript(script);
}

void CPptPane::PostToPage(const Wide& json) {
  if (shuttingDown != 0) return;
  if (const std::shared_ptr<WebView> view = webView) view->PostWebMessageAsJson(json);
}

void CPptPane::CallPage(const char16_t* name, const Wide& payload) {
  const Wide function = Wide(u"window.") + name;
  Wide script;
  script.reserve(2 * function.size() + payload.size() + 4);
  (((((script += function) += u"&&") += function) += u'(') += payload) += u')';
  RunScript(script);
}

}  // namespace quillmarch::addin
