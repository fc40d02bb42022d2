#include "foundation/identity/ClientIdentity.h"
#include "foundation/text/JsonText.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

// For a body without its texts, and for what surrounds each text: only the initial reservation.
constexpr std::size_t kUsualSize = 640;
constexpr std::size_t kAroundText = 8;

void AppendText(Wide& body, WideView text) {
  body += u'"';
  body += JsonEscape(text);
  body += u'"';
}

void AppendTexts(Wide& body, WideView key, const std::vector<Wide>& texts) {
  body += key;
  body += u'[';
  const char16_t* comma = u"";
  for (const Wide& text : texts) {
    body += comma;
    AppendText(body, text);
    comma = u",";
  }
  body += u']';
}

void AppendOptional(Wide& body, WideView key, WideView text) {
  if (text.empty()) return;
  body += key;
  AppendText(body, text);
}

void AppendGlossary(Wide& body, const std::vector<GlossaryEntry>& glossary) {
  if (glossary.empty()) return;
  body += u",\"glossary\":[";
  const char16_t* open = u"{\"source\":";
  for (const GlossaryEntry& entry : glossary) {
    body += open;
    AppendText(body, entry.source);
    body += u",\"target\":";
    AppendText(body, entry.target);
    AppendOptional(body, u",\"note\":", entry.note);
    body += u'}';
    open = u",{\"source\":";
  }
  body += u']';
}

void AppendTrace(Wide& body, const TranslateBatchRequest& request) {
  Wide fields;
  AppendOptional(fields, u",\"clientTraceId\":", request.clientTraceId);
  // In quotes, as a reader that keeps numbers as doubles would lose the end of a long one.
  if (request.runId != 0) fields += u",\"runId\":\"" + DecimalUnsigned(request.runId) + u"\"";
  if (request.batchSeq != 0) fields += u",\"batchSeq\":" + DecimalUnsigned(request.batchSeq);
  if (fields.empty()) return;
  fields.front() = u'{';
  body += u",\"trace\":" + fields + u"}";
}

}  // namespace

Wide BuildRequestBody(const TranslateBatchRequest& request) {
  Wide body;
  std::size_t size = kUsualSize;
  for (const Wide& text : request.texts) size += text.size() + kAroundText;
  body.reserve(size);
  AppendTexts(body, u"{\"texts\":", request.texts);
  if (!request.unitIds.empty()) AppendTexts(body, u",\"unitIds\":", request.unitIds);
  // The language codes are trusted and go in unescaped.
  body += u",\"sourceLang\":\"" + request.sourceLang + u"\"";
  body += u",\"targetLang\":\"" + request.targetLang + u"\"";
  AppendOptional(body, u",\"usageKind\":", request.usageKind);
  AppendOptional(body, u",\"clientProduct\":", request.clientProduct);
  AppendGlossary(body, request.glossary);
  AppendOptional(body, u",\"instruction\":", request.instruction);
  AppendTrace(body, request);
  body += u",\"clientContext\":";
  body += ClientContextJson();
  body += u'}';
  return body;
}

}  // namespace quillmarch::addin
