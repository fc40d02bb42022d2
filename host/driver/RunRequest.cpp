#include "host/driver/RunRequest.h"

#include "foundation/text/JsonText.h"

namespace quillmarch::host {

namespace {

const char16_t* PanelMode(addin::Scope scope) {
  switch (scope) {
    case addin::Scope::kCurrentSlide:
      return u"slide";
    case addin::Scope::kSelection:
      return u"selection";
    default:
      return u"full";
  }
}

}  // namespace

Wide StartMessage(const RunRequest& request) {
  Wide json = u"{";
  const auto add = [&json](const char16_t* name, const Wide& value) {
    if (json.size() > 1) json += u",";
    json += Wide(u"\"") + name + u"\":\"" + JsonEscape(value) + u"\"";
  };
  add(u"action", request.scope == addin::Scope::kSelection ? u"startSelection" : u"start");
  add(u"panelMode", PanelMode(request.scope));
  if (!request.targetLang.empty()) add(u"targetLang", request.targetLang);
  if (!request.sourceLang.empty()) add(u"sourceLang", request.sourceLang);
  // Said also when it is empty: a message without the key gets a font of the pane's own.
  add(u"targetFont", request.targetFont);
  if (!request.accessToken.empty()) add(u"accessToken", request.accessToken);
  if (request.viaPage) {
    json += u",\"nativeTranslateViaJs\":true";
  } else {
    add(u"transport", u"native");
  }
  return json + u"}";
}

}  // namespace quillmarch::host
