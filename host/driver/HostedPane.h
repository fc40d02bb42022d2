// A pane in the host's active window, made as a host program makes one: by the hand-over block,
// with a window of its own and a page. Host thread only.
#pragma once

#include <memory>

#include "foundation/automation/AutomationObject.h"
#include "foundation/seams/HostThread.h"
#include "foundation/seams/WebView.h"
#include "pane/CPptPane.h"

namespace quillmarch::host {

class HostedPane {
 public:
  // Identifies the host by its application object. `thread` outlives the pane, and the worker of a
  // run that hung when the pane went. `observer` gets the record of each run's end; may be empty.
  // `bridgeWaitMs` is how long the page may take over a request.
  HostedPane(ObjectRef application, HostThread& thread, std::shared_ptr<WebView> page,
             addin::RunObserver observer, std::uint32_t bridgeWaitMs = addin::kBridgeWaitMs);
  // The window's end: a run that lasts is aborted, with a wait of up to 2000 ms for its worker.
  ~HostedPane();
  HostedPane(const HostedPane&) = delete;
  HostedPane& operator=(const HostedPane&) = delete;

  // A message of the page arrives.
  void Say(const Wide& json) { pane_->OnWebMessageReceived(json); }

  addin::CPptPane& pane() { return *pane_; }

 private:
  std::shared_ptr<addin::CPptPane> pane_;
};

}  // namespace quillmarch::host
