#include "host/driver/PanelPage.h"

#include <utility>

#include "foundation/text/JsonText.h"

namespace quillmarch::host {

std::int32_t NumberIn(const PageCall& call, WideView field) {
  return static_cast<std::int32_t>(JsonGetNumber(call.payload, field));
}

bool ReadPageCall(WideView script, PageCall& call) {
  constexpr WideView kWindow = u"window.";
  constexpr WideView kAnd = u"&&";
  const std::size_t end = script.find(kAnd);
  if (!script.starts_with(kWindow) || end == WideView::npos) return false;
  const WideView name = script.substr(kWindow.size(), end - kWindow.size());
  WideView rest = script.substr(end + kAnd.size());
  if (!rest.starts_with(kWindow) || !rest.substr(kWindow.size()).starts_with(name)) return false;
  rest.remove_prefix(kWindow.size() + name.size());
  if (rest.size() < 2 || rest.front() != u'(' || rest.back() != u')') return false;
  call = {name, rest.substr(1, rest.size() - 2)};
  return true;
}

PanelPage::PanelPage(std::function<void(const PageCall&)> onCall) : onCall_(std::move(onCall)) {}

void PanelPage::ExecuteScript(const Wide& script) {
  PageCall call;
  if (onCall_ && ReadPageCall(script, call)) onCall_(call);
}

}  // namespace quillmarch::host
