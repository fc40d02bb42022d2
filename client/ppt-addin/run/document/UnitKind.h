// What a unit of text is, and the rules that follow from it. A new kind is one more row.
#pragma once

#include <cstdint>

namespace quillmarch::addin {

// The numbers show in the keys of targets, so they stay.
enum class UnitKind : std::int32_t {
  kShape = 0,  // paragraph or whole frame of a shape on a slide
  kCell = 1,   // the same in a table cell
  kNotes = 2,  // the same on a notes page
  kChartTitle = 3,
  kSmartArt = 4,    // one node
  kCharacters = 5,  // character range of a selected text
  kChartAxisTitle = 6,
  kChartCategories = 7,
  kChartSeriesName = 8,
  kChartDataLabel = 9,
  kChartDisplayUnit = 10,
  kChartSheet = 11,  // a cell of the chart's workbook
};

enum class UnitWriter {
  kParagraph,
  kCharacters,
  kChartOrNode,  // one unit at a time
  kChartGroup,   // all units of the shape at once
};

enum class InCell { kNever, kAlways, kByRow };

struct UnitKindRules {
  UnitWriter writer;
  InCell inCell = InCell::kNever;
  bool onNotes = false;  // always; units of other kinds may lie there too
  bool fitted = false;   // unless it lies in a cell or on the notes
};

constexpr UnitKindRules RulesOf(UnitKind kind) {
  switch (kind) {
    case UnitKind::kShape:
      return {.writer = UnitWriter::kParagraph, .fitted = true};
    case UnitKind::kCell:
      return {.writer = UnitWriter::kParagraph, .inCell = InCell::kAlways};
    case UnitKind::kNotes:
      return {.writer = UnitWriter::kParagraph, .onNotes = true};
    case UnitKind::kCharacters:
      return {.writer = UnitWriter::kCharacters, .inCell = InCell::kByRow, .fitted = true};
    case UnitKind::kChartCategories:
    case UnitKind::kChartSheet:
      return {.writer = UnitWriter::kChartGroup};
    case UnitKind::kChartTitle:
    case UnitKind::kSmartArt:
    case UnitKind::kChartAxisTitle:
    case UnitKind::kChartSeriesName:
    case UnitKind::kChartDataLabel:
    case UnitKind::kChartDisplayUnit:
      return {.writer = UnitWriter::kChartOrNode};
  }
  return {.writer = UnitWriter::kParagraph};
}

}  // namespace quillmarch::addin
