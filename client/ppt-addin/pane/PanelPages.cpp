#include "pane/PanelPages.h"

namespace quillmarch::addin {

namespace {

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

void PageFromSource(WideView source, Wide& page) {
  const std::size_t at = source.find(kPanelRoot);
  if (at == WideView::npos) return;
  const WideView rest = source.substr(at);
  page = PageFromPath(rest.substr(0, rest.find(u'?')));
}

bool SamePage(WideView left, WideView right) {
  return LowerAscii(left) == LowerAscii(right);
}

}  // namespace quillmarch::addin
