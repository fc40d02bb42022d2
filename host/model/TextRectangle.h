// Where the text of a shape stands inside the shape's own box.
#pragma once

#include <pugixml.hpp>

#include "host/deck/ShapeTree.h"

namespace model {

// Points from the shape's left top corner, insets not yet taken off, for a shape of that size. The
// whole box for geometries that are not known.
deck::ShapeBox TextRectangle(const deck::XmlNames& names, pugi::xml_node shape, double width,
                             double height);

// The size that gives the shape's text rectangle the size of `wanted`; only that counts of it.
deck::ShapeBox ShapeAround(const deck::XmlNames& names, pugi::xml_node shape,
                           const deck::ShapeBox& now, const deck::ShapeBox& wanted);

}  // namespace model
