// Where text stands inside the shapes that the file format names.
#pragma once

#include <pugixml.hpp>
#include <string_view>

namespace model {

// A shape with its adjustments, as shares of one. Lengths in points.
struct PresetGeometry {
  pugi::xml_node list;  // its a:avLst
  double width;
  double height;

  // What the shape says, or else `otherwise`, held between 0 and `most`.
  double Adjust(std::string_view name, double otherwise, double most) const;
  double Short() const { return width < height ? width : height; }
  // How often the short side goes into the width or the height.
  double WideLimit() const { return Short() > 0 ? width / Short() : 0; }
  double TallLimit() const { return Short() > 0 ? height / Short() : 0; }
};

// From the shape's left top corner.
struct PresetEdges {
  double left, top, right, bottom;
};

// The whole box for a word that is not known.
PresetEdges PresetRoom(const PresetGeometry& geometry, std::string_view word);

}  // namespace model
