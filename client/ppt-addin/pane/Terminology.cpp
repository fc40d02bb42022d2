#include "pane/Terminology.h"

#include <algorithm>
#include <array>

#include "foundation/text/JsonText.h"

namespace quillmarch::addin {

namespace {

// Brace to brace with no regard to strings: entries are flat objects, and a closing brace inside a
// string cuts its entry short.
std::vector<GlossaryEntry> ReadEnabledEntries(WideView text) {
  std::vector<GlossaryEntry> entries;
  const std::size_t key = text.find(u"\"entries\"");
  std::size_t at = text.find(u'[', key == WideView::npos ? 0 : key);
  if (at == WideView::npos) return entries;
  for (++at;;) {
    const std::size_t open = text.find(u'{', at);
    const std::size_t close = open == WideView::npos ? open : text.find(u'}', open);
    if (close == WideView::npos) return entries;
    const WideView object = text.substr(open, close + 1 - open);
    GlossaryEntry entry{JsonFindString(object, u"source"), JsonFindString(object, u"target"),
                        JsonFindString(object, u"note")};
    if (!entry.source.empty() && !entry.target.empty() && JsonGetFlag(object, u"enabled")) {
      entries.push_back(std::move(entry));
    }
    // One search for both: a search for only the bracket would run to the text's end each time.
    at = text.find_first_of(u"]{", close + 1);
    if (at == WideView::npos || text[at] == u']') return entries;
  }
}

}  // namespace

void ReadResolvedTerms(const Wide& answer, Wide& instructionOut,
                       std::vector<GlossaryEntry>& glossaryOut) {
  instructionOut = JsonGetString(answer, u"instruction");
  glossaryOut = ReadEnabledEntries(answer);
}

void ResolveTerminologyNative(const std::vector<Wide>&, Wide& instructionOut,
                              std::vector<GlossaryEntry>& glossaryOut) {
  instructionOut.clear();
  glossaryOut.clear();
}

bool HandleTerminologyMessage(AutomationObject*, const Wide& message, Wide& replyOut,
                              AutomationObject*) {
  static constexpr std::array<WideView, 4> kActions = {u"docKeyGet", u"exportLocalSnapshot",
                                                       u"clientInfoGet", u"uiLangGet"};
  replyOut.clear();
  const Wide action = JsonGetString(message, u"action");
  return std::find(kActions.begin(), kActions.end(), WideView(action)) != kActions.end();
}

}  // namespace quillmarch::addin
