// A frame's changed properties and place as edits on its part's bytes.
#pragma once

#include <pugixml.hpp>
#include <string_view>
#include <vector>

#include "host/deck/FrameProps.h"
#include "host/deck/ShapeTree.h"
#include "host/package/xml/Splice.h"

namespace quillmarch::host::deck {

// Whether the file has a place for the shape's a:xfrm.
bool TakesBox(const XmlNames& names, const ShapeEntry& shape);
// Writes the offset and extent, with the whole a:xfrm where there is none. `box` in points, in the
// coordinates of whatever holds the shape.
void AppendBoxEdits(const XmlNames& names, std::string_view bytes, const ShapeEntry& shape,
                    const ShapeBox& box, std::vector<Edit>& edits);
// Writes what differs between the two, both resolved, into the a:bodyPr of `body`. Of the
// properties wrap, autofit and insets can change.
void AppendFrameEdits(const XmlNames& names, std::string_view bytes, pugi::xml_node body,
                      const FrameProps& file, const FrameProps& now, std::vector<Edit>& edits);

}  // namespace quillmarch::host::deck
