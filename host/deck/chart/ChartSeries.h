// One series of a chart: its name, its data and its labels.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/XmlNames.h"
#include "host/deck/chart/ChartData.h"

namespace quillmarch::host::deck {

// What a label shows of its own accord.
struct LabelFlags {
  bool value = false;
  bool percentage = false;
  bool categoryName = false;
  bool seriesName = false;
  bool bubbleSize = false;
  bool Any() const { return value || percentage || categoryName || seriesName || bubbleSize; }
  bool operator==(const LabelFlags&) const = default;
};

struct SeriesLabel {
  std::uint32_t point = 0;  // 0-based
  LabelFlags flags;
  bool typed = false;   // somebody's text instead of what the flags say
  pugi::xml_node node;  // its own c:dLbl; null where the series' labels speak for it
};

struct ChartSeries {
  pugi::xml_node node;   // c:ser
  pugi::xml_node chart;  // c:barChart and the like that it belongs to
  std::int64_t index = 0;
  std::int64_t order = 0;
};

// The name as the file has it: by reference, or typed (c:v). Without either `found` is false.
struct SeriesName {
  bool found = false;
  bool reference = false;
  Wide formula;
  Wide text;
};
SeriesName ReadSeriesName(const XmlNames& names, const ChartSeries& series);

ChartData ReadCategories(const XmlNames& names, const ChartSeries& series);
ChartData ReadValues(const XmlNames& names, const ChartSeries& series);
ChartData ReadBubbleSizes(const XmlNames& names, const ChartSeries& series);

// "=SERIES(Sheet1!$B$1,Sheet1!$A$2:$A$5,Sheet1!$B$2:$B$5,1)": a missing name or missing categories
// leave their place empty, literals stand in quotes or braces.
Wide SeriesFormula(const XmlNames& names, const ChartSeries& series);

// One for each point that has a label, in order. A series' own c:dLbls replaces its chart's as a
// whole.
std::vector<SeriesLabel> ReadLabels(const XmlNames& names, const ChartSeries& series);

}  // namespace quillmarch::host::deck
