// Puts one translation over one piece of text, keeping its look. Host thread only, with the gate
// held. A failure means that the text was not written: the host's own code where it refused the
// text, kFail where the place could not be read.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

// One line of a translation: breaks become one space between texts, trailing spaces and tabs go.
// Pure.
Wide FlattenTranslation(WideView text);

// Fails for a null range or an empty text.
ResultCode SetRangeText(AutomationObject* range, const Wide& text);

// A paragraph of the shape's frame, or the whole frame, as the locator says.
ResultCode ApplyParagraph(AutomationObject* shape, const UnitLocator& locator, const Wide& text,
                          const Wide& targetFont);

// The locator's character range of the shape's frame.
ResultCode ApplyCharacterRange(AutomationObject* shape, const UnitLocator& locator,
                               const Wide& text, const Wide& targetFont);

}  // namespace quillmarch::addin
