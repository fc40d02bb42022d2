// All that the pane knows of terminology. The glossaries and instructions on the user's disk, and
// the native resolve, have no readers yet: their answers here are those of an empty store.
#pragma once

#include <vector>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"
#include "translate/TranslateConfig.h"

namespace quillmarch::addin {

// The terms and the instruction out of a resolve's answer, disabled terms left out. Never fails.
void ReadResolvedTerms(const Wide& answer, Wide& instructionOut,
                       std::vector<GlossaryEntry>& glossaryOut);

// The native resolve: nothing is asked for and both outputs are emptied. Worker thread.
void ResolveTerminologyNative(const std::vector<Wide>& corpusTexts, Wide& instructionOut,
                              std::vector<GlossaryEntry>& glossaryOut);

// Whether the message is one of the terminology page's four questions. `replyOut` gets the script
// that answers it and stays empty. Host thread; `presentation` may be null.
bool HandleTerminologyMessage(AutomationObject* application, const Wide& message, Wide& replyOut,
                              AutomationObject* presentation);

}  // namespace quillmarch::addin
