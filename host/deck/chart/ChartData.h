// What a chart part keeps of its data: references to cells and the values last read from them.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <string>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

enum class ChartDataKind : std::uint8_t {
  kNone,
  kText,
  kNumber,
  kLevels,  // categories in several levels, the innermost first
};

struct ChartDataPoint {
  std::uint32_t index = 0;  // 0-based
  std::uint32_t level = 0;  // 0 is the innermost
  Wide text;                // of a number as the file writes it
  pugi::xml_node node;      // its c:pt
};

struct ChartData {
  ChartDataKind kind = ChartDataKind::kNone;
  bool reference = false;    // to cells; literals otherwise
  Wide formula;              // "Sheet1!$A$2:$A$5"
  std::uint32_t count = 0;   // of points; those that are not listed are empty
  std::uint32_t levels = 0;  // 1 but for kLevels; 0 without data
  std::vector<ChartDataPoint> points;
  pugi::xml_node node;  // c:strRef, c:numRef, c:multiLvlStrRef, c:strLit or c:numLit

  // Of the innermost level; empty where there is none.
  Wide TextAt(std::uint32_t index) const;
};

// More points than a sheet has rows are no points.
inline constexpr std::uint32_t kMostChartPoints = 1048576;

// The data in c:cat, c:xVal, c:val, c:yVal, c:bubbleSize or c:tx.
ChartData ReadChartData(const XmlNames& names, pugi::xml_node holder);

}  // namespace quillmarch::host::deck
