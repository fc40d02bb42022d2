// What libexpat with namespaces says of a document: the second opinion beside our own check.
#pragma once

#include <string>

#include "host/package/xml/XmlCheck.h"

namespace quillmarch::host {

bool ExpatAccepts(const std::string& bytes);

// Whether a fault of ours is one that expat does not know: bounds of our own, the document type,
// encodings that packages do not allow, versions of XML to come.
bool IsOurOwnRule(XmlFault fault);

}  // namespace quillmarch::host
