#include "pane/LivePanes.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "pane/CPptPane.h"

namespace quillmarch::addin {

namespace {

struct LivePane {
  const CPptPane* pane;
  std::weak_ptr<CPptPane> owner;
};

struct LiveList {
  std::mutex mutex;
  std::vector<LivePane> panes;
};

LiveList& Live() {
  static LiveList list;
  return list;
}

}  // namespace

void EnterLivePane(CPptPane* pane, std::weak_ptr<CPptPane> owner) {
  const std::lock_guard lock(Live().mutex);
  std::vector<LivePane>& panes = Live().panes;
  const bool listed = std::any_of(panes.begin(), panes.end(),
                                  [pane](const LivePane& live) { return live.pane == pane; });
  if (!listed) panes.push_back({pane, std::move(owner)});
}

void LeaveLivePane(const CPptPane* pane) {
  const std::lock_guard lock(Live().mutex);
  std::erase_if(Live().panes, [pane](const LivePane& live) { return live.pane == pane; });
}

std::vector<std::shared_ptr<CPptPane>> LivePanes() {
  std::vector<std::shared_ptr<CPptPane>> snapshot;
  const std::lock_guard lock(Live().mutex);
  for (const LivePane& live : Live().panes) {
    if (std::shared_ptr<CPptPane> pane = live.owner.lock()) snapshot.push_back(std::move(pane));
  }
  return snapshot;
}

void BroadcastUiLangChanged(const Wide& lang) {
  const Wide json = u"{\"action\":\"uiLangChanged\",\"uiLang\":\"" + lang + u"\"}";
  for (const std::shared_ptr<CPptPane>& pane : LivePanes()) pane->browser().PostToPage(json);
}

}  // namespace quillmarch::addin
