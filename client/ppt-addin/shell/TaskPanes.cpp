// One task pane for each document window.
#include <atomic>
#include <utility>

#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostId.h"
#include "foundation/log/Log.h"
#include "foundation/log/LogNumber.h"
#include "foundation/settings/DisplayLanguage.h"
#include "pane/CPptPane.h"
#include "pane/HandOver.h"
#include "pane/LivePanes.h"
#include "shell/CConnect.h"
#include "shell/ResolveWindow.h"

namespace quillmarch::addin {

namespace {

constexpr char16_t kPaneProgId[] = u"Quillmarch.PptPane";
constexpr char16_t kDefaultPage[] = u"translate";

std::atomic<std::int32_t> nextPaneId{0};
std::atomic<bool> ctpWindowMismatch{false};

// The block may not keep anything of the host's alive.
class HandOverReferences {
 public:
  HandOverReferences() = default;
  ~HandOverReferences() {
    HandOverBlock().app.Reset();
    HandOverBlock().window.Reset();
  }
  HandOverReferences(const HandOverReferences&) = delete;
  HandOverReferences& operator=(const HandOverReferences&) = delete;
};

void DockRight(TaskPane& pane) {
  std::int32_t position = 0;
  if (Failed(pane.GetDockPosition(position)) || position != TaskPane::kDockRight) {
    pane.PutDockPosition(TaskPane::kDockRight);
  }
}

// The two words of the window that a task pane is in; empty when unknown.
WindowContext ContextOfPane(TaskPane& pane) {
  ObjectRef window;
  if (Failed(pane.GetWindow(window)) || !window) return {};
  return ContextOfWindow(window.get());
}

bool StandsIn(TaskPane& pane, const WindowContext& context) {
  ObjectRef window;
  return Succeeded(pane.GetWindow(window)) && window && IsWindow(window.get(), context);
}

// A pane that is shutting down may still be listed for its window, kept by a worker that hangs.
std::shared_ptr<CPptPane> LivePaneOf(const WindowContext& context) {
  const std::vector<std::shared_ptr<CPptPane>> live = LivePanes();
  const auto find = [&](auto matches) -> std::shared_ptr<CPptPane> {
    for (const std::shared_ptr<CPptPane>& pane : live) {
      if (!pane->shuttingDown() && matches(pane->windowContext())) return pane;
    }
    return nullptr;
  };
  std::shared_ptr<CPptPane> found;
  if (context.hwnd != 0) {
    found = find([&](const WindowContext& own) { return own.hwnd == context.hwnd; });
  }
  if (found == nullptr && context.id != 0) {
    found = find([&](const WindowContext& own) { return own.id == context.id; });
  }
  return found;
}

}  // namespace

std::int32_t NextPaneId() {
  return nextPaneId;
}

bool CtpWindowMismatch() {
  return ctpWindowMismatch;
}

ResultCode CConnect::ShowPanePage(const char16_t* page, AutomationObject* control,
                                  const Wide& mode) {
  return Enter([&] {
    OpenPage(page, control, mode);
    return kOk;
  });
}

void CConnect::OpenPage(const char16_t* page, AutomationObject* control, const Wide& mode) {
  if (!hostApp) {
    ShowBox(Text(u"msg.hostNotReady.ppt"), Desktop::kIconWarning);
    return;
  }
  // The host may disconnect us inside any of the calls below.
  const ObjectRef application = hostApp;
  ResolvedWindow clicked;
  if (!ResolveWindow(application.get(), control, clicked)) {
    LogLine(u"PPT ShowPanePage: no window resolved");
    ShowBox(Text(u"msg.noWindow.ppt"), Desktop::kIconWarning);
    return;
  }
  LogLine(u"PPT ShowPanePage page=" + Wide(page == nullptr ? u"(null)" : page) + u" via=" +
          clicked.via + u" " + ContextText(clicked.context));
  const Wide asked = page == nullptr || *page == 0 ? kDefaultPage : page;
  HandOverBlock().pendingPage = asked;
  const EnsuredPane ensured = EnsureTaskPane(clicked.context, clicked.window);
  if (Failed(ensured.code) || ensured.pane == nullptr) return;
  DockRight(*ensured.pane);
  const std::shared_ptr<CPptPane> live = LivePaneOf(clicked.context);
  HandOverBlock().pendingMode = mode;
  if (live != nullptr && !mode.empty()) {
    live->browser().SetPendingMode(mode);
    if (live->HasWindow()) live->browser().SetMode(mode);
  }
  if (live != nullptr) live->browser().SetPanelPage(asked);
  // If one of these calls dropped the pane, it has been hidden for good.
  if (!panes.contains(PaneMapKey(clicked.context))) return;
  ensured.pane->PutVisible(true);
  LogLine(u"PPT ShowPanePage visible panes=" + DecimalUnsigned(panes.size()) + u" justCreated=" +
          Decimal(ensured.justCreated ? 1 : 0));
}

CConnect::EnsuredPane CConnect::EnsureTaskPane(const WindowContext& context,
                                               const ObjectRef& window) {
  // Held, as the host may take the factory back inside its own call.
  const std::shared_ptr<TaskPaneFactory> factory = ctpFactory;
  if (factory == nullptr) {
    LogLine(u"PPT EnsureTaskPane: CTP factory null");
    ShowBox(Text(u"msg.paneFactory.ppt"), Desktop::kIconError);
    return {};
  }
  PrunePanes();
  const std::int64_t key = PaneMapKey(context);
  if (IsGoodEntry(key, context)) return {kOk, ReusePane(key, context), false};
  LogNoMatch(key, context);

  // The host released us while panes were hidden.
  if (!hostApp) return {};
  std::shared_ptr<TaskPane> pane;
  const ResultCode code = CreateTaskPane(*factory, context, window, pane);
  if (Failed(code) || pane == nullptr) {
    const ResultCode failure = Failed(code) ? code : kFail;
    LogLine(u"PPT CreateCTP failed hr=" + HrText(failure));
    ShowBox(FormatHr(Text(u"msg.createPaneFailed"), failure), Desktop::kIconError);
    return {failure, nullptr, false};
  }
  DockRight(*pane);
  if (!StandsIn(*pane, context)) {
    LogLine(u"PPT CreateCTP window verify mismatch ctp[" + ContextText(ContextOfPane(*pane)) +
            u"] want[" + ContextText(context) + u"]");
    ctpWindowMismatch = true;
  }
  const std::int32_t width = LoadInitialWidth();
  // Or in any call since: nobody would release what is kept now.
  if (!hostApp) return {};
  const std::shared_ptr<TaskPane> kept = KeepPane(key, context, pane, width);
  LogLine(u"PPT CreateCTP OK key=" + Decimal(key) + u" " + ContextText(context) + u" panes=" +
          DecimalUnsigned(panes.size()));
  return {kOk, kept, true};
}

bool CConnect::IsGoodEntry(std::int64_t key, const WindowContext& context) {
  const auto entry = panes.find(key);
  if (entry == panes.end()) return false;
  const std::shared_ptr<TaskPane> pane = entry->second.pane;
  return pane != nullptr && StandsIn(*pane, context);
}

// As after creating a pane, except that the user's width is kept.
std::shared_ptr<TaskPane> CConnect::ReusePane(std::int64_t key, const WindowContext& context) {
  LogLine(u"PPT EnsureTaskPane reuse panes=" + DecimalUnsigned(panes.size()) + u" " + Decimal(key));
  ServeWidthHook();
  const auto entry = panes.find(key);
  if (entry == panes.end()) return nullptr;
  entry->second.context = context;
  return entry->second.pane;
}

void CConnect::LogNoMatch(std::int64_t key, const WindowContext& context) const {
  if (panes.empty() || panes.contains(key)) return;
  LogLine(u"PPT EnsureTaskPane no-match panes=" + DecimalUnsigned(panes.size()) + u" want " +
          ContextText(context));
  for (const auto& [existing, entry] : panes) {
    LogLine(u"PPT   existing key=" + Decimal(existing) + u" " + ContextText(entry.context));
  }
}

ResultCode CConnect::CreateTaskPane(TaskPaneFactory& factory, const WindowContext& context,
                                    const ObjectRef& window, std::shared_ptr<TaskPane>& pane) {
  const HandOverReferences released;
  HandOver& block = HandOverBlock();
  block.app = hostApp;
  block.window = window;
  block.context = context;
  // A number counts as used also when the host then makes no pane.
  block.paneId = nextPaneId++;
  return factory.CreateCTP(kPaneProgId, PaneTitle(), window, pane);
}

std::shared_ptr<TaskPane> CConnect::KeepPane(std::int64_t key, const WindowContext& context,
                                             const std::shared_ptr<TaskPane>& pane,
                                             std::int32_t width) {
  PaneMapEntry& entry = panes[key];
  entry.pane = pane;
  entry.context = context;
  ServeWidthHook();
  PaneWidthState state;
  BeginWidth(state, *pane, width, IsWpsProcess());
  const auto still = panes.find(key);
  if (still == panes.end()) return nullptr;
  still->second.width = state;
  return still->second.pane;
}

void CConnect::PrunePanes() {
  for (auto at = panes.begin(); at != panes.end();) {
    const std::int64_t key = at->first;
    const PaneMapEntry entry = at->second;
    const char16_t* reason = nullptr;
    if (entry.pane == nullptr) {
      reason = u"no_ctp";
    } else if (!FindDocumentWindow(hostApp.get(), entry.context)) {
      reason = u"window_gone";
    }
    if (reason != nullptr) DropPane(key, entry, reason);
    at = panes.upper_bound(key);
  }
}

void CConnect::DropPane(std::int64_t key, const PaneMapEntry& entry, const char16_t* reason) {
  LogLine(u"PPT pane prune key=" + Decimal(key) + u" reason=" + reason + u" " +
          ContextText(entry.context));
  if (entry.pane != nullptr) {
    const ResultCode hidden = entry.pane->PutVisible(false);
    if (Failed(hidden)) {
      // Not known to be dead, so it stays.
      LogLine(u"PPT pane prune keep key=" + Decimal(key) + u" hide hr=" + HrText(hidden));
      return;
    }
  }
  panes.erase(key);
}

}  // namespace quillmarch::addin
