// Puts one translation over one piece of text, keeping its look. Host thread only, with the gate
// held. A failure means that the text was not written: the host's own code where it refused the
// text, kFail where the place could not be read.
#pragma once

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"
#include "run/document/TextUnit.h"

namespace quillmarch::addin {

// One line of a translation: breaks become one space between texts, trailing spaces and tabs go.
// Pure.
Wide FlattenTranslation(WideView text);

// Fails for a null range or an empty text.
ResultCode SetRangeText(AutomationObject* range, const Wide& text);

// Equal but for white space at both ends.
bool SameText(WideView a, WideView b);
// A frame's text as its unit has it: no breaks between the paragraphs.
Wide WithoutBreaks(WideView text);

// A success: the place shows the translation already, and nothing was written.
inline constexpr ResultCode kAlreadyThere = 1;
// The place shows neither the source nor the translation: it is the user's, and nothing was
// written.
inline constexpr ResultCode kOtherTextThere = MakeResult(0x80040211);

struct TextChange {
  // What the place must still show; null where it is not looked at.
  const Wide* from = nullptr;
  const Wide& to;
  Wide shown = {};  // out, with kOtherTextThere
};

// A paragraph of the shape's frame, or the whole frame, as the locator says.
ResultCode ApplyParagraph(AutomationObject* shape, const UnitLocator& locator, TextChange& change,
                          const Wide& targetFont);

// The locator's character range of the shape's frame.
ResultCode ApplyCharacterRange(AutomationObject* shape, const UnitLocator& locator,
                               TextChange& change, const Wide& targetFont);

}  // namespace quillmarch::addin
