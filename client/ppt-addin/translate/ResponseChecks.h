// What an answer of the service must look like, and the guard of locked placeholders.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "foundation/text/Wide.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

TranslateBatchResult ReadTranslateResponse(std::uint32_t status, WideView body,
                                           WideView transportError, const std::vector<Wide>& texts);
// The value of "message", or, when that is empty or missing, of "error".
Wide ReadErrorMessage(WideView body);
std::int32_t CountPlaceholders(WideView text);
// May replace entries of `translations`, by one further attempt each.
bool CheckPlaceholders(TranslateConfig& config, std::span<const Wide> sources,
                       std::vector<Wide>& translations, Wide& outMessage, Wide& outCode);

}  // namespace quillmarch::addin
