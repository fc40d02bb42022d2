#include "pane/PaneSession.h"

#include "foundation/text/JsonText.h"

namespace quillmarch::addin {

Wide& ProcessAccessToken() {
  static Wide token;
  return token;
}

void PaneSession::SetAccessToken(const Wide& token) {
  accessToken_ = token;
  ProcessAccessToken() = token;
}

void PaneSession::SetTargetStyle(const Wide& message) {
  ReadTargetStyle(message, targetStyle_);
}

void PaneSession::ReadStart(const Wide& message) {
  Wide token = JsonGetString(message, u"accessToken");
  if (token.empty()) token = JsonGetString(message, u"token");
  if (!token.empty()) SetAccessToken(token);
  glossaryIds_ = JsonGetStringArray(message, u"glossaryIds");
  globalInstructionId_ = JsonGetString(message, u"globalInstructionId");
  if (JsonHasKey(message, u"nativeTranslateViaJs")) {
    nativeTranslateViaJs_ = JsonGetBool(message, u"nativeTranslateViaJs");
  }
  // Comes last and can only switch the page's route off.
  if (JsonHasKey(message, u"transport") && JsonGetString(message, u"transport") == u"native") {
    nativeTranslateViaJs_ = false;
  }
}

}  // namespace quillmarch::addin
