#include "pane/CPptPane.h"

#include <exception>
#include <utility>

#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "foundation/text/JsonText.h"
#include "pane/HandOver.h"
#include "pane/KeptPanes.h"
#include "pane/LivePanes.h"
#include "pane/PanelDispatch.h"

namespace quillmarch::addin {

namespace {

PaneWidthHook& WidthHook() {
  static PaneWidthHook hook;
  return hook;
}

}  // namespace

void SetPaneWidthHook(PaneWidthHook hook) {
  WidthHook() = std::move(hook);
}

std::shared_ptr<CPptPane> CPptPane::Create(PaneSurroundings surroundings) {
  ReleaseEndedPanes();
  const auto pane = std::make_shared<CPptPane>(Key{}, std::move(surroundings), HandOverBlock());
  EnterLivePane(pane.get(), pane);
  return pane;
}

CPptPane::CPptPane(Key, PaneSurroundings surroundings, HandOver& block)
    : surroundings_(std::move(surroundings)),
      hostApp_(block.app),
      windowContext_(block.context),
      paneId_(block.paneId),
      browser_(*this, std::exchange(block.pendingPage, Wide()),
               std::exchange(block.pendingMode, Wide())),
      run_(*this) {}

CPptPane::~CPptPane() {
  shuttingDown_ = 1;
  run_.FailRequests();
  LeaveLivePane(this);
  if (window_ != nullptr) window_->Destroy();
  // Waits for a worker that still runs: it may be inside the transport.
  run_.DestroyController();
}

// ---- The window --------------------------------------------------------------------------------

ResultCode CPptPane::DoVerb(std::int32_t verb, std::uintptr_t parent,
                            const std::function<ResultCode()>& stock) {
  // The host may drop the pane while its browser's failure is shown.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  LogLine(u"CPptPane DoVerb verb=" + Decimal(verb) + u" parent=" + PointerText(parent) + u" hwnd=" +
          PointerText(windowHandle_));
  if (parent != 0) parentWindow_ = parent;
  const ResultCode result = stock();
  EnsureWindowAndWebView();
  LogLine(u"CPptPane DoVerb done hr=" + HrText(result) + u" hwnd=" + PointerText(windowHandle_));
  return result;
}

void CPptPane::EnsureWindowAndWebView() {
  if (!HasWindow() && parentWindow_ != 0 && !shuttingDown()) {
    LogLine(u"CPptPane fallback create window");
    if (surroundings_.createWindow && surroundings_.createWindow(*this, parentWindow_)) {
      LogLine(u"CPptPane fallback create OK hwnd=" + PointerText(windowHandle_));
    }
  }
  if (HasWindow()) browser_.InitWebView();
}

bool CPptPane::HasWindow() const {
  return window_ != nullptr && window_->lives();
}

void CPptPane::OnCreate(std::uintptr_t handle) {
  LogLine(u"CPptPane WM_CREATE");
  windowHandle_ = handle;
  window_ = PaneWindow::Make(surroundings_.thread);
  browser_.InitWebView();
  SetPaneTimer(kWidthTimer, kWidthPollMs);
}

MessageAnswer CPptPane::OnWindowMessage(const WindowMessage& message) {
  const MessageAnswer answer = RouteFirst(message);
  if (answer.route != MessageRoute::kHandled) return answer;
  // The message may release the pane's last holder.
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
      browser_.PutBoundsOfWindow();
      return;
    case WindowMessage::kTimer:
      OnTimer(static_cast<std::uint32_t>(message.wParam));
      return;
    case WindowMessage::kDestroy:
      OnDestroy();
      return;
    default:
      // The thread's own queue carries the posted calls, so a message that claims to hold one is
      // ignored, whatever its parameters.
      return;
  }
}

void CPptPane::OnTimer(std::uint32_t id) {
  // The end of the run inside may release the pane's last holder.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  switch (id) {
    case kWidthTimer:
      // A copy, as the connection may take the hook back inside it.
      if (const PaneWidthHook hook = WidthHook()) hook(*this);
      return;
    case kDeferredStartTimer:
      run_.OnDeferredStart();
      return;
    case kRunTickTimer:
      run_.OnRunTick();
      return;
    default:
      return;
  }
}

bool CPptPane::SetPaneTimer(std::uint32_t id, std::uint32_t ms) {
  return window_ != nullptr && window_->SetTimer(id, ms, [weak = weak_from_this(), id] {
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
  if (window_ != nullptr) window_->KillTimer(id);
}

// ---- The browser's events ----------------------------------------------------------------------

ResultCode CPptPane::OnEnvironmentCompleted(ResultCode code,
                                            std::shared_ptr<WebViewEnvironment> environment) {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  return browser_.OnEnvironmentCompleted(code, std::move(environment));
}

ResultCode CPptPane::OnControllerCompleted(ResultCode code,
                                           std::shared_ptr<WebViewController> browser) {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  return browser_.OnControllerCompleted(code, std::move(browser));
}

void CPptPane::OnWebMessageReceived(const Wide& text) {
  if (shuttingDown()) return;
  // The message may release the pane's last holder.
  const std::shared_ptr<CPptPane> self = shared_from_this();
  try {
    OnWebMessage(*this, text);
  } catch (const std::exception&) {
    // Memory ran out: the message is dropped, since no action ever gets an error as its answer.
  }
}

void CPptPane::OnNavigationStarting() {
  if (!shuttingDown()) run_.transport().FailAllPendingTranslate(u"webview_navigating");
}

void CPptPane::OnNavigationCompleted(bool isSuccess) {
  if (shuttingDown()) return;
  const std::shared_ptr<CPptPane> self = shared_from_this();
  if (!isSuccess) {
    // Deliberately no second try: the browser's own error page stays.
    LogLine(u"CPptPane nav completed failed (no retry)");
    return;
  }
  browser_.RefreshCurrentPage();
  PushAccessToken();
  browser_.GoToPending();
}

void CPptPane::PushAccessToken() {
  const Wide& token = session_.accessToken();
  if (token.empty()) return;
  browser_.PostToPage(u"{\"action\":\"accessToken\",\"accessToken\":\"" + JsonEscape(token) +
                      u"\"}");
}

// ---- The end -----------------------------------------------------------------------------------

void CPptPane::BeginShutdownEarly() {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  if (shuttingDown_.exchange(1) == 0) {
    LogLine(u"PptPane BeginShutdownEarly");
    run_.ShutDown();
  }
  browser_.CloseWebView();
}

void CPptPane::OnDestroy() {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  KillPaneTimer(kWidthTimer);
  KillPaneTimer(kDeferredStartTimer);
  KillPaneTimer(kRunTickTimer);
  BeginShutdownEarly();
  if (window_ != nullptr) window_->Destroy();
  windowHandle_ = 0;
  browser_.CloseWebView();
  RunReferences references = run_.TakeReferences();
  if (references.pane != nullptr) KeepPane(std::move(references));
}

void CPptPane::FinalRelease() {
  shuttingDown_ = 1;
  run_.FailRequests();
  hostApp_.Reset();
}

}  // namespace quillmarch::addin
