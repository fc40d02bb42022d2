#include "host/model/TextRectangle.h"

#include <algorithm>

#include "host/model/PresetRooms.h"

namespace model {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;

}  // namespace

deck::ShapeBox TextRectangle(const deck::XmlNames& names, pugi::xml_node shape, double width,
                             double height) {
  const pugi::xml_node preset = names.Child(names.Child(shape, kP, "spPr"), kA, "prstGeom");
  const PresetGeometry geometry{names.Child(preset, kA, "avLst"), width, height};
  const PresetEdges edges = PresetRoom(geometry, preset.attribute("prst").value());
  return {edges.left, edges.top, std::max(0.0, edges.right - edges.left),
          std::max(0.0, edges.bottom - edges.top)};
}

deck::ShapeBox ShapeAround(const deck::XmlNames& names, pugi::xml_node shape,
                           const deck::ShapeBox& now, const deck::ShapeBox& wanted) {
  // Sides and corners hang on each other, so it is found step by step; a rectangle and an ellipse
  // are there at the first.
  constexpr int kSteps = 12;
  deck::ShapeBox size = now;
  for (int step = 0; step < kSteps; ++step) {
    const deck::ShapeBox room = TextRectangle(names, shape, size.width, size.height);
    if (room.width > 0) size.width *= wanted.width / room.width;
    if (room.height > 0) size.height *= wanted.height / room.height;
  }
  return size;
}

}  // namespace model
