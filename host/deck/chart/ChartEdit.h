// Elements of a chart part put in place of others, as edits on its bytes.
#pragma once

#include <pugixml.hpp>
#include <string>
#include <string_view>

#include "host/package/xml/Splice.h"

namespace quillmarch::host::deck {

// The bytes of a whole element.
std::string_view RawElement(std::string_view bytes, pugi::xml_node element);
// The same without its own tags.
std::string_view RawContent(std::string_view bytes, pugi::xml_node element);

// `xml` instead of the element, or of what it holds.
Edit ReplaceElement(std::string_view bytes, pugi::xml_node element, std::string xml);
Edit ReplaceContent(std::string_view bytes, pugi::xml_node element, std::string xml);
// `xml` into `parent`, after its child `after`, or before all children when that is null.
Edit InsertElement(std::string_view bytes, pugi::xml_node parent, pugi::xml_node after,
                   std::string xml);

}  // namespace quillmarch::host::deck
