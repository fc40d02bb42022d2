// The orderly end of a pane.
#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

#include "foundation/log/Log.h"
#include "pane/CPptPane.h"

namespace quillmarch::addin {

namespace {

struct KeptPane {
  std::shared_ptr<CPptPane> pane;
  std::shared_ptr<void> object;
};

// Panes whose window has gone and whose workers had not ended by then. Never destroyed: at the
// process's end workers may still be busy.
std::vector<KeptPane>& KeptPanes() {
  static auto& panes = *std::make_unique<std::vector<KeptPane>>().release();
  return panes;
}

}  // namespace

void CPptPane::BeginShutdownEarly() {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  if (shuttingDown.exchange(1) == 0) {
    LogLine(u"PptPane BeginShutdownEarly");
    DropDeferredStart();
    StopFlags();
    transport_.FailAllPendingTranslate(u"addin_shutdown");
    if (controller != nullptr) {
      if (controller->Abort()) {
        EndRun();
      } else {
        LogLine(u"PptPane shutdown: run worker busy, object kept alive");
      }
    }
  }
  CloseWebView();
}

void CPptPane::OnDestroy() {
  const std::shared_ptr<CPptPane> self = shared_from_this();
  KillPaneTimer(kWidthTimer);
  KillPaneTimer(kDeferredStartTimer);
  KillPaneTimer(kRunTickTimer);
  BeginShutdownEarly();
  if (window != nullptr) window->Destroy();
  windowHandle = 0;
  CloseWebView();
  if (runReference_ == nullptr) return;
  KeptPanes().push_back({std::move(runReference_), std::move(runHoldsObject_)});
}

void CPptPane::FinalRelease() {
  shuttingDown = 1;
  transport_.FailAllPendingTranslate(u"addin_shutdown");
  hostApp.Reset();
}

std::size_t ReleaseEndedPanes() {
  std::vector<KeptPane>& kept = KeptPanes();
  const auto ended = std::stable_partition(kept.begin(), kept.end(), [](const KeptPane& one) {
    return one.pane->controller != nullptr && one.pane->controller->WorkerRunning();
  });
  // Destroyed when the list is in order again: a pane's end may run anything.
  const std::vector<KeptPane> released(std::make_move_iterator(ended),
                                       std::make_move_iterator(kept.end()));
  kept.erase(ended, kept.end());
  return kept.size();
}

}  // namespace quillmarch::addin
