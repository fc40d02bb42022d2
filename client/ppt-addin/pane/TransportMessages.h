// The messages that ask the page for something, as JSON text. Pure.
#pragma once

#include <vector>

#include "foundation/text/Wide.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

Wide TranslateBatchMessage(const Wide& requestId, const TranslateBatchRequest& request);
Wide TerminologyResolveMessage(const Wide& requestId, const std::vector<Wide>& glossaryIds,
                               const Wide& instructionId, const std::vector<Wide>& corpusTexts);
// Lets the page drop what it still has under way for a run.
Wide AbortForRunMessage(std::uint64_t runId);

}  // namespace quillmarch::addin
