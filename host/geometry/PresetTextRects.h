// Where text goes inside the preset shapes that the file format names; here the common ones.
#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace quillmarch::host::model {

// A shape with its adjustments, as shares of one. Lengths in points.
struct PresetGeometry {
  pugi::xml_node list;  // its a:avLst
  double width;
  double height;

  // What the shape says, or else `otherwise`.
  double Stored(std::string_view name, double otherwise) const;
  // The same, held between 0 and `most`.
  double Adjust(std::string_view name, double otherwise, double most) const;
  // An angle, in degrees below 360.
  double AdjustAngle(std::string_view name, double otherwise) const;
  double Short() const { return width < height ? width : height; }
  // How often the short side goes into the width or the height.
  double WideLimit() const { return Short() > 0 ? width / Short() : 0; }
  double TallLimit() const { return Short() > 0 ? height / Short() : 0; }
};

// From the shape's left top corner.
struct PresetEdges {
  double left, top, right, bottom;
};

// What a quarter circle leaves of its corner to a rectangle: 1 - cos 45 degrees.
inline constexpr double kCorner = 0.29289321881345254;

// The rectangle that keeps the same distances at both sides, and at both ends.
PresetEdges RectInside(const PresetGeometry& geometry, double side, double end);

// The whole box for a word that is not known.
PresetEdges PresetTextRect(const PresetGeometry& geometry, std::string_view word);

}  // namespace quillmarch::host::model
