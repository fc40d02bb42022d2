#include "pane/PanelDispatch.h"

#include <exception>

#include "foundation/automation/Automation.h"
#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"
#include "pane/Terminology.h"
#include "run/collect/SelectionPreview.h"
#include "run/document/StaGate.h"

namespace quillmarch::addin {

namespace {

Wide PreviewArgument(const SelectionPreview& preview) {
  if (preview.empty) return u"{fragments:0,chars:0,pptEmpty:true}";
  return u"{fragments:" + Decimal(preview.fragments) + u",chars:" + Decimal(preview.chars) +
         u",pptEmpty:false,label:\"" + JsonEscape(preview.label) + u"\"}";
}

// ---- What each action does ---------------------------------------------------------------------

void Start(CPptPane& pane, const Wide& message) {
  LogLine(u"PptPane start action=" + JsonGetString(message, u"action") + u" panelMode=" +
          JsonGetString(message, u"panelMode"));
  PostToPane(pane.window(), [weak = pane.weak_from_this(), message] {
    if (const std::shared_ptr<CPptPane> held = weak.lock()) held->run().StartRun(message);
  });
}

void RequestSelectionPreview(CPptPane& pane, const Wide&) {
  if (pane.run().runActive()) return;
  PostToPane(pane.window(), [weak = pane.weak_from_this()] {
    if (const std::shared_ptr<CPptPane> held = weak.lock()) PushSelectionPreview(*held);
  });
}

void PostFontList(CPptPane& pane, const Wide&) {
  Wide json = u"{\"action\":\"fontList\",\"fonts\":[";
  const char16_t* comma = u"";
  for (const Wide& name : pane.surroundings().fonts.FamilyNames()) {
    // An "@" marks a font for vertical text.
    if (name.empty() || name.front() == u'@') continue;
    json += comma;
    json += u"\"" + JsonEscape(name) + u"\"";
    comma = u",";
  }
  pane.browser().PostToPage(json + u"]}");
}

void HandleTerminology(CPptPane& pane, const Wide& message) {
  const ObjectRef application = pane.hostApp();
  const ObjectRef document = FindDocumentWindow(application.get(), pane.windowContext());
  ObjectRef presentation;
  if (document) {
    Get(document.get(), ppt::documentWindow::kPresentation, presentation);
  }
  Wide reply;
  if (HandleTerminologyMessage(application.get(), message, reply, presentation.get()) &&
      !reply.empty()) {
    pane.browser().RunScript(reply);
  }
}

struct PageAction {
  WideView name;
  void (*act)(CPptPane& pane, const Wide& message);
};

constexpr PageAction kPageActions[] = {
    {u"start", Start},
    {u"restart", Start},
    {u"startSelection", Start},
    {u"requestSelectionPreview", RequestSelectionPreview},
    {u"cancel", [](CPptPane& pane, const Wide&) { pane.run().CancelRun(); }},
    {u"pause", [](CPptPane& pane, const Wide&) { pane.run().Pause(); }},
    {u"resume", [](CPptPane& pane, const Wide&) { pane.run().Resume(); }},
    {u"setTargetStyle",
     [](CPptPane& pane, const Wide& message) { pane.session().SetTargetStyle(message); }},
    // Older pages ask; they expect no answer.
    {u"sessionQuery", [](CPptPane&, const Wide&) {}},
    {u"setAccessToken",
     [](CPptPane& pane, const Wide& message) {
       pane.session().SetAccessToken(JsonGetString(message, u"accessToken"));
     }},
    {u"requestAccessToken", [](CPptPane& pane, const Wide&) { pane.PushAccessToken(); }},
    {u"clearAccessToken",
     [](CPptPane& pane, const Wide&) { pane.session().SetAccessToken(Wide()); }},
    {u"getFontList", PostFontList},
    {u"trace",
     [](CPptPane&, const Wide& message) {
       LogLine(u"[panel] " + JsonGetString(message, u"phase"));
     }},
    {u"translateBatchResult",
     [](CPptPane& pane, const Wide& message) {
       pane.run().transport().CompleteTranslate(message);
     }},
    {u"terminologyResolveResult",
     [](CPptPane& pane, const Wide& message) {
       pane.run().transport().CompleteTerminology(message);
     }},
    {u"docKeyGet", HandleTerminology},
    {u"exportLocalSnapshot", HandleTerminology},
    {u"clientInfoGet", HandleTerminology},
    {u"uiLangGet", HandleTerminology},
};

}  // namespace

void OnWebMessage(CPptPane& pane, const Wide& text) {
  const Wide name = JsonGetString(text, u"action");
  if (name.empty()) return;
  for (const PageAction& action : kPageActions) {
    if (action.name == name) {
      action.act(pane, text);
      return;
    }
  }
  LogLine(u"PptPane unknown action: " + name);
}

void PushSelectionPreview(CPptPane& pane) {
  if (pane.shuttingDown() || pane.browser().webView() == nullptr || pane.run().runActive() ||
      StaGateHasOwner()) {
    return;
  }
  const ObjectRef application = pane.hostApp();
  Wide argument;
  try {
    argument = PreviewArgument(ReadSelectionPreview(application.get(), pane.windowContext()));
  } catch (const std::exception&) {
    argument = u"{error:\"无法读取选区\",pptEmpty:true}";
  }
  pane.browser().RunScript(u"if(window.onSelectionPreview)onSelectionPreview(" + argument + u")");
}

}  // namespace quillmarch::addin
