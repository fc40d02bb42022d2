#include "translate/ResponseChecks.h"

#include <utility>

#include "foundation/text/CharClass.h"
#include "foundation/text/JsonText.h"
#include "foundation/transport/RunHold.h"
#include "translate/TranslateRequest.h"

namespace quillmarch::addin {

namespace {

constexpr std::uint32_t kStatusUnauthorized = 401;
constexpr std::uint32_t kStatusPaymentRequired = 402;
constexpr std::size_t kShortestPlaceholder = 7;

constexpr char16_t kCreditsCode[] = u"insufficient_credits";
constexpr char16_t kCreditsWords[] = u"积分不足";
// Between the words are the three bytes of a full-width comma, read one by one. The panel knows
// the text in this form, so they stay.
constexpr char16_t kCreditsMessage[] = u"积分不足\u00EF\u00BC\u008C请充值或升级套餐后继续翻译。";

void FillFromStatus(std::uint32_t status, WideView transportError, TranslateBatchResult& result) {
  if (status == kStatusUnauthorized) {
    result.code = u"unauthorized";
    result.message = u"登录已失效，请重新登录";
  } else if (status == kStatusPaymentRequired) {
    result.code = kCreditsCode;
    result.message = kCreditsMessage;
  } else {
    result.code = u"network_error";
    result.message = transportError.empty() ? WideView(u"HTTP request failed") : transportError;
  }
}

void FillFromErrorBody(std::uint32_t status, WideView body, TranslateBatchResult& result) {
  result.message = ReadErrorMessage(body);
  if (result.message.empty()) result.message = u"Empty translation response";
  result.code = JsonGetString(body, u"code");
  if (result.code.empty()) result.code = JsonGetString(body, u"error");
  if (!result.code.empty()) return;
  if (status == kStatusUnauthorized) {
    result.code = u"unauthorized";
  } else if (status == kStatusPaymentRequired || result.message.find(kCreditsCode) != Wide::npos ||
             result.message.find(kCreditsWords) != Wide::npos) {
    result.code = kCreditsCode;
  }
}

bool IsAsciiDigit(char16_t unit) {
  return unit >= u'0' && unit <= u'9';
}

bool IsLetter(char16_t unit, char16_t upper) {
  return unit == upper || unit == upper + 0x20;
}

// The length of the placeholder that `text` begins with, 0 when it begins with none.
std::size_t PlaceholderLength(WideView text) {
  if (text.size() < kShortestPlaceholder || !text.starts_with(u"[[") || !IsLetter(text[2], u'Q') ||
      !IsLetter(text[3], u'M') || text[4] != u'_') {
    return 0;
  }
  std::size_t at = 5;
  while (at < text.size() && IsAlnum(text[at])) ++at;
  if (at == text.size() || text[at] != u'_') return 0;
  const std::size_t digits = ++at;
  while (at < text.size() && IsAsciiDigit(text[at])) ++at;
  return at > digits && text.substr(at).starts_with(u"]]") ? at + 2 : 0;
}

// One further attempt at a text whose translation has lost placeholders or gained some.
bool RepairPlaceholders(TranslateConfig& config, const Wide& source, std::int32_t expected,
                        Wide& translation, Wide& outMessage, Wide& outCode) {
  std::vector<Wide> repaired;
  if (!TranslateOnce(config, std::span(&source, 1), repaired, outMessage, outCode, nullptr) ||
      repaired.size() != 1) {
    if (outMessage.empty()) outMessage = u"Placeholder repair failed";
    return false;
  }
  if (CountPlaceholders(repaired.front()) != expected) {
    outMessage = u"Translation altered locked placeholders (cross-ref/formula)";
    outCode.clear();
    return false;
  }
  translation = std::move(repaired.front());
  return true;
}

}  // namespace

TranslateBatchResult ReadTranslateResponse(std::uint32_t status, WideView body,
                                           WideView transportError,
                                           const std::vector<Wide>& texts) {
  TranslateBatchResult result;
  if (body.empty()) {
    FillFromStatus(status, transportError, result);
    return result;
  }
  std::vector<Wide> translations = JsonGetStringArray(body, u"translations");
  if (translations.empty()) {
    FillFromErrorBody(status, body, result);
    return result;
  }
  if (translations.size() != texts.size()) {
    result.message = u"Translation count mismatch";
    return result;
  }
  result.ok = true;
  result.translations = std::move(translations);
  result.unitIds = JsonGetStringArray(body, u"unitIds");
  if (result.unitIds.size() != result.translations.size()) result.unitIds.clear();
  return result;
}

Wide ReadErrorMessage(WideView body) {
  Wide message = JsonGetString(body, u"message");
  return message.empty() ? JsonGetString(body, u"error") : message;
}

std::int32_t CountPlaceholders(WideView text) {
  std::int32_t count = 0;
  while (text.size() >= kShortestPlaceholder) {
    const std::size_t bracket = text.find(u'[');
    if (bracket == WideView::npos) break;
    text.remove_prefix(bracket);
    const std::size_t length = PlaceholderLength(text);
    if (length > 0) ++count;
    text.remove_prefix(length > 0 ? length : 1);
  }
  return count;
}

bool CheckPlaceholders(TranslateConfig& config, std::span<const Wide> sources,
                       std::vector<Wide>& translations, Wide& outMessage, Wide& outCode) {
  for (std::size_t i = 0; i < sources.size() && i < translations.size(); ++i) {
    if (!HoldWhilePaused(&config.cancelled, &config.paused)) {
      outMessage = u"Cancelled";
      outCode = u"cancelled";
      return false;
    }
    // Only the number counts: a placeholder whose inside was changed passes.
    const std::int32_t expected = CountPlaceholders(sources[i]);
    if (expected == 0 || CountPlaceholders(translations[i]) == expected) continue;
    if (!RepairPlaceholders(config, sources[i], expected, translations[i], outMessage, outCode)) {
      return false;
    }
  }
  return true;
}

}  // namespace quillmarch::addin
