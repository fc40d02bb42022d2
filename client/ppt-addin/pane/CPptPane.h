// The pane of one document window: its window, its timers and the order in which it ends. What the
// pane shows, runs and remembers is in its parts. Everything here belongs to the host thread,
// except where noted.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

#include "foundation/automation/AutomationObject.h"
#include "foundation/automation/WindowContext.h"
#include "foundation/seams/WebView.h"
#include "pane/MessageMap.h"
#include "pane/PaneBrowser.h"
#include "pane/PaneRun.h"
#include "pane/PaneSession.h"
#include "pane/PaneSurroundings.h"
#include "pane/PaneWindow.h"

namespace quillmarch::addin {

struct HandOver;

class CPptPane final : public std::enable_shared_from_this<CPptPane>, public WebViewSink {
  struct Key {};  // lets only Create construct

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
  CPptPane(Key, PaneSurroundings surroundings, HandOver& block);
  ~CPptPane();
  CPptPane(const CPptPane&) = delete;
  CPptPane& operator=(const CPptPane&) = delete;

  // ---- Its parts -------------------------------------------------------------------------------

  PaneBrowser& browser() { return browser_; }
  PaneRun& run() { return run_; }
  PaneSession& session() { return session_; }

  // ---- What its parts share --------------------------------------------------------------------

  const PaneSurroundings& surroundings() const { return surroundings_; }
  const ObjectRef& hostApp() const { return hostApp_; }
  const WindowContext& windowContext() const { return windowContext_; }
  std::int32_t paneId() const { return paneId_; }
  // Set once and never cleared. Any thread.
  bool shuttingDown() const { return shuttingDown_ != 0; }
  // Made once and kept when it has gone; null before.
  const std::shared_ptr<PaneWindow>& window() const { return window_; }
  std::uintptr_t windowHandle() const { return windowHandle_; }  // 0 without a window
  std::uintptr_t parentWindow() const { return parentWindow_; }
  bool HasWindow() const;
  bool SetPaneTimer(std::uint32_t id, std::uint32_t ms);
  void KillPaneTimer(std::uint32_t id);
  // Gives the page the token, if there is one.
  void PushAccessToken();

  // ---- The window ------------------------------------------------------------------------------

  // `parent` is remembered when it is not 0. `stock` is the base class's own handling, whose result
  // is returned.
  ResultCode DoVerb(std::int32_t verb, std::uintptr_t parent,
                    const std::function<ResultCode()>& stock);
  void EnsureWindowAndWebView();
  // Every message of the window comes here first.
  MessageAnswer OnWindowMessage(const WindowMessage& message);
  void OnCreate(std::uintptr_t handle);
  void OnTimer(std::uint32_t id);
  void OnDestroy();

  // ---- The browser's events --------------------------------------------------------------------

  ResultCode OnEnvironmentCompleted(ResultCode code,
                                    std::shared_ptr<WebViewEnvironment> environment) override;
  ResultCode OnControllerCompleted(ResultCode code,
                                   std::shared_ptr<WebViewController> browser) override;
  void OnWebMessageReceived(const Wide& text) override;
  void OnNavigationStarting() override;
  void OnNavigationCompleted(bool isSuccess) override;

  // ---- The end ---------------------------------------------------------------------------------

  // Ends requests, run and web view; waits up to 2000 ms for the run's worker.
  void BeginShutdownEarly();
  // The last reference to the object that the host knows the pane by has been released.
  void FinalRelease();

 private:
  void Serve(const WindowMessage& message);

  const PaneSurroundings surroundings_;
  ObjectRef hostApp_;
  const WindowContext windowContext_;
  const std::int32_t paneId_;
  std::atomic<std::uint8_t> shuttingDown_{0};
  std::shared_ptr<PaneWindow> window_;
  std::uintptr_t windowHandle_ = 0;
  std::uintptr_t parentWindow_ = 0;
  PaneSession session_;
  PaneBrowser browser_;
  PaneRun run_;
};

// What timer 1 of every pane calls; empty calls nothing.
using PaneWidthHook = std::function<void(CPptPane&)>;
void SetPaneWidthHook(PaneWidthHook hook);

}  // namespace quillmarch::addin
