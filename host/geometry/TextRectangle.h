// Where the text of a shape goes inside the shape's own box.
#pragma once

#include <pugixml.hpp>

#include "host/deck/ShapeTree.h"

namespace quillmarch::host::model {

// Points from the shape's left top corner, insets not yet taken off, for a shape of that size. The
// whole box for geometries that are not known.
deck::ShapeBox TextRectangle(const deck::XmlNames& names, pugi::xml_node shape, double width,
                             double height);

// The size that gives the shape's text rectangle the size of `wanted`; only that counts of it.
deck::ShapeBox ShapeAround(const deck::XmlNames& names, pugi::xml_node shape,
                           const deck::ShapeBox& now, const deck::ShapeBox& wanted);

// Whether text that is turned by `turn` (radians, clockwise) within its shape runs rather down or
// up than across. The sides of its area then change places.
bool StandsAcross(double turn);
// The box around `box` when it is turned about the middle of `area`.
deck::ShapeBox TurnedAround(const deck::ShapeBox& box, const deck::ShapeBox& area, double turn);

}  // namespace quillmarch::host::model
