// Names of parts and the targets that lead to them.
#pragma once

#include <string>
#include <string_view>

namespace quillmarch::host {

// What two names of one part have in common: percent-encoding resolved, ASCII letters small.
std::string PartKey(std::string_view name);

// Why a zip entry of that name has no place in a package, as the end of a sentence; empty when it
// has.
std::string_view EntryNameFault(std::string_view name);

// Whether the text begins with a URI scheme, such as "https:" or "file:".
bool HasUriScheme(std::string_view target);

struct ResolvedTarget {
  std::string name;     // without the leading slash, percent-encoding resolved
  bool inside = false;  // false: the target climbs out of the package or hides a separator
};

// A relationship's internal target, relative to the part `source` (empty: the package itself) or
// absolute. A fragment is dropped, backslashes count as slashes.
ResolvedTarget ResolveTarget(std::string_view source, std::string_view target);

// Where the relationships of a part are kept: "ppt/slides/_rels/slide1.xml.rels"; "_rels/.rels"
// for the package itself (empty name).
std::string RelationshipsPartName(std::string_view name);

// A name as it can stand in a sentence on a terminal: "?" for control characters and for bytes
// that are not UTF-8, the rest left out when it is very long.
std::string Printable(std::string_view name);

}  // namespace quillmarch::host
