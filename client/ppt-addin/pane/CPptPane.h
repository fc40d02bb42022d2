// The pane of one document window: it holds the web view, understands the page's messages and owns
// the window's run. Everything here belongs to the host thread, save what says otherwise.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"
#include "foundation/seams/Desktop.h"
#include "foundation/seams/FontList.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/InputState.h"
#include "foundation/seams/WebView.h"
#include "foundation/settings/TargetStyle.h"
#include "foundation/transport/Endpoint.h"
#include "pane/MessageMap.h"
#include "pane/PaneWindow.h"
#include "pane/PanelTransport.h"
#include "run/PptCtrl.h"

namespace quillmarch::addin {

class CPptPane;

// A window's client area in pixels.
struct ClientSize {
  std::int32_t width = 0;
  std::int32_t height = 0;
};

// What panes stand in. All of it outlives every pane.
struct PaneSurroundings {
  HostThread& thread;
  InputState& input;
  FontList& fonts;
  RunObserver observer;  // gets the record of each run's end; may be empty
  // Begins to make a browser that needs no loader and comes by AttachWebView; may be empty.
  std::function<void(CPptPane&)> startWebView;
  // Makes and shows the pane's window below `parent`, for hosts that do not: default rectangle, no
  // title, kFallbackStyle; calls OnCreate before it returns. False when there is none; may be
  // empty.
  std::function<bool(CPptPane&, std::uintptr_t parent)> createWindow;
  std::uint32_t bridgeWaitMs = kBridgeWaitMs;  // how long the page may take over a request
  WebViewLoader* loader = nullptr;             // null: the browser comes by startWebView
  Desktop* desktop = nullptr;                  // goes with the loader
  // The client area of the pane's window; empty counts as no area.
  std::function<ClientSize(const CPptPane&)> clientSize = nullptr;
  // A reference to the object that the host knows the pane by; a run holds one. May be empty.
  std::function<std::shared_ptr<void>(CPptPane&)> holdObject = nullptr;
};

class CPptPane final : public std::enable_shared_from_this<CPptPane>, public WebViewSink {
  struct Key {};  // lets Create alone construct

 public:
  static constexpr std::uint32_t kWidthTimer = 1;
  static constexpr std::uint32_t kDeferredStartTimer = 2;
  static constexpr std::uint32_t kRunTickTimer = 3;
  static constexpr std::uint32_t kWidthPollMs = 300;
  static constexpr std::uint32_t kDeferredStartMs = 150;
  static constexpr std::uint32_t kRunTickMs = 120;
  // WS_CHILD, WS_CLIPSIBLINGS, WS_CLIPCHILDREN; a window that is activated in place is made visible
  // as well.
  static constexpr std::uint32_t kFallbackStyle = 0x46000000;
  static constexpr std::uint32_t kWindowStyle = 0x56000000;
  static constexpr char16_t kWindowClass[] = u"QuillmarchPptPaneWnd";

  // Takes the hand-over block and enters LivePanes. The pane lives as long as somebody holds it; a
  // run holds it too.
  static std::shared_ptr<CPptPane> Create(PaneSurroundings surroundings);
  CPptPane(Key, PaneSurroundings surroundings);
  ~CPptPane();
  CPptPane(const CPptPane&) = delete;
  CPptPane& operator=(const CPptPane&) = delete;

  // ---- The window (CPptPane.cpp) ---------------------------------------------------------------

  // `parent` is remembered when it is not 0. `stock` is the base's own handling, whose result is
  // this one's.
  ResultCode DoVerb(std::int32_t verb, std::uintptr_t parent,
                    const std::function<ResultCode()>& stock);
  void EnsureWindowAndWebView();
  // Every message of the window comes here first.
  MessageAnswer OnWindowMessage(const WindowMessage& message);
  void OnCreate(std::uintptr_t handle);
  void OnSize(std::int32_t width, std::int32_t height);  // client pixels
  void OnTimer(std::uint32_t id);
  void OnDestroy();
  bool HasWindow() const;

  // ---- The web view (WebViewHost.cpp) ----------------------------------------------------------

  // Begins to make the browser, once for each pane.
  void InitWebView();
  // A browser that is ready, with its page loaded or loading.
  void AttachWebView(std::shared_ptr<WebViewController> browser, std::shared_ptr<WebView> view);
  void CloseWebView();
  // The browser's events.
  ResultCode OnEnvironmentCompleted(ResultCode code,
                                    std::shared_ptr<WebViewEnvironment> environment) override;
  ResultCode OnControllerCompleted(ResultCode code,
                                   std::shared_ptr<WebViewController> browser) override;
  void OnWebMessageReceived(const Wide& text) override;
  void OnNavigationStarting() override;
  void OnNavigationCompleted(bool isSuccess) override;
  // Tells log, service and user that there is no browser. `stage` is one of "userdata", "create",
  // "environment", "controller", "core".
  void ReportWebViewFailure(const char16_t* stage, ResultCode code);
  // Each does nothing without a page or once the pane is shutting down.
  void RunScript(const Wide& script);
  void PostToPage(const Wide& json);
  // Calls a function of the page, if the page has it, with `payload` as its one argument.
  void CallPage(const char16_t* name, const Wide& payload);

  // ---- The pages (PanelPages.cpp) --------------------------------------------------------------

  Wide BuildPanelUrl(const Wide& page);
  void NavigateTo(const Wide& page);
  // Finds out from the browser which page it shows.
  void RefreshCurrentPage();
  // What the ribbon asks for: a page other than the one shown is gone to, now or when the browser
  // is there; the translate page that is shown gets the pending mode alone.
  void SetPanelPage(const Wide& page);
  void SetMode(const Wide& mode);

  // ---- The page's messages (PanelDispatch.cpp) -------------------------------------------------

  void OnWebMessage(const Wide& text);
  void PushAccessToken();
  void PushSelectionPreview();
  void CancelRun();

  // ---- The run (PaneRun.cpp) -------------------------------------------------------------------

  // Starts a run as the message says, or keeps the message while a mutation of the host is under
  // way. Drops it during a run.
  void StartRun(const Wide& message);

  // ---- The end (PaneShutdown.cpp) --------------------------------------------------------------

  // Ends requests, run and web view; waits up to 2000 ms for the run's worker.
  void BeginShutdownEarly();
  // Nobody holds the object that the host knows the pane by any more.
  void FinalRelease();

  // ---- Fields ----------------------------------------------------------------------------------

  ObjectRef hostApp;
  std::shared_ptr<PaneWindow> window;  // made once, kept when it has gone
  std::shared_ptr<WebViewEnvironment> webEnvironment;
  std::shared_ptr<WebViewController> webController;
  std::shared_ptr<WebView> webView;
  std::atomic<std::uint8_t> shuttingDown{0};  // any thread
  std::uintptr_t windowHandle = 0;            // for the log; 0 when there is no window
  std::uintptr_t parentWindow = 0;
  bool webViewStarted = false;
  Wide apiHost = DefaultEndpoint().host;
  std::uint16_t apiPort = DefaultEndpoint().port;
  bool apiSecure = DefaultEndpoint().useHttps;
  Wide accessToken;
  Wide mode = u"full";
  Wide currentPage = u"translate";
  Wide pendingPage = u"translate";
  Wide pendingMode = u"full";
  WindowContext windowContext;
  std::int32_t paneId = 0;

  bool nativeTranslateViaJs = true;
  std::vector<Wide> glossaryIds;
  Wide globalInstructionId;
  TargetStyle targetStyle;
  Wide deferredStart;
  bool deferredStartArmed = false;
  std::atomic<std::uint8_t> runActive{0};  // any thread
  std::uint64_t currentRunId = 0;
  RunSink runSink;
  TranslateConfig* runControl = nullptr;  // set by the controller while its run lasts
  std::unique_ptr<PptCtrl> controller;

 private:
  void FinalConstruct();
  void Serve(const WindowMessage& message);
  void PutBoundsOfWindow();
  void SetAccessToken(const Wide& token);
  void HandleTerminology(const Wide& message);
  void PostFontList();
  bool SetPaneTimer(std::uint32_t id, std::uint32_t ms);
  void KillPaneTimer(std::uint32_t id);

  bool DeferStart(const Wide& message);
  void DropDeferredStart();
  void OnDeferredStart();
  RunParams MakeRunParams(const Wide& message, Scope scope, std::uint64_t runId);
  void ReadTransport(const Wide& message);
  ResolveTerminologyHook MakeTerminologyHook();
  void BeginRun(const Wide& message, Scope scope);
  void OnRunTick();
  void EndRun();
  void StopFlags();

  PaneSurroundings surroundings_;
  std::uintptr_t webViewParent_ = 0;  // the window that the browser was begun for
  // As webView, for threads that may not touch it.
  std::atomic<bool> pageThere_{false};
  PanelTransport transport_;
  // A call of the controller is on the stack; a host call inside it may have let a timer in, which
  // must not end the run beneath it.
  bool inController_ = false;
  std::shared_ptr<CPptPane> runReference_;  // this, while a run lives
  std::shared_ptr<void> runHoldsObject_;    // the host's object, as long
};

// The token of the page that signed in last, for panes made later.
Wide& ProcessAccessToken();

// What timer 1 of every pane calls; empty calls nothing.
using PaneWidthHook = std::function<void(CPptPane&)>;
void SetPaneWidthHook(PaneWidthHook hook);

// A pane whose window went while its worker hung lives on, for the worker holds pointers into it.
// Lets go of those whose workers have ended since; gives the number of those that have not. Every
// new pane does this too.
std::size_t ReleaseEndedPanes();

}  // namespace quillmarch::addin
