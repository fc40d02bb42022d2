// The pane widths of a connection: the hook of timer 1, the first width, the save at the end.
#include "foundation/automation/HostId.h"
#include "foundation/log/Log.h"
#include "foundation/settings/UserConfig.h"
#include "pane/CPptPane.h"
#include "shell/CConnect.h"

namespace quillmarch::addin {

namespace {

// The connection whose panes the hook looks at; the last one that made a pane.
CConnect*& ServedConnection() {
  static CConnect* served = nullptr;
  return served;
}

}  // namespace

void CConnect::ServeWidthHook() {
  ServedConnection() = this;
  SetPaneWidthHook([](CPptPane&) {
    if (ServedConnection() != nullptr) ServedConnection()->WidthTick();
  });
}

void CConnect::LeaveWidthHook() {
  if (ServedConnection() != this) return;
  ServedConnection() = nullptr;
  SetPaneWidthHook({});
}

void CConnect::ForEachPane(const std::function<void(TaskPane&, PaneWidthState&)>& act) {
  // A host call may let in what changes the map, so each entry is looked up anew and the pane held;
  // inside a timer's call the host may even release us.
  const std::weak_ptr<const bool> life = life_;
  for (auto at = panes.begin(); at != panes.end();) {
    const std::int64_t key = at->first;
    if (const std::shared_ptr<TaskPane> pane = at->second.pane) {
      PaneWidthState width = at->second.width;
      act(*pane, width);
      if (life.expired()) return;
      const auto still = panes.find(key);
      if (still != panes.end() && still->second.pane == pane) still->second.width = width;
    }
    at = panes.upper_bound(key);
  }
}

void CConnect::WidthTick() {
  ForEachPane([&](TaskPane& pane, PaneWidthState& width) {
    const WidthPoll result = Poll(width, pane, surroundings_.thread.TickCount());
    LogWidthPoll(result, width);
  });
}

std::int32_t CConnect::LoadInitialWidth() {
  std::int32_t live = 0;
  ForEachPane([&](TaskPane& pane, PaneWidthState&) {
    std::int32_t width = 0;
    if (live == 0 && Succeeded(pane.GetWidth(width)) && width >= kSmallestRealWidthPt) live = width;
  });
  if (live != 0) {
    LogLine(u"PaneWidth initial from live pane pt=" + Decimal(live));
    return live;
  }
  bool fromFile = false;
  const std::int32_t width = ReadPaneWidth(fromFile);
  LogLine(u"PaneWidth load pt=" + Decimal(width) + u" source=" + (fromFile ? u"file" : u"default") +
          u" file=" + ConfigPath());
  return width;
}

void CConnect::SaveAllOnShutdown() {
  ForEachPane([](TaskPane& pane, PaneWidthState& width) { SaveWidthOnShutdown(width, pane); });
}

}  // namespace quillmarch::addin
