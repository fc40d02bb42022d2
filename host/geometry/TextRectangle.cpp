#include "host/geometry/TextRectangle.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/geometry/PresetTextRects.h"
#include "host/geometry/ShapeGuides.h"

namespace quillmarch::host::model {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr double kEmuPerPoint = 12700.0;

// The text rectangle that a custom outline names; nothing when it names none.
std::optional<PresetEdges> OwnRect(const deck::XmlNames& names, pugi::xml_node custom, double width,
                                   double height) {
  const pugi::xml_node rectangle = names.Child(custom, kA, "rect");
  if (!rectangle) return std::nullopt;
  ShapeGuides guides(width * kEmuPerPoint, height * kEmuPerPoint);
  guides.Read(names, names.Child(custom, kA, "avLst"));
  guides.Read(names, names.Child(custom, kA, "gdLst"));
  const auto edge = [&](const char* name) {
    return guides.Value(rectangle.attribute(name).value());
  };
  const std::optional<double> left = edge("l"), top = edge("t"), right = edge("r"),
                              bottom = edge("b");
  if (!left || !top || !right || !bottom) return std::nullopt;
  return PresetEdges{*left / kEmuPerPoint, *top / kEmuPerPoint, *right / kEmuPerPoint,
                     *bottom / kEmuPerPoint};
}

}  // namespace

deck::ShapeBox TextRectangle(const deck::XmlNames& names, pugi::xml_node shape, double width,
                             double height) {
  const pugi::xml_node properties = names.Child(shape, kP, "spPr");
  const pugi::xml_node preset = names.Child(properties, kA, "prstGeom");
  const PresetGeometry geometry{names.Child(preset, kA, "avLst"), width, height};
  PresetEdges edges = PresetTextRect(geometry, preset.attribute("prst").value());
  if (!preset) {
    const pugi::xml_node custom = names.Child(properties, kA, "custGeom");
    edges = OwnRect(names, custom, width, height).value_or(edges);
  }
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
    const deck::ShapeBox rect = TextRectangle(names, shape, size.width, size.height);
    if (rect.width > 0) size.width *= wanted.width / rect.width;
    if (rect.height > 0) size.height *= wanted.height / rect.height;
  }
  return size;
}

bool StandsAcross(double turn) {
  return std::fabs(std::sin(turn)) > std::fabs(std::cos(turn));
}

deck::ShapeBox TurnedAround(const deck::ShapeBox& box, const deck::ShapeBox& area, double turn) {
  if (turn == 0) return box;
  const double middleX = area.left + area.width / 2.0;
  const double middleY = area.top + area.height / 2.0;
  const double x = box.left + box.width / 2.0 - middleX;
  const double y = box.top + box.height / 2.0 - middleY;
  const double sine = std::sin(turn);
  const double cosine = std::cos(turn);
  const double width = std::fabs(box.width * cosine) + std::fabs(box.height * sine);
  const double height = std::fabs(box.width * sine) + std::fabs(box.height * cosine);
  return {middleX + x * cosine - y * sine - width / 2.0,
          middleY + x * sine + y * cosine - height / 2.0, width, height};
}

}  // namespace quillmarch::host::model
