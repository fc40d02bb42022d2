#include "host/driver/RunEvent.h"

#include "foundation/JsonText.h"

namespace {

Wide Flag(bool value) {
  return value ? u"true" : u"false";
}

}  // namespace

const char16_t* EventName(RunEventKind kind) {
  switch (kind) {
    case RunEventKind::kOnRunStarted:
      return u"onRunStarted";
    case RunEventKind::kOnScanProgress:
      return u"onScanProgress";
    case RunEventKind::kOnReady:
      return u"onReady";
    case RunEventKind::kOnProgress:
      return u"onProgress";
    case RunEventKind::kOnComplete:
      return u"onComplete";
    case RunEventKind::kOnError:
      return u"onError";
    case RunEventKind::kOnCancelled:
      return u"onCancelled";
  }
  return u"";
}

Wide EventPayload(const RunEvent& event) {
  Wide json = u"{\"runId\":" + DecimalUnsigned(event.runId);
  switch (event.kind) {
    case RunEventKind::kOnRunStarted:
    case RunEventKind::kOnCancelled:
      break;
    case RunEventKind::kOnScanProgress:
      json += u",\"current\":" + Decimal(event.current) + u",\"total\":" + Decimal(event.total) +
              u",\"phase\":\"" + event.phase + u"\"";
      break;
    case RunEventKind::kOnReady:
      json += u",\"total\":" + Decimal(event.total) + u",\"translatable\":" +
              Decimal(event.translatable);
      break;
    case RunEventKind::kOnProgress:
      json += u",\"wordIndex\":" + Decimal(event.current) + u",\"total\":" + Decimal(event.total) +
              u",\"skipped\":" + Flag(event.skipped) + u",\"original\":\"" +
              JsonEscape(event.original) + u"\",\"translated\":\"" + JsonEscape(event.translated) +
              u"\"";
      break;
    case RunEventKind::kOnComplete:
      json += u",\"elapsed\":" + Decimal(event.elapsedMs) + u",\"total\":" + Decimal(event.total) +
              u",\"bilingualCopy\":" + Flag(event.bilingualCopy);
      break;
    case RunEventKind::kOnError:
      json += u",\"code\":\"" + JsonEscape(event.code) + u"\",\"message\":\"" +
              JsonEscape(event.message) + u"\"";
      break;
  }
  json += u"}";
  return json;
}
