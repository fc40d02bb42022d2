#include "pane/TransportMessages.h"

#include "foundation/text/JsonText.h"

namespace quillmarch::addin {

namespace {

Wide Quoted(const Wide& text) {
  return u"\"" + JsonEscape(text) + u"\"";
}

Wide StringField(const char16_t* name, const Wide& value) {
  return Wide(u",\"") + name + u"\":" + Quoted(value);
}

Wide ArrayField(const char16_t* name, const std::vector<Wide>& values) {
  Wide json = Wide(u",\"") + name + u"\":[";
  const char16_t* comma = u"";
  for (const Wide& value : values) {
    json += comma;
    json += Quoted(value);
    comma = u",";
  }
  return json + u"]";
}

Wide GlossaryField(const std::vector<GlossaryEntry>& glossary) {
  Wide json = u",\"glossary\":[";
  const char16_t* comma = u"";
  for (const GlossaryEntry& entry : glossary) {
    json += comma;
    json += u"{\"source\":" + Quoted(entry.source) + StringField(u"target", entry.target);
    if (!entry.note.empty()) json += StringField(u"note", entry.note);
    json += u"}";
    comma = u",";
  }
  return json + u"]";
}

}  // namespace

Wide TranslateBatchMessage(const Wide& requestId, const TranslateBatchRequest& request) {
  Wide json = u"{\"action\":\"translateBatchRequest\"" + StringField(u"requestId", requestId) +
              u",\"runId\":" + DecimalUnsigned(request.runId) + u",\"batchSeq\":" +
              DecimalUnsigned(request.batchSeq) + StringField(u"sourceLang", request.sourceLang) +
              StringField(u"targetLang", request.targetLang) +
              StringField(u"usageKind", request.usageKind) +
              StringField(u"clientProduct", request.clientProduct) +
              ArrayField(u"texts", request.texts) + ArrayField(u"unitIds", request.unitIds);
  if (!request.glossary.empty()) json += GlossaryField(request.glossary);
  if (!request.instruction.empty()) json += StringField(u"instruction", request.instruction);
  if (!request.clientTraceId.empty()) json += StringField(u"clientTraceId", request.clientTraceId);
  return json + u"}";
}

Wide TerminologyResolveMessage(const Wide& requestId, const std::vector<Wide>& glossaryIds,
                               const Wide& instructionId, const std::vector<Wide>& corpusTexts) {
  return u"{\"action\":\"terminologyResolveRequest\"" + StringField(u"requestId", requestId) +
         ArrayField(u"glossaryIds", glossaryIds) + StringField(u"instructionId", instructionId) +
         ArrayField(u"corpusTexts", corpusTexts) + u"}";
}

Wide AbortForRunMessage(std::uint64_t runId) {
  return u"{\"action\":\"translateAbortForRun\",\"runId\":" + DecimalUnsigned(runId) + u"}";
}

}  // namespace quillmarch::addin
