#include "host/model/TextRectangle.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace model {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr XmlNamespace kP = XmlNamespace::kPresentation;
constexpr double kWhole = 100000.0;
// What a quarter circle leaves of its corner to a rectangle: 1 - cos 45 degrees.
constexpr double kCorner = 0.29289321881345254;

// A shape with its adjustments, as shares of one.
struct Geometry {
  pugi::xml_node list;
  double width;
  double height;

  double Adjust(std::string_view name, double otherwise, double most) const {
    for (const pugi::xml_node guide : list.children()) {
      if (guide.attribute("name").value() != name) continue;
      // The formula of an adjustment is always "val" and its number.
      const std::string_view formula = guide.attribute("fmla").value();
      if (!formula.starts_with("val ")) break;
      const double value = std::strtod(formula.data() + 4, nullptr) / kWhole;
      return std::clamp(value, 0.0, std::max(most, 0.0));
    }
    return std::clamp(otherwise, 0.0, std::max(most, 0.0));
  }
  double Short() const { return std::min(width, height); }
  // How often the short side goes into the width or the height.
  double WideLimit() const { return Short() > 0 ? width / Short() : 0; }
  double TallLimit() const { return Short() > 0 ? height / Short() : 0; }
};

struct Edges {
  double left, top, right, bottom;
};

Edges Inside(const Geometry& g, double side, double end) {
  return {side, end, g.width - side, g.height - end};
}

Edges Arrow(const Geometry& g, bool across, bool headAtEnd) {
  const double along = across ? g.width : g.height;
  const double side = across ? g.height : g.width;
  const double shaft = g.Adjust("adj1", 0.5, 1.0);
  const double head = g.Short() * g.Adjust("adj2", 0.5, across ? g.WideLimit() : g.TallLimit());
  const double margin = side * (1.0 - shaft) / 2.0;
  // The text reaches as far into the head as the shaft's height lets it.
  const double reach = head * (1.0 - shaft);
  const double begin = headAtEnd ? 0.0 : reach;
  const double end = headAtEnd ? along - reach : along;
  if (across) return {begin, margin, end, side - margin};
  return {margin, begin, side - margin, end};
}

Edges RoundRectangle(const Geometry& g, const char* name, double radius) {
  const double inset = g.Short() * g.Adjust(name, radius, 0.5) * kCorner;
  return Inside(g, inset, inset);
}

Edges Hexagon(const Geometry& g) {
  const double limit = 0.5 * g.WideLimit();
  const double adjust = g.Adjust("adj", 0.25, limit);
  if (limit <= 0) return Inside(g, 0, 0);
  const double middle = limit / -2.0;
  const bool flat = adjust + middle > 0;
  const double share =
      (flat ? 4.0 : 2.0) - (flat ? 3.0 : 2.0) * (adjust + (flat ? middle : 0.0)) / middle;
  return Inside(g, g.width * share / 24.0, g.height * share / 24.0);
}

Edges EdgesOf(const Geometry& g, std::string_view word) {
  const double w = g.width;
  const double h = g.height;
  if (word == "roundRect") return RoundRectangle(g, "adj", 0.16667);
  if (word == "wedgeRoundRectCallout") return RoundRectangle(g, "adj3", 0.16667);
  if (word == "flowChartAlternateProcess") return RoundRectangle(g, "", 1.0 / 6.0);
  if (word == "plaque") {
    const double inset = g.Short() * g.Adjust("adj", 0.16667, 0.5) * (1.0 - kCorner);
    return Inside(g, inset, inset);
  }
  if (word == "round2SameRect" || word == "round1Rect" || word == "round2DiagRect") {
    const char* const first = word == "round1Rect" ? "adj" : "adj1";
    const double one = g.Short() * g.Adjust(first, 0.16667, 0.5) * kCorner;
    if (word == "round1Rect") return {0, 0, w - one, h};
    const double two = g.Short() * g.Adjust("adj2", 0.0, 0.5) * kCorner;
    const double side = std::max(one, two);
    if (word == "round2DiagRect") return Inside(g, side, side);
    return {side, one, w - side, h - two};
  }
  if (word == "ellipse" || word == "flowChartConnector" || word == "wedgeEllipseCallout" ||
      word == "donut") {
    return Inside(g, w * kCorner / 2.0, h * kCorner / 2.0);
  }
  if (word == "diamond" || word == "flowChartDecision") return Inside(g, w / 4.0, h / 4.0);
  if (word == "triangle") {
    const double left = w * g.Adjust("adj", 0.5, 1.0) / 2.0;
    return {left, h / 2.0, left + w / 2.0, h};
  }
  if (word == "rtTriangle") return {w / 12.0, h * 7.0 / 12.0, w * 7.0 / 12.0, h * 11.0 / 12.0};
  if (word == "parallelogram") {
    const double limit = g.WideLimit();
    const double share =
        limit > 0 ? (1.0 + 5.0 * g.Adjust("adj", 0.25, limit) / limit) / 12.0 : 0.0;
    return Inside(g, w * share, h * share);
  }
  if (word == "trapezoid") {
    const double limit = 0.5 * g.WideLimit();
    const double share = limit > 0 ? g.Adjust("adj", 0.25, limit) / limit / 3.0 : 0.0;
    return {w * share, h * share, w * (1.0 - share), h};
  }
  if (word == "hexagon") return Hexagon(g);
  if (word == "octagon") {
    const double inset = g.Short() * g.Adjust("adj", kCorner, 0.5) / 2.0;
    return Inside(g, inset, inset);
  }
  if (word == "plus") {
    const double arm = g.Short() * g.Adjust("adj", 0.25, 0.5);
    return w > h ? Inside(g, 0, arm) : Inside(g, arm, 0);
  }
  if (word == "frame" || word == "bevel") {
    const double inset = g.Short() * g.Adjust(word == "frame" ? "adj1" : "adj", 0.125, 0.5);
    return Inside(g, inset, inset);
  }
  if (word == "chevron") {
    const double point = g.Short() * g.Adjust("adj", 0.5, g.WideLimit());
    return w - 2.0 * point > 0 ? Inside(g, point, 0) : Inside(g, 0, 0);
  }
  if (word == "homePlate") {
    return {0, 0, w - g.Short() * g.Adjust("adj", 0.5, g.WideLimit()) / 2.0, h};
  }
  if (word == "rightArrow") return Arrow(g, true, true);
  if (word == "leftArrow") return Arrow(g, true, false);
  if (word == "downArrow") return Arrow(g, false, true);
  if (word == "upArrow") return Arrow(g, false, false);
  if (word == "can") {
    const double lid = g.Short() * g.Adjust("adj", 0.25, 0.5 * g.TallLimit());
    return {0, lid, w, h - lid / 2.0};
  }
  if (word == "cube") {
    const double depth = g.Short() * g.Adjust("adj", 0.25, 1.0);
    return {0, depth, w - depth, h};
  }
  if (word == "foldedCorner") return {0, 0, w, h - g.Short() * g.Adjust("adj", 0.16667, 0.5)};
  if (word == "flowChartTerminator") return Inside(g, w * 1018.0 / 21600.0, h * 3163.0 / 21600.0);
  if (word == "flowChartInputOutput" || word == "flowChartPreparation") {
    return Inside(g, w / 5.0, 0);
  }
  if (word == "flowChartDocument") return {0, 0, w, h * 17322.0 / 21600.0};
  return Inside(g, 0, 0);
}

}  // namespace

deck::ShapeBox TextRectangle(const deck::XmlNames& names, pugi::xml_node shape, double width,
                             double height) {
  const pugi::xml_node preset = names.Child(names.Child(shape, kP, "spPr"), kA, "prstGeom");
  const Geometry geometry{names.Child(preset, kA, "avLst"), width, height};
  const Edges edges = EdgesOf(geometry, preset.attribute("prst").value());
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
