// The text of a shared or inline string.
#pragma once

#include <string>

#include "host/package/xml/XmlReader.h"

namespace quillmarch::host::workbook {

// After the kStart of x:si or x:is: reads up to its kEnd and appends its text in UTF-8, the runs
// joined, phonetic readings left out.
void AppendRichText(XmlReader& reader, std::string& text);
// After a kStart: the text of the element itself, up to its kEnd.
std::string ReadElementText(XmlReader& reader);

}  // namespace quillmarch::host::workbook
