#include "host/geometry/UncommonTextRects.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace quillmarch::host::model {
namespace {

using Geometry = PresetGeometry;

constexpr double kDegree = std::numbers::pi / 180.0;
// How far the signs of arithmetic reach across their box.
constexpr double kSign = 0.7349;

// An arrow with several heads, as shares of the short side.
struct Heads {
  double shaft, half, length;  // the shaft's width, half of a head's width, a head's length
};

// `sharing` heads share a side's length.
Heads HeadsOf(const Geometry& g, double usual, double sharing) {
  const double half = g.Adjust("adj2", usual, 0.5);
  const double shaft = g.Adjust("adj1", usual, 2.0 * half);
  return {shaft, half, g.Adjust("adj3", usual, (1.0 - 2.0 * half) / sharing)};
}

// How far from a head's tip the text may begin: where the head is as wide as the shaft.
double ReachOf(const Geometry& g, const Heads& heads) {
  return heads.half > 0 ? g.Short() * heads.shaft * heads.length / heads.half / 2.0 : 0.0;
}

PresetEdges LeftUpArrow(const Geometry& g) {
  const Heads heads = HeadsOf(g, 0.25, 1.0);
  const double middle = g.height - g.Short() * heads.half;
  const double side = g.Short() * heads.shaft / 2.0;
  return {ReachOf(g, heads), middle - side, g.width - g.Short() * heads.half, middle + side};
}

PresetEdges LeftRightUpArrow(const Geometry& g) {
  const Heads heads = HeadsOf(g, 0.25, 2.0);
  const double middle = g.height - g.Short() * heads.half;
  const double side = g.Short() * heads.shaft / 2.0;
  const double reach = ReachOf(g, heads);
  return {reach, middle - side, g.width - reach, middle + side};
}

PresetEdges QuadArrow(const Geometry& g) {
  const Heads heads = HeadsOf(g, 0.225, 2.0);
  return RectInside(g, ReachOf(g, heads), (g.height - g.Short() * heads.shaft) / 2.0);
}

PresetEdges QuadArrowCallout(const Geometry& g) {
  constexpr double kUsual = 0.18515;
  const double half = g.Adjust("adj2", kUsual, 0.5);
  const double shaft = g.Adjust("adj1", kUsual, 2.0 * half);
  const double head = g.Adjust("adj3", kUsual, 0.5 - half);
  const double box = std::max(shaft, g.Adjust("adj4", 0.48123, 1.0 - 2.0 * head));
  return RectInside(g, g.width * (1.0 - box) / 2.0, g.height * (1.0 - box) / 2.0);
}

PresetEdges BentUpArrow(const Geometry& g) {
  const double shaft = g.Short() * g.Adjust("adj1", 0.25, 0.5);
  const double middle = g.width - g.Short() * g.Adjust("adj2", 0.25, 0.5);
  return {0, g.height - shaft, middle + shaft / 2.0, g.height};
}

// The inscribed rectangle of the ellipse that the ring's middle runs along.
PresetEdges CircularArrow(const Geometry& g) {
  const double head = g.Adjust("adj5", 0.125, 0.25);
  const double ring = g.Adjust("adj1", 0.125, 2.0 * head);
  const double inset = g.Short() * (head - ring / 2.0);
  const auto side = [inset](double length) {
    return length / 2.0 - (length / 2.0 - inset) * (1.0 - kCorner);
  };
  return RectInside(g, side(g.width), side(g.height));
}

PresetEdges Sun(const Geometry& g) {
  const double rays = 0.5 - std::max(0.125, g.Adjust("adj", 0.25, 0.46875));
  const double share = 0.5 - rays * (1.0 - kCorner);
  return RectInside(g, g.width * share, g.height * share);
}

PresetEdges Moon(const Geometry& g) {
  const double thick = g.Adjust("adj", 0.5, 0.875);
  const double left = thick * kCorner;
  // Half the height of the circle's chord at that place.
  const double chord = std::sqrt(1.0 - (1.0 - left) * (1.0 - left));
  return {g.width * left, g.height * (1.0 - chord) / 2.0, g.width * thick,
          g.height * (1.0 + chord) / 2.0};
}

PresetEdges Corner(const Geometry& g) {
  const double down = g.Short() * g.Adjust("adj1", 0.5, g.TallLimit());
  const double across = g.Short() * g.Adjust("adj2", 0.5, g.WideLimit());
  if (g.width > g.height) return {0, g.height - down, g.width, g.height};
  return {0, 0, across, g.height};
}

PresetEdges DiagonalStripe(const Geometry& g) {
  const double share = (1.0 + g.Adjust("adj", 0.5, 1.0)) / 2.0;
  return {0, 0, g.width * share, g.height * share};
}

// The box around the ends of an arc, `depth` within the ellipse as well, and around the sides that
// the arc runs through.
PresetEdges ArcRect(const Geometry& g, double begin, double end, double depth) {
  PresetEdges rect{g.width, g.height, 0, 0};
  for (const double angle : {begin, end}) {
    for (const double inset : {0.0, depth}) {
      const double across = g.width / 2.0 - inset;
      const double down = g.height / 2.0 - inset;
      // The angle is that of the line from the middle to the place.
      const double turn =
          std::atan2(across * std::sin(angle * kDegree), down * std::cos(angle * kDegree));
      const double x = g.width / 2.0 + across * std::cos(turn);
      const double y = g.height / 2.0 + down * std::sin(turn);
      rect = {std::min(rect.left, x), std::min(rect.top, y), std::max(rect.right, x),
              std::max(rect.bottom, y)};
    }
  }
  const double sweep = end > begin ? end - begin : end - begin + 360.0;
  const auto passes = [begin, sweep](double side) {
    const double way = side >= begin ? side - begin : side - begin + 360.0;
    return way <= sweep;
  };
  if (passes(0)) rect.right = g.width;
  if (passes(90)) rect.bottom = g.height;
  if (passes(180)) rect.left = 0;
  if (passes(270)) rect.top = 0;
  return rect;
}

PresetEdges Arc(const Geometry& g) {
  return ArcRect(g, g.AdjustAngle("adj1", 270), g.AdjustAngle("adj2", 0), 0.0);
}

PresetEdges BlockArc(const Geometry& g) {
  return ArcRect(g, g.AdjustAngle("adj1", 180), g.AdjustAngle("adj2", 0),
                 g.Short() * g.Adjust("adj3", 0.25, 0.5));
}

PresetEdges LeftBracket(const Geometry& g) {
  const double end = g.Short() * g.Adjust("adj", 0.08333, 0.5 * g.TallLimit()) * kCorner;
  return {g.width * kCorner, end, g.width, g.height - end};
}

PresetEdges LeftBrace(const Geometry& g) {
  const double tip = g.Adjust("adj2", 0.5, 1.0);
  const double limit = std::min(tip, 1.0 - tip) / 2.0 * g.TallLimit();
  const double end = g.Short() * g.Adjust("adj1", 0.08333, limit) * kCorner;
  return {g.width * (1.0 - (1.0 - kCorner) / 2.0), end, g.width, g.height - end};
}

PresetEdges Mirrored(const Geometry& g, const PresetEdges& rect) {
  return {g.width - rect.right, rect.top, g.width - rect.left, rect.bottom};
}

PresetEdges RightBracket(const Geometry& g) {
  return Mirrored(g, LeftBracket(g));
}
PresetEdges RightBrace(const Geometry& g) {
  return Mirrored(g, LeftBrace(g));
}

PresetEdges BracketPair(const Geometry& g) {
  const double inset = g.Short() * g.Adjust("adj", 0.16667, 0.5) * kCorner;
  return RectInside(g, inset, inset);
}

PresetEdges BracePair(const Geometry& g) {
  const double bow = g.Short() * g.Adjust("adj", 0.08333, 0.25);
  const double side = bow * (1.0 + kCorner);
  // The format has the side's distance at the top too, and not at the bottom.
  return {side, side, g.width - side, g.height - bow * kCorner};
}

// A ribbon whose middle hangs down; the text is on its front.
PresetEdges HangingRibbon(const Geometry& g) {
  const double fold = g.Adjust("adj1", 0.25, 1.0);
  const double front = std::max(0.25, g.Adjust("adj2", 0.5, 0.75));
  const double least = std::max(0.0, fold - (1.0 - fold) / 2.0);
  const double bow = std::max(least, g.Adjust("adj3", 0.125, fold));
  const double side = (1.0 - front) / 2.0;
  // The lower edge is a parabola, lowest in the middle.
  const double rise = bow - 4.0 * bow * side * (1.0 - side);
  return {g.width * side, g.height * fold, g.width * (1.0 - side), g.height * (1.0 - rise)};
}

PresetEdges StandingRibbon(const Geometry& g) {
  const PresetEdges rect = HangingRibbon(g);
  return {rect.left, g.height - rect.bottom, rect.right, g.height - rect.top};
}

PresetEdges LeftRightRibbon(const Geometry& g) {
  const double fold = g.Adjust("adj3", 0.16667, 0.33333);
  const double band = g.Adjust("adj1", 0.5, 1.0 - fold);
  const double limit = g.Short() > 0 ? g.width * 15.0 / 32.0 / g.Short() : 0.0;
  const double side = g.Short() * g.Adjust("adj2", 0.5, limit);
  return RectInside(g, side, g.height * (1.0 - band - fold) / 2.0);
}

// The ellipse between a gear's teeth, and the place on it in a direction of `degrees`, less half a
// tooth.
struct Gear {
  double across, down, tooth;
  double X(double degrees) const { return across * std::cos((degrees - tooth) * kDegree); }
  double Y(double degrees) const { return down * std::sin((degrees - tooth) * kDegree); }
};

Gear GearOf(const Geometry& g, double height, double slope, double mostSlope) {
  const double teeth = g.Adjust("adj1", height, 0.2);
  const double half = teeth / 2.0 + g.Adjust("adj2", slope, mostSlope) / 2.0;
  const double across = g.width / 2.0 - g.Short() * teeth;
  const double down = g.height / 2.0 - g.Short() * teeth;
  return {across, down, std::atan2(g.Short() * half, std::min(across, down)) / kDegree};
}

PresetEdges Gear6(const Geometry& g) {
  Gear gear = GearOf(g, 0.15, 0.03526, 0.05358);
  gear.tooth = -gear.tooth;
  return RectInside(g, g.width / 2.0 - gear.X(30), g.height / 2.0 - gear.Y(30));
}

PresetEdges Gear9(const Geometry& g) {
  Gear gear = GearOf(g, 0.1, 0.01763, 0.02679);
  const double side = gear.X(50);
  const double top = gear.Y(50);
  gear.tooth = -gear.tooth;
  return {g.width / 2.0 - side, g.height / 2.0 - top, g.width / 2.0 + side,
          g.height / 2.0 + gear.Y(30)};
}

PresetEdges SignRect(const Geometry& g, double height) {
  return RectInside(g, g.width * (1.0 - kSign) / 2.0, (g.height - height) / 2.0);
}

PresetEdges Plus(const Geometry& g) {
  return SignRect(g, g.Short() * g.Adjust("adj1", 0.2352, kSign));
}
PresetEdges Minus(const Geometry& g) {
  return SignRect(g, g.height * g.Adjust("adj1", 0.2352, 1.0));
}
PresetEdges Divide(const Geometry& g) {
  return SignRect(g, g.height * std::max(0.01, g.Adjust("adj1", 0.2352, kSign / 2.0)));
}
PresetEdges Equal(const Geometry& g) {
  const double bar = g.Adjust("adj1", 0.2352, kSign / 2.0);
  return SignRect(g, g.height * (2.0 * bar + g.Adjust("adj2", 0.1176, 1.0 - 2.0 * bar)));
}
PresetEdges NotEqual(const Geometry& g) {
  const double bar = g.Adjust("adj1", 0.2352, 0.5);
  return SignRect(g, g.height * (2.0 * bar + g.Adjust("adj3", 0.1176, 1.0 - 2.0 * bar)));
}

PresetEdges Multiply(const Geometry& g) {
  constexpr double kReach = 0.51965;  // of the diagonal
  const double thick = g.Short() * g.Adjust("adj1", 0.2352, kReach);
  const double angle = std::atan2(g.height, g.width);
  const double left = std::hypot(g.width, g.height) * (1.0 - kReach) / 2.0;
  return RectInside(g, std::cos(angle) * left - std::sin(angle) * thick / 2.0,
                    std::sin(angle) * left - std::cos(angle) * thick / 2.0);
}

PresetEdges Tabs(const Geometry& g) {
  const double inset = std::hypot(g.width, g.height) / 20.0;
  return RectInside(g, inset, inset);
}

PresetEdges SlantedTrapezoid(const Geometry& g) {
  const double limit = 0.5 * g.WideLimit();
  if (limit <= 0) return RectInside(g, 0, 0);
  const double left = g.Adjust("adj1", 0.25, limit) / limit / 3.0;
  const double right = g.Adjust("adj2", 0.25, limit) / limit / 3.0;
  return {g.width * left, g.height * std::max(left, right), g.width * (1.0 - right), g.height};
}

struct Uncommon {
  std::string_view word;
  PresetEdges (*rect)(const Geometry&);
};
constexpr Uncommon kUncommon[] = {{"arc", Arc},
                                  {"bentUpArrow", BentUpArrow},
                                  {"blockArc", BlockArc},
                                  {"bracePair", BracePair},
                                  {"bracketPair", BracketPair},
                                  {"circularArrow", CircularArrow},
                                  {"corner", Corner},
                                  {"cornerTabs", Tabs},
                                  {"diagStripe", DiagonalStripe},
                                  {"ellipseRibbon", HangingRibbon},
                                  {"ellipseRibbon2", StandingRibbon},
                                  {"gear6", Gear6},
                                  {"gear9", Gear9},
                                  {"leftBrace", LeftBrace},
                                  {"leftBracket", LeftBracket},
                                  {"leftCircularArrow", CircularArrow},
                                  {"leftRightCircularArrow", CircularArrow},
                                  {"leftRightRibbon", LeftRightRibbon},
                                  {"leftRightUpArrow", LeftRightUpArrow},
                                  {"leftUpArrow", LeftUpArrow},
                                  {"mathDivide", Divide},
                                  {"mathEqual", Equal},
                                  {"mathMinus", Minus},
                                  {"mathMultiply", Multiply},
                                  {"mathNotEqual", NotEqual},
                                  {"mathPlus", Plus},
                                  {"moon", Moon},
                                  {"nonIsoscelesTrapezoid", SlantedTrapezoid},
                                  {"plaqueTabs", Tabs},
                                  {"quadArrow", QuadArrow},
                                  {"quadArrowCallout", QuadArrowCallout},
                                  {"rightBrace", RightBrace},
                                  {"rightBracket", RightBracket},
                                  {"squareTabs", Tabs},
                                  {"sun", Sun}};

}  // namespace

std::optional<PresetEdges> UncommonTextRect(const PresetGeometry& geometry, std::string_view word) {
  for (const Uncommon& row : kUncommon) {
    if (word == row.word) return row.rect(geometry);
  }
  return std::nullopt;
}

}  // namespace quillmarch::host::model
