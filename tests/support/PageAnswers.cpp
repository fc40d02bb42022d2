#include "support/PageAnswers.h"

#include "foundation/text/JsonText.h"

namespace quillmarch::addin::test {

Wide AnswerTo(const Wide& message) {
  const Wide action = JsonGetString(message, u"action");
  const Wide id = u"\"requestId\":\"" + JsonGetString(message, u"requestId") + u"\",\"ok\":true";
  if (action == u"terminologyResolveRequest") {
    return u"{\"action\":\"terminologyResolveResult\"," + id + u",\"result\":{}}";
  }
  if (action != u"translateBatchRequest") return {};
  Wide json = u"{\"action\":\"translateBatchResult\"," + id + u",\"translations\":[";
  const char16_t* comma = u"";
  for (const Wide& text : JsonGetStringArray(message, u"texts")) {
    json += comma;
    json += u"\"T(" + JsonEscape(text) + u")\"";
    comma = u",";
  }
  return json + u"]}";
}

}  // namespace quillmarch::addin::test
