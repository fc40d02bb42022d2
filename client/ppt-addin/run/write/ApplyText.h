// Puts one translation over one piece of text, keeping its look. Host thread only, with the gate
// held. False means that the text was not written.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/Wide.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

// One line of a translation: breaks become one blank between texts, trailing blanks and tabs go.
// Pure.
Wide FlattenTranslation(WideView text);

// False for a null range or an empty text.
bool SetRangeText(AutomationObject* range, const Wide& text);

// A paragraph of the shape's frame, or the whole frame, as the locator says.
bool ApplyParagraph(AutomationObject* shape, const UnitLocator& locator, const Wide& text,
                    const Wide& targetFont);

// The locator's character range of the shape's frame.
bool ApplyCharacterRange(AutomationObject* shape, const UnitLocator& locator, const Wide& text,
                         const Wide& targetFont);

}  // namespace quillmarch::addin
