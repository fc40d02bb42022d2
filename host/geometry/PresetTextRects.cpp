#include "host/geometry/PresetTextRects.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "host/geometry/UncommonTextRects.h"

namespace quillmarch::host::model {
namespace {

constexpr double kWhole = 100000.0;
// Angles of a file go 60000 to the degree.
constexpr double kSharesPerDegree = 60000.0 / kWhole;

// Rectangles that no adjustment moves, as shares of the shape's sides.
struct FixedRect {
  std::string_view word;
  double left, top, right, bottom;
};
constexpr double kRound = kCorner / 2.0;
constexpr double kThird = 1.0 / 3.0;
constexpr double kSixth = 1.0 / 6.0;
constexpr FixedRect kFixedRects[] = {
    {"chord", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"cloud", 0.1378, 0.151, 0.7911, 0.8026},
    {"cloudCallout", 0.1378, 0.151, 0.7911, 0.8026},
    {"decagon", 0.0955, 0.191, 0.9045, 0.809},
    {"diamond", 0.25, 0.25, 0.75, 0.75},
    {"dodecagon", 0.134, 0.134, 0.866, 0.866},
    {"donut", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"ellipse", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartCollate", 0.25, 0.25, 0.75, 0.75},
    {"flowChartConnector", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartDecision", 0.25, 0.25, 0.75, 0.75},
    {"flowChartDelay", 0.0, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartDisplay", kSixth, 0.0, 1.0 - kSixth, 1.0},
    {"flowChartDocument", 0.0, 0.0, 1.0, 0.8019},
    {"flowChartExtract", 0.25, 0.5, 0.75, 1.0},
    {"flowChartInputOutput", 0.2, 0.0, 0.8, 1.0},
    {"flowChartInternalStorage", 0.125, 0.125, 1.0, 1.0},
    {"flowChartMagneticDisk", 0.0, kThird, 1.0, 1.0 - kSixth},
    {"flowChartMagneticDrum", kSixth, 0.0, 1.0 - kThird, 1.0},
    {"flowChartMagneticTape", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartManualInput", 0.0, 0.2, 1.0, 1.0},
    {"flowChartManualOperation", 0.2, 0.0, 0.8, 1.0},
    {"flowChartMerge", 0.25, 0.0, 0.75, 0.5},
    {"flowChartMultidocument", 0.0, 0.1701, 0.8609, 0.9621},
    {"flowChartOfflineStorage", 0.25, 0.0, 0.75, 0.5},
    {"flowChartOffpageConnector", 0.0, 0.0, 1.0, 0.8},
    {"flowChartOnlineStorage", kSixth, 0.0, 1.0 - kSixth, 1.0},
    {"flowChartOr", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartPredefinedProcess", 0.125, 0.0, 0.875, 1.0},
    {"flowChartPreparation", 0.2, 0.0, 0.8, 1.0},
    {"flowChartPunchedCard", 0.0, 0.2, 1.0, 1.0},
    {"flowChartPunchedTape", 0.0, 0.2, 1.0, 0.8},
    {"flowChartSort", 0.25, 0.25, 0.75, 0.75},
    {"flowChartSummingJunction", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"flowChartTerminator", 0.0471, 0.1464, 0.9529, 0.8536},
    {"heart", kSixth, 0.25, 1.0 - kSixth, 1.0 - kThird},
    {"heptagon", 0.099, 0.198, 0.901, 0.802},
    {"irregularSeal1", 0.2142, 0.2926, 0.7732, 0.6452},
    {"irregularSeal2", 0.2487, 0.2955, 0.6778, 0.7377},
    {"lightningBolt", 0.4054, 0.3443, 0.6443, 0.661},
    {"noSmoking", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"pentagon", 0.191, 0.2361, 0.809, 1.0},
    {"pie", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"pieWedge", kCorner, kCorner, 1.0, 1.0},
    {"smileyFace", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"teardrop", kRound, kRound, 1.0 - kRound, 1.0 - kRound},
    {"wedgeEllipseCallout", kRound, kRound, 1.0 - kRound, 1.0 - kRound}};

PresetEdges Arrow(const PresetGeometry& g, bool across, bool headAtEnd) {
  const double along = across ? g.width : g.height;
  const double side = across ? g.height : g.width;
  const double shaft = g.Adjust("adj1", 0.5, 1.0);
  const double head = g.Short() * g.Adjust("adj2", 0.5, across ? g.WideLimit() : g.TallLimit());
  const double margin = side * (1.0 - shaft) / 2.0;
  // The text reaches into the head, up to where the head is as high as the shaft.
  const double reach = head * shaft;
  const double begin = headAtEnd ? 0.0 : reach;
  const double end = headAtEnd ? along - reach : along;
  if (across) return {begin, margin, end, side - margin};
  return {margin, begin, side - margin, end};
}

PresetEdges RoundRectangle(const PresetGeometry& g, const char* name, double radius) {
  const double inset = g.Short() * g.Adjust(name, radius, 0.5) * kCorner;
  return RectInside(g, inset, inset);
}

PresetEdges Hexagon(const PresetGeometry& g) {
  const double limit = 0.5 * g.WideLimit();
  const double adjust = g.Adjust("adj", 0.25, limit);
  if (limit <= 0) return RectInside(g, 0, 0);
  const double middle = limit / -2.0;
  const bool flat = adjust + middle > 0;
  const double share =
      (flat ? 4.0 : 2.0) - (flat ? 3.0 : 2.0) * (adjust + (flat ? middle : 0.0)) / middle;
  return RectInside(g, g.width * share / 24.0, g.height * share / 24.0);
}

// Arrows that point both ways, and those with something cut out of their tail.
PresetEdges DoubleArrow(const PresetGeometry& g, bool across) {
  const PresetEdges back = Arrow(g, across, false);
  const PresetEdges ahead = Arrow(g, across, true);
  if (across) return {back.left, back.top, ahead.right, back.bottom};
  return {back.left, back.top, back.right, ahead.bottom};
}

PresetEdges TailArrow(const PresetGeometry& g, bool notched) {
  const PresetEdges rect = Arrow(g, true, true);
  // The notch is as deep as the tip that the text leaves free.
  const double notch = g.width - rect.right;
  return {notched ? notch : g.Short() * 5.0 / 32.0, rect.top, rect.right, rect.bottom};
}

// A box with an arrow at one side, or with one at each of two.
PresetEdges ArrowCallout(const PresetGeometry& g, bool across, bool atBegin, bool atEnd) {
  const bool both = atBegin && atEnd;
  const double along = across ? g.width : g.height;
  const double limit = (across ? g.WideLimit() : g.TallLimit()) * (both ? 0.5 : 1.0);
  const double head = g.Short() * g.Adjust("adj3", 0.25, limit) * (both ? 2.0 : 1.0);
  const double most = along > 0 ? 1.0 - head / along : 0.0;
  const double box = along * g.Adjust("adj4", both ? 0.48123 : 0.64977, most);
  const double begin = both ? (along - box) / 2.0 : atBegin ? along - box : 0.0;
  if (across) return {begin, 0, begin + box, g.height};
  return {0, begin, g.width, begin + box};
}

// The points between a star's rays lie on an ellipse; the text's corners are some of them.
struct Star {
  std::string_view word;
  double adjust;
  double wide, tall;          // how much larger than its box the star is drawn
  double side, upper, lower;  // of that ellipse, from its middle
};
constexpr Star kStars[] = {{"star4", 0.125, 1.0, 1.0, 0.70711, 0.70711, 0.70711},
                           {"star5", 0.19098, 1.05146, 1.10557, 0.95106, 0.80902, 1.0},
                           {"star6", 0.28868, 1.1547, 1.0, 1.0, 0.86603, 0.86603},
                           {"star7", 0.34601, 1.02572, 1.0521, 0.78183, 0.90097, 0.62349},
                           {"star8", 0.375, 1.0, 1.0, 0.92388, 0.92388, 0.92388},
                           {"star10", 0.42533, 1.05146, 1.0, 0.80902, 0.58779, 0.58779},
                           {"star12", 0.375, 1.0, 1.0, 0.70711, 0.70711, 0.70711},
                           {"star16", 0.375, 1.0, 1.0, 0.70711, 0.70711, 0.70711},
                           {"star24", 0.375, 1.0, 1.0, 0.70711, 0.70711, 0.70711},
                           {"star32", 0.375, 1.0, 1.0, 0.70711, 0.70711, 0.70711}};

PresetEdges StarRect(const PresetGeometry& g, const Star& star) {
  const double share = 2.0 * g.Adjust("adj", star.adjust, 0.5);
  const double across = g.width / 2.0 * star.wide * share;
  const double down = g.height / 2.0 * star.tall * share;
  const double middle = g.height / 2.0 * star.tall;
  return {g.width / 2.0 - across * star.side, middle - down * star.upper,
          g.width / 2.0 + across * star.side, middle + down * star.lower};
}

PresetEdges Snipped(const PresetGeometry& g, std::string_view word) {
  const bool oneCorner = word == "snip1Rect";
  const bool twoOpposite = word == "snip2DiagRect";
  const char* const first = oneCorner ? "adj" : "adj1";
  const double one = g.Short() * g.Adjust(first, twoOpposite ? 0.0 : 0.16667, 0.5);
  if (oneCorner) return {0, one / 2.0, g.width - one / 2.0, g.height};
  const double two = g.Short() * g.Adjust("adj2", word == "snip2SameRect" ? 0.0 : 0.16667, 0.5);
  const double side = std::max(one, two) / 2.0;
  if (twoOpposite) return RectInside(g, side, side);
  if (word == "snip2SameRect") return {side, one / 2.0, g.width - side, g.height - two / 2.0};
  // Round at the left, cut at the right.
  return {one * kCorner, one * kCorner, g.width - two / 2.0, g.height};
}

PresetEdges PlainRect(const PresetGeometry& g, std::string_view word) {
  const double w = g.width;
  const double h = g.height;
  if (word == "roundRect") return RoundRectangle(g, "adj", 0.16667);
  if (word == "wedgeRoundRectCallout") return RoundRectangle(g, "adj3", 0.16667);
  if (word == "flowChartAlternateProcess") return RoundRectangle(g, "", 1.0 / 6.0);
  if (word == "plaque") {
    const double inset = g.Short() * g.Adjust("adj", 0.16667, 0.5) * (1.0 - kCorner);
    return RectInside(g, inset, inset);
  }
  if (word == "round2SameRect" || word == "round1Rect" || word == "round2DiagRect") {
    const char* const first = word == "round1Rect" ? "adj" : "adj1";
    const double one = g.Short() * g.Adjust(first, 0.16667, 0.5) * kCorner;
    if (word == "round1Rect") return {0, 0, w - one, h};
    const double two = g.Short() * g.Adjust("adj2", 0.0, 0.5) * kCorner;
    const double side = std::max(one, two);
    if (word == "round2DiagRect") return RectInside(g, side, side);
    return {side, one, w - side, h - two};
  }
  if (word == "triangle") {
    const double left = w * g.Adjust("adj", 0.5, 1.0) / 2.0;
    return {left, h / 2.0, left + w / 2.0, h};
  }
  if (word == "rtTriangle") return {w / 12.0, h * 7.0 / 12.0, w * 7.0 / 12.0, h * 11.0 / 12.0};
  if (word == "parallelogram") {
    const double limit = g.WideLimit();
    const double share =
        limit > 0 ? (1.0 + 5.0 * g.Adjust("adj", 0.25, limit) / limit) / 12.0 : 0.0;
    return RectInside(g, w * share, h * share);
  }
  if (word == "trapezoid") {
    const double limit = 0.5 * g.WideLimit();
    const double share = limit > 0 ? g.Adjust("adj", 0.25, limit) / limit / 3.0 : 0.0;
    return {w * share, h * share, w * (1.0 - share), h};
  }
  if (word == "hexagon") return Hexagon(g);
  if (word == "octagon") {
    const double inset = g.Short() * g.Adjust("adj", kCorner, 0.5) / 2.0;
    return RectInside(g, inset, inset);
  }
  if (word == "plus") {
    const double arm = g.Short() * g.Adjust("adj", 0.25, 0.5);
    return w > h ? RectInside(g, 0, arm) : RectInside(g, arm, 0);
  }
  if (word == "frame" || word == "bevel") {
    const double inset = g.Short() * g.Adjust(word == "frame" ? "adj1" : "adj", 0.125, 0.5);
    return RectInside(g, inset, inset);
  }
  if (word == "chevron") {
    const double point = g.Short() * g.Adjust("adj", 0.5, g.WideLimit());
    return w - 2.0 * point > 0 ? RectInside(g, point, 0) : RectInside(g, 0, 0);
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
  return RectInside(g, 0, 0);
}

// Scrolls, waves, ribbons and boxes with arrows.
PresetEdges OrnateRect(const PresetGeometry& g, std::string_view word) {
  const double w = g.width;
  const double h = g.height;
  if (word == "verticalScroll" || word == "horizontalScroll") {
    const double roll = g.Short() * g.Adjust("adj", 0.125, 0.25);
    if (word == "verticalScroll") return {roll, roll, w - roll, h - roll / 2.0};
    return {roll, roll, w - roll / 2.0, h - roll};
  }
  if (word == "wave" || word == "doubleWave") {
    const bool two = word == "doubleWave";
    const double crest = g.Adjust("adj1", two ? 0.0625 : 0.125, two ? 0.125 : 0.2);
    const double slant = std::min(0.1, std::fabs(g.Stored("adj2", 0.0)));
    return RectInside(g, 2.0 * w * slant, 2.0 * h * crest);
  }
  if (word == "ribbon" || word == "ribbon2") {
    const double fold = h * g.Adjust("adj1", 0.16667, 0.33333);
    const double side = w * (1.0 - std::max(g.Adjust("adj2", 0.5, 0.75), 0.25)) / 2.0;
    if (word == "ribbon") return {side, fold, w - side, h};
    return {side, 0, w - side, h - fold};
  }
  if (word == "leftRightArrow") return DoubleArrow(g, true);
  if (word == "upDownArrow") return DoubleArrow(g, false);
  if (word == "notchedRightArrow") return TailArrow(g, true);
  if (word == "stripedRightArrow") return TailArrow(g, false);
  if (word == "rightArrowCallout") return ArrowCallout(g, true, false, true);
  if (word == "leftArrowCallout") return ArrowCallout(g, true, true, false);
  if (word == "downArrowCallout") return ArrowCallout(g, false, false, true);
  if (word == "upArrowCallout") return ArrowCallout(g, false, true, false);
  if (word == "leftRightArrowCallout") return ArrowCallout(g, true, true, true);
  if (word == "upDownArrowCallout") return ArrowCallout(g, false, true, true);
  return PlainRect(g, word);
}

}  // namespace

double PresetGeometry::Stored(std::string_view name, double otherwise) const {
  for (const pugi::xml_node guide : list.children()) {
    if (guide.attribute("name").value() != name) continue;
    // The formula of an adjustment is always "val" and its number.
    const std::string_view formula = guide.attribute("fmla").value();
    if (formula.starts_with("val ")) return std::strtod(formula.data() + 4, nullptr) / kWhole;
    break;
  }
  return otherwise;
}

double PresetGeometry::Adjust(std::string_view name, double otherwise, double most) const {
  return std::clamp(Stored(name, otherwise), 0.0, std::max(most, 0.0));
}

double PresetGeometry::AdjustAngle(std::string_view name, double otherwise) const {
  constexpr double kMost = 360.0 * kSharesPerDegree - 1.0 / kWhole;
  return Adjust(name, otherwise * kSharesPerDegree, kMost) / kSharesPerDegree;
}

PresetEdges RectInside(const PresetGeometry& g, double side, double end) {
  return {side, end, g.width - side, g.height - end};
}

PresetEdges PresetTextRect(const PresetGeometry& g, std::string_view word) {
  if (word.empty() || word == "rect") return RectInside(g, 0, 0);
  for (const FixedRect& rect : kFixedRects) {
    if (word == rect.word) {
      return {g.width * rect.left, g.height * rect.top, g.width * rect.right,
              g.height * rect.bottom};
    }
  }
  for (const Star& star : kStars) {
    if (word == star.word) return StarRect(g, star);
  }
  if (word == "snip1Rect" || word == "snip2SameRect" || word == "snip2DiagRect" ||
      word == "snipRoundRect") {
    return Snipped(g, word);
  }
  if (const std::optional<PresetEdges> rare = UncommonTextRect(g, word)) return *rare;
  return OrnateRect(g, word);
}

}  // namespace quillmarch::host::model
