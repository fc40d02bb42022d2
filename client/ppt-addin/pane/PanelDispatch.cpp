// The one place where the page's messages are understood.
#include <exception>
#include <utility>

#include "foundation/automation/Automation.h"
#include "foundation/automation/FindDocumentWindow.h"
#include "foundation/automation/HostMembers.h"
#include "foundation/log/Log.h"
#include "foundation/settings/TargetStyle.h"
#include "foundation/text/JsonText.h"
#include "pane/CPptPane.h"
#include "pane/Terminology.h"
#include "pane/TransportMessages.h"
#include "run/collect/SelectionPreview.h"
#include "run/document/StaGate.h"

namespace quillmarch::addin {

namespace {

bool IsStart(const Wide& action) {
  return action == u"start" || action == u"restart" || action == u"startSelection";
}

bool IsTerminologyPageAction(const Wide& action) {
  return action == u"docKeyGet" || action == u"exportLocalSnapshot" || action == u"clientInfoGet" ||
         action == u"uiLangGet";
}

Wide PreviewArgument(const SelectionPreview& preview) {
  if (preview.empty) return u"{fragments:0,chars:0,pptEmpty:true}";
  return u"{fragments:" + Decimal(preview.fragments) + u",chars:" + Decimal(preview.chars) +
         u",pptEmpty:false,label:\"" + JsonEscape(preview.label) + u"\"}";
}

}  // namespace

void CPptPane::OnWebMessage(const Wide& text) {
  const Wide action = JsonGetString(text, u"action");
  if (action.empty()) return;
  if (IsStart(action)) {
    LogLine(u"PptPane start action=" + action + u" panelMode=" + JsonGetString(text, u"panelMode"));
    PostToPane(window, [weak = weak_from_this(), message = text] {
      if (const std::shared_ptr<CPptPane> pane = weak.lock()) pane->StartRun(message);
    });
  } else if (action == u"requestSelectionPreview") {
    if (runActive != 0) return;
    PostToPane(window, [weak = weak_from_this()] {
      if (const std::shared_ptr<CPptPane> pane = weak.lock()) pane->PushSelectionPreview();
    });
  } else if (action == u"cancel") {
    CancelRun();
  } else if (action == u"pause") {
    // Once the worker has ended a pause would hold this thread, at the repairs of a run's finish,
    // and only this thread could lift it.
    const bool finishing = controller != nullptr && controller->finished();
    if (runControl != nullptr && !finishing) runControl->paused = 1;
  } else if (action == u"resume") {
    if (runControl != nullptr) runControl->paused = 0;
  } else if (action == u"setTargetStyle") {
    ReadTargetStyle(text, targetStyle);
  } else if (action == u"sessionQuery") {
    // Older pages ask; they expect no answer.
  } else if (action == u"setAccessToken") {
    SetAccessToken(JsonGetString(text, u"accessToken"));
  } else if (action == u"requestAccessToken") {
    PushAccessToken();
  } else if (action == u"clearAccessToken") {
    SetAccessToken(Wide());
  } else if (action == u"getFontList") {
    PostFontList();
  } else if (action == u"trace") {
    LogLine(u"[panel] " + JsonGetString(text, u"phase"));
  } else if (action == u"translateBatchResult") {
    transport_.CompleteTranslate(text);
  } else if (action == u"terminologyResolveResult") {
    transport_.CompleteTerminology(text);
  } else if (IsTerminologyPageAction(action)) {
    HandleTerminology(text);
  } else {
    LogLine(u"PptPane unknown action: " + action);
  }
}

void CPptPane::SetAccessToken(const Wide& token) {
  accessToken = token;
  ProcessAccessToken() = token;
}

void CPptPane::PushAccessToken() {
  if (accessToken.empty()) return;
  PostToPage(u"{\"action\":\"accessToken\",\"accessToken\":\"" + JsonEscape(accessToken) + u"\"}");
}

void CPptPane::PostFontList() {
  Wide json = u"{\"action\":\"fontList\",\"fonts\":[";
  const char16_t* comma = u"";
  for (const Wide& name : surroundings_.fonts.FamilyNames()) {
    // Fonts for vertical lines bear an "@".
    if (name.empty() || name.front() == u'@') continue;
    json += comma;
    json += u"\"" + JsonEscape(name) + u"\"";
    comma = u",";
  }
  PostToPage(json + u"]}");
}

void CPptPane::HandleTerminology(const Wide& message) {
  const ObjectRef application = hostApp;
  const ObjectRef document = FindDocumentWindow(application.get(), windowContext);
  ObjectRef presentation;
  if (document) {
    Get(document.get(), ppt::documentWindow::kPresentation, presentation);
  }
  Wide reply;
  if (HandleTerminologyMessage(application.get(), message, reply, presentation.get()) &&
      !reply.empty()) {
    RunScript(reply);
  }
}

void CPptPane::PushSelectionPreview() {
  if (shuttingDown != 0 || webView == nullptr || runActive != 0 || StaGateHasOwner()) return;
  const ObjectRef application = hostApp;
  Wide argument;
  try {
    argument = PreviewArgument(ReadSelectionPreview(application.get(), windowContext));
  } catch (const std::exception&) {
    argument = u"{error:\"无法读取选区\",pptEmpty:true}";
  }
  RunScript(u"if(window.onSelectionPreview)onSelectionPreview(" + argument + u")");
}

void CPptPane::CancelRun() {
  DropDeferredStart();
  StopFlags();
  transport_.FailAllPendingTranslate(u"cancelled");
  if (currentRunId != 0) PostToPage(AbortForRunMessage(currentRunId));
}

}  // namespace quillmarch::addin
