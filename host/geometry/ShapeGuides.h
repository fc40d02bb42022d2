// The formulas by which a shape of the file format names the places in it.
#pragma once

#include <optional>
#include <pugixml.hpp>
#include <string_view>
#include <unordered_map>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::model {

// Lengths in EMU, angles in sixtieths of a thousandth of a degree, as the file has them. The names
// point into the parsed file.
class ShapeGuides {
 public:
  // For a shape of this size.
  ShapeGuides(double width, double height) : width_(width), height_(height) {}

  // Works out the a:gd elements of `list` in their order. A formula that cannot be read, or that
  // asks for an unknown name, gives its guide no value. Later guides win over earlier ones.
  void Read(const deck::XmlNames& names, pugi::xml_node list);

  // A number, a guide, or one of the names that every shape knows ("wd2", "vc", "cd4").
  std::optional<double> Value(std::string_view word) const;

 private:
  std::optional<double> Known(std::string_view word) const;
  std::optional<double> Formula(std::string_view text) const;

  double width_;
  double height_;
  std::unordered_map<std::string_view, double> guides_;
};

}  // namespace quillmarch::host::model
