// Edits on the raw XML of a run's properties (a:rPr): each returns the element with one thing
// changed and everything else as it was, to the byte. The order of children stays the one that
// the file format demands.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host::deck {

// In all of these `raw` is the whole element, or empty when the run has none; `prefix` is the
// drawing namespace's prefix with its colon ("a:").
std::string WithRunAttribute(std::string_view raw, std::string_view prefix, std::string_view name,
                             std::string_view value);
// `raw` without the attribute; unchanged when it has none.
std::string WithoutRunAttribute(std::string_view raw, std::string_view name);
// Sets the typeface of latin, ea or cs; other attributes of that child describe the old face and
// go.
std::string WithTypeface(std::string_view raw, std::string_view prefix, std::string_view local,
                         std::string_view face);
// Replaces any existing fill with a solid one; `color` is a whole colour element.
std::string WithSolidFill(std::string_view raw, std::string_view prefix, std::string_view color);
// The same element under another name, "a:endParaRPr" to "a:rPr" and back.
std::string RenamedElement(std::string_view raw, std::string_view name);
// As the run of a new text has it: without the spelling checker's marks on the old text.
std::string ForNewText(std::string_view raw);

}  // namespace quillmarch::host::deck
