#include "driver/RequestingPage.h"

#include <utility>

#include "foundation/text/JsonText.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::host::test {

using namespace addin;

namespace {

Wide Quoted(const Wide& text) {
  return u"\"" + JsonEscape(text) + u"\"";
}

Wide ResultMessage(const Wide& requestId, const TranslateBatchResult& result) {
  Wide json = u"{\"action\":\"translateBatchResult\",\"requestId\":" + Quoted(requestId);
  if (!result.ok) {
    return json + u",\"ok\":false,\"code\":" + Quoted(result.code) + u",\"message\":" +
           Quoted(result.message) + u"}";
  }
  json += u",\"ok\":true,\"translations\":[";
  for (const Wide& text : result.translations) json += Quoted(text) + u",";
  json.back() = u']';
  return json + u"}";
}

}  // namespace

RequestingPage::RequestingPage(HostThread& thread, Wide token)
    : thread_(thread), token_(std::move(token)) {}

RequestingPage::~RequestingPage() {
  for (std::thread& request : requests_) request.join();
  *alive_ = false;
}

void RequestingPage::ExecuteScript(const Wide& script) {
  PageCall call;
  if (ReadPageCall(script, call)) events.push_back(ToUtf8(call.name) + ToUtf8(call.payload));
  if (onTold) onTold();
}

void RequestingPage::PostWebMessageAsJson(const Wide& json) {
  messages.push_back(ToUtf8(json));
  const Wide action = JsonGetString(json, u"action");
  const Wide requestId = JsonGetString(json, u"requestId");
  if (action == u"terminologyResolveRequest") {
    Answer(u"{\"action\":\"terminologyResolveResult\",\"requestId\":" + Quoted(requestId) +
           u",\"ok\":true,\"result\":{}}");
  } else if (action == u"translateBatchRequest") {
    TranslateBatchRequest request;
    request.texts = JsonGetStringArray(json, u"texts");
    request.sourceLang = JsonGetString(json, u"sourceLang");
    request.targetLang = JsonGetString(json, u"targetLang");
    requests_.emplace_back([this, requestId, request = std::move(request)] {
      TranslateConfig config;
      config.accessToken = token_;
      Answer(ResultMessage(requestId, PostTranslate(config, request)));
    });
  }
  if (onTold) onTold();
}

void RequestingPage::Answer(const Wide& answer) {
  thread_.Post([this, alive = alive_, answer] {
    if (*alive && say) say(answer);
  });
}

}  // namespace quillmarch::host::test
