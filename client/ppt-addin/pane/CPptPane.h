// The pane of one document window: it holds the web view, understands the page's messages and owns
// the window's run. Everything here belongs to the host thread, save what says otherwise.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "foundation/AutomationObject.h"
#include "foundation/FontList.h"
#include "foundation/HostThread.h"
#include "foundation/InputState.h"
#include "foundation/TargetStyle.h"
#include "foundation/WebView.h"
#include "foundation/WindowContext.h"
#include "pane/PaneWindow.h"
#include "pane/PanelTransport.h"
#include "run/PptCtrl.h"
#include "translate/Endpoint.h"

class CPptPane;

// What panes stand in. All of it outlives every pane.
struct PaneSurroundings {
  HostThread& thread;
  InputState& input;
  FontList& fonts;
  RunObserver observer;  // gets the record of each run's end; may be empty
  // Begins to make the browser, which comes later by AttachWebView; may be empty.
  std::function<void(CPptPane&)> startWebView;
  // Makes the pane's window below `parent`, for hosts that do not: calls OnCreate before it
  // returns. False when there is none; may be empty.
  std::function<bool(CPptPane&, std::uintptr_t parent)> createWindow;
  std::uint32_t bridgeWaitMs = kBridgeWaitMs;  // how long the page may take over a request
};

class CPptPane : public std::enable_shared_from_this<CPptPane> {
  struct Key {};  // lets Create alone construct

 public:
  static constexpr std::uint32_t kWidthTimer = 1;
  static constexpr std::uint32_t kDeferredStartTimer = 2;
  static constexpr std::uint32_t kRunTickTimer = 3;
  static constexpr std::uint32_t kWidthPollMs = 300;
  static constexpr std::uint32_t kDeferredStartMs = 150;
  static constexpr std::uint32_t kRunTickMs = 120;

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
  void OnCreate(std::uintptr_t handle);
  void OnSize(std::int32_t width, std::int32_t height);  // client pixels
  void OnTimer(std::uint32_t id);
  void OnDestroy();
  bool HasWindow() const;

  // ---- The web view (CPptPane.cpp) -------------------------------------------------------------

  void InitWebView();
  void AttachWebView(std::shared_ptr<WebView> view);
  void CloseWebView();
  // The browser's events. Messages are JSON texts.
  void OnWebMessageReceived(const Wide& text);
  void OnNavigationStarting();
  // Each does nothing without a page or once the pane is shutting down.
  void RunScript(const Wide& script);
  void PostToPage(const Wide& json);
  // Calls a function of the page, if the page has it, with `payload` as its one argument.
  void CallPage(const char16_t* name, const Wide& payload);

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

  // ---- Fields ----------------------------------------------------------------------------------

  ObjectRef hostApp;
  std::shared_ptr<PaneWindow> window;  // made once, kept when it has gone
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
  // As webView, for threads that may not touch it.
  std::atomic<bool> pageThere_{false};
  PanelTransport transport_;
  // A call of the controller is on the stack; a host call inside it may have let a timer in, which
  // must not end the run beneath it.
  bool inController_ = false;
  std::shared_ptr<CPptPane> runReference_;  // this, while a run lives
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
