#include "pane/PanelPages.h"

#include <utility>

#include "foundation/automation/HostId.h"
#include "foundation/log/Log.h"
#include "foundation/settings/DisplayLanguage.h"
#include "pane/CPptPane.h"

namespace quillmarch::addin {

namespace {

constexpr WideView kTranslatePage = u"translate";
constexpr WideView kPanelRoot = u"/panel";
constexpr WideView kPanelBase = u"/panel/ppt";

// "glossary.html" and so on, in the order of trial.
constexpr WideView kOtherPages[] = {u"glossary", u"instruction", u"account", u"login", u"support"};

}  // namespace

Wide PanelPath(const Wide& page) {
  Wide path = Wide(kPanelBase) + u"/";
  if (page != kTranslatePage) path += page + u".html";
  return path;
}

Wide PageFromPath(WideView path) {
  while (path.ends_with(u'/')) path.remove_suffix(1);
  if (path.empty() || path == kPanelBase || path == u"/panel/word" || path == u"/panel/excel" ||
      path == kPanelRoot) {
    return Wide(kTranslatePage);
  }
  const Wide lower = LowerAscii(path);
  for (const WideView page : kOtherPages) {
    if (lower.ends_with(Wide(page) + u".html")) return Wide(page);
  }
  return Wide(kTranslatePage);
}

bool SamePage(WideView left, WideView right) {
  return LowerAscii(left) == LowerAscii(right);
}

Wide CPptPane::BuildPanelUrl(const Wide& page) {
  Wide url = BuildUrl({apiHost, apiPort, apiSecure}, PanelPath(page));
  url += u"?_=" + DecimalUnsigned(surroundings_.thread.TickCount());
  url += IsWpsProcess() ? u"&host=wps-ppt" : u"&host=ppt";
  if (paneId > 0) url += u"&pane=ppt" + Decimal(paneId);
  url += u"&mode=" + mode;
  // Held, as the last release of the pane's object may come inside the call.
  const ObjectRef application = hostApp;
  url += u"&uiLang=" + ResolveLang(application.get());
  return url;
}

void CPptPane::NavigateTo(const Wide& page) {
  const std::shared_ptr<WebView> view = webView;
  if (view == nullptr || shuttingDown != 0) return;
  currentPage = page;
  const Wide url = BuildPanelUrl(page);
  LogLine(u"CPptPane navigate " + url);
  view->Navigate(url);
}

void CPptPane::RefreshCurrentPage() {
  const std::shared_ptr<WebView> view = webView;
  Wide source;
  if (view == nullptr || !view->Source(source)) return;
  const std::size_t at = source.find(kPanelRoot);
  if (at == Wide::npos) return;
  const WideView rest = WideView(source).substr(at);
  currentPage = PageFromPath(rest.substr(0, rest.find(u'?')));
}

void CPptPane::SetPanelPage(const Wide& asked) {
  const Wide page = asked.empty() ? Wide(kTranslatePage) : asked;
  pendingPage = page;
  if (webView == nullptr) return;
  const bool toTranslate = SamePage(page, kTranslatePage);
  if (!toTranslate) pendingMode.clear();
  if (toTranslate && !currentPage.empty() && SamePage(currentPage, page)) {
    if (!pendingMode.empty() && pendingMode != mode) SetMode(pendingMode);
  } else {
    NavigateTo(page);
  }
  pendingPage.clear();
}

void CPptPane::SetMode(const Wide& newMode) {
  mode = newMode;
  PostToPage(u"{\"action\":\"setMode\",\"mode\":\"" + mode + u"\"}");
}

}  // namespace quillmarch::addin
