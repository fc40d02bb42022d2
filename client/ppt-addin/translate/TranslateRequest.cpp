#include "translate/TranslateRequest.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "foundation/transport/RunHold.h"
#include "translate/ResponseChecks.h"
#include "translate/TranslateTrace.h"

namespace quillmarch::addin {

namespace {

bool FailCancelled(Wide& outMessage, Wide& outCode) {
  outMessage = u"Cancelled";
  outCode = u"cancelled";
  return false;
}

// A further attempt cannot help these.
bool EndsTheRun(const Wide& code) {
  return code == u"insufficient_credits" || code == u"unauthorized" || code == u"cancelled";
}

bool OccursInAny(std::span<const Wide> texts, const Wide& term) {
  return std::any_of(texts.begin(), texts.end(),
                     [&term](const Wide& text) { return text.find(term) != Wide::npos; });
}

std::vector<Wide> Slice(const std::vector<Wide>& list, std::size_t from, std::size_t to) {
  return {list.begin() + static_cast<std::ptrdiff_t>(from),
          list.begin() + static_cast<std::ptrdiff_t>(to)};
}

bool TranslateSlice(TranslateConfig& config, std::span<const Wide> texts, std::size_t from,
                    std::size_t to, std::vector<Wide>& joined, Wide& outMessage, Wide& outCode,
                    const std::vector<Wide>* unitIds) {
  std::vector<Wide> ids;
  const bool withIds = unitIds != nullptr && unitIds->size() == texts.size();
  if (withIds) ids = Slice(*unitIds, from, to);
  std::vector<Wide> part;
  if (!TranslateTexts(config, texts.subspan(from, to - from), part, outMessage, outCode,
                      withIds ? &ids : nullptr)) {
    return false;
  }
  std::move(part.begin(), part.end(), std::back_inserter(joined));
  return true;
}

bool TranslateInHalves(TranslateConfig& config, std::span<const Wide> texts,
                       std::vector<Wide>& outTranslations, Wide& outMessage, Wide& outCode,
                       const std::vector<Wide>* unitIds) {
  const std::size_t middle = texts.size() / 2;
  std::vector<Wide> joined;
  if (!TranslateSlice(config, texts, 0, middle, joined, outMessage, outCode, unitIds) ||
      !TranslateSlice(config, texts, middle, texts.size(), joined, outMessage, outCode, unitIds)) {
    return false;
  }
  if (joined.size() != texts.size()) {
    outMessage = u"Internal batch merge error";
    outCode.clear();
    return false;
  }
  outTranslations = std::move(joined);
  return CheckPlaceholders(config, texts, outTranslations, outMessage, outCode);
}

}  // namespace

bool TranslateTexts(TranslateConfig& config, std::span<const Wide> texts,
                    std::vector<Wide>& outTranslations, Wide& outMessage, Wide& outCode,
                    const std::vector<Wide>* unitIds) {
  outTranslations.clear();
  outMessage.clear();
  outCode.clear();
  if (texts.empty()) return true;
  if (!HoldWhilePaused(&config.cancelled, &config.paused)) {
    return FailCancelled(outMessage, outCode);
  }

  Wide firstMessage;
  Wide firstCode;
  // The second attempt follows at once: nothing is gained by waiting here, and a service that
  // needs rest gets it from the split.
  for (const bool isFirst : {true, false}) {
    if (TranslateOnce(config, texts, outTranslations, outMessage, outCode, unitIds)) {
      return CheckPlaceholders(config, texts, outTranslations, outMessage, outCode);
    }
    if (EndsTheRun(outCode)) return false;
    if (isFirst) {
      firstMessage = outMessage;
      firstCode = outCode;
    }
  }
  if (texts.size() > 1) {
    return TranslateInHalves(config, texts, outTranslations, outMessage, outCode, unitIds);
  }
  if (outMessage.empty()) {
    outMessage = firstMessage;
    outCode = firstCode;
  }
  return false;
}

bool TranslateOnce(TranslateConfig& config, std::span<const Wide> texts,
                   std::vector<Wide>& outTranslations, Wide& outMessage, Wide& outCode,
                   const std::vector<Wide>* unitIds) {
  outTranslations.clear();
  outMessage.clear();
  outCode.clear();
  if (texts.empty()) return true;
  if (IsSet(&config.cancelled)) return FailCancelled(outMessage, outCode);
  const TranslateBatchRequest request = BuildBatchRequest(config, texts, unitIds);
  if (!HoldWhilePaused(&config.cancelled, &config.paused)) {
    return FailCancelled(outMessage, outCode);
  }

  TranslateAttempt attempt;
  attempt.clientTraceId = request.clientTraceId;
  attempt.runId = request.runId;
  attempt.batchSeq = request.batchSeq;
  attempt.segs = texts.size();
  for (const Wide& text : texts) attempt.chars += text.size();

  const auto start = std::chrono::steady_clock::now();
  TranslateBatchResult result =
      config.translateViaPage ? config.translateViaPage(request) : PostTranslate(config, request);
  attempt.httpMs = std::chrono::duration_cast<std::chrono::milliseconds>(
                       std::chrono::steady_clock::now() - start)
                       .count();
  attempt.ok = result.ok;
  attempt.code = result.code;
  WriteTranslateTrace(AttemptText(attempt).c_str());

  if (!result.ok) {
    outMessage = std::move(result.message);
    outCode = std::move(result.code);
    return false;
  }
  if (result.translations.size() != texts.size()) {
    outMessage = u"Translation count mismatch";
    return false;
  }
  outTranslations = std::move(result.translations);
  return true;
}

bool TranslateSingle(TranslateConfig& config, const Wide& text, Wide& outTranslation,
                     Wide& outMessage, Wide& outCode) {
  outTranslation.clear();
  std::vector<Wide> translations;
  if (!TranslateTexts(config, std::span(&text, 1), translations, outMessage, outCode, nullptr))
    return false;
  if (translations.size() != 1) {
    outMessage = u"Internal translation error";
    outCode.clear();
    return false;
  }
  outTranslation = std::move(translations.front());
  return true;
}

TranslateBatchRequest BuildBatchRequest(const TranslateConfig& config, std::span<const Wide> texts,
                                        const std::vector<Wide>* unitIds) {
  TranslateBatchRequest request;
  request.texts.assign(texts.begin(), texts.end());
  if (unitIds != nullptr && unitIds->size() == texts.size()) request.unitIds = *unitIds;
  request.sourceLang = config.sourceLang;
  request.targetLang = config.targetLang;
  request.usageKind = config.usageKind;
  request.clientProduct = config.clientProduct;
  request.instruction = config.instruction;
  request.clientTraceId = config.clientTraceId;
  request.runId = config.runId;
  request.batchSeq = config.batchSeq;
  // A batch carries the terms that it uses and no other.
  std::copy_if(config.glossary.begin(), config.glossary.end(), std::back_inserter(request.glossary),
               [&texts](const GlossaryEntry& entry) {
                 return !entry.source.empty() && OccursInAny(texts, entry.source);
               });
  return request;
}

TranslateBatchResult PostTranslate(const TranslateConfig& config,
                                   const TranslateBatchRequest& request) {
  const Endpoint endpoint{config.host, config.port, config.useHttps};
  Wide transportError;
  std::uint32_t status = 0;
  const Wide answer =
      HttpPostJson(endpoint, u"/v1/translate", ToUtf8(BuildRequestBody(request)), &transportError,
                   &config.accessToken, &config.cancelled, &config.paused, &status);
  return ReadTranslateResponse(status, answer, transportError, request.texts);
}

}  // namespace quillmarch::addin
