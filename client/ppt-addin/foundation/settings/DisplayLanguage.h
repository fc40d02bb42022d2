// The language in which the add-in shows its own words: the user's choice, else that of the host's
// user interface, else the system's. Main thread.
#pragma once

#include <cstdint>
#include <span>

#include "foundation/automation/AutomationObject.h"
#include "foundation/text/ResultCode.h"
#include "foundation/text/Wide.h"
#include "resources/StringTable.h"

namespace quillmarch {

struct DisplayLanguage {
  const char16_t* tag;   // such as "zh-CN"
  const char16_t* name;  // in the language itself
};

// In the order of the language dialog.
std::span<const DisplayLanguage> DisplayLanguages();
bool IsDisplayLanguage(WideView tag);

// The tag in force. The configuration is read at each call, so that a change counts at once; the
// host's language is asked once. `application` may be null, which takes the system's.
Wide ResolveLang(AutomationObject* application);
// Lets the next ResolveLang ask the host again.
void ForgetSystemLanguage();
// The tag for a Windows language id; "en" for 0 and for languages without a table.
Wide TagOfLanguageId(std::uint32_t id);

// The rows of a tag; an unknown one gives the English rows.
std::span<const StringRow> TableFor(WideView tag);
// The text in the resolved language, else in English, else empty.
Wide Text(WideView key);
// Replaces the first "{hr}" by the code as 0x and eight hexadecimal digits in capitals.
Wide FormatHr(WideView text, ResultCode hr);
Wide PaneTitle();

}  // namespace quillmarch
