// Turns a list of source texts into a list of translations of the same length: the request, the
// ladder of retry and split, and one trace line for each attempt.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "foundation/text/Wide.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

// True and as many translations as texts, or false with message and code. `unitIds` may be null.
bool TranslateTexts(TranslateConfig& config, std::span<const Wide> texts,
                    std::vector<Wide>& outTranslations, Wide& outMessage, Wide& outCode,
                    const std::vector<Wide>* unitIds);
// One attempt.
bool TranslateOnce(TranslateConfig& config, std::span<const Wide> texts,
                   std::vector<Wide>& outTranslations, Wide& outMessage, Wide& outCode,
                   const std::vector<Wide>* unitIds);
bool TranslateSingle(TranslateConfig& config, const Wide& text, Wide& outTranslation,
                     Wide& outMessage, Wide& outCode);

TranslateBatchRequest BuildBatchRequest(const TranslateConfig& config, std::span<const Wide> texts,
                                        const std::vector<Wide>* unitIds);
// The request body as JSON text, without spaces, keys in their fixed order.
Wide BuildRequestBody(const TranslateBatchRequest& request);
// The native transport.
TranslateBatchResult PostTranslate(const TranslateConfig& config,
                                   const TranslateBatchRequest& request);
void WriteTranslateTrace(const char* text);

}  // namespace quillmarch::addin
