// A translation road without a network: it answers each attempt as a test says and keeps the
// requests.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

class ScriptedPage {
 public:
  using Answer = std::function<TranslateBatchResult(const TranslateBatchRequest&)>;

  // Makes `config` translate through this page, which must outlive its use.
  ScriptedPage(TranslateConfig& config, Answer answer) : answer_(std::move(answer)) {
    config.translateViaPage = [this](const TranslateBatchRequest& request) {
      requests.push_back(request);
      return answer_(request);
    };
  }
  ScriptedPage(const ScriptedPage&) = delete;
  ScriptedPage& operator=(const ScriptedPage&) = delete;

  // How many texts each attempt held, in order.
  std::vector<std::size_t> Sizes() const {
    std::vector<std::size_t> sizes;
    for (const TranslateBatchRequest& request : requests) sizes.push_back(request.texts.size());
    return sizes;
  }

  std::vector<TranslateBatchRequest> requests;

 private:
  Answer answer_;
};

inline TranslateBatchResult Translated(std::vector<Wide> translations) {
  TranslateBatchResult result;
  result.ok = true;
  result.translations = std::move(translations);
  return result;
}

inline TranslateBatchResult Refused(Wide code, Wide message) {
  TranslateBatchResult result;
  result.code = std::move(code);
  result.message = std::move(message);
  return result;
}

// Each text with "T:" before it.
inline TranslateBatchResult Echo(const TranslateBatchRequest& request) {
  std::vector<Wide> translations;
  for (const Wide& text : request.texts) translations.push_back(u"T:" + text);
  return Translated(std::move(translations));
}

inline std::vector<Wide> NumberedTexts(std::size_t count) {
  std::vector<Wide> texts;
  for (std::size_t i = 0; i < count; ++i) texts.push_back(u"text " + DecimalUnsigned(i));
  return texts;
}

}  // namespace quillmarch::addin
