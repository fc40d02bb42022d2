#include "host/deck/TableGrid.h"

#include <algorithm>

namespace quillmarch::host::deck {
namespace {

constexpr XmlNamespace kA = XmlNamespace::kDrawing;
constexpr std::int64_t kMostSpan = 100000;

std::uint32_t Span(pugi::xml_node cell, const char* name) {
  return static_cast<std::uint32_t>(
      std::clamp<std::int64_t>(WholeAttribute(cell, name, 1), 1, kMostSpan));
}

}  // namespace

TableGrid::TableGrid(const XmlNames& names, pugi::xml_node table) : table_(table) {
  rowStarts_.push_back(0);
  for (const pugi::xml_node column : names.Child(table, kA, "tblGrid").children()) {
    if (names.Is(column, kA, "gridCol")) ++columns_;
  }
  std::uint32_t row = 0;
  for (const pugi::xml_node line : table.children()) {
    if (line.type() != pugi::node_element || !names.Is(line, kA, "tr")) continue;
    std::uint32_t column = 0;
    for (const pugi::xml_node cell : line.children()) {
      if (cell.type() != pugi::node_element || !names.Is(cell, kA, "tc")) continue;
      Entry entry;
      entry.node = cell;
      entry.originRow = row;
      entry.originColumn = column;
      entry.rowSpan = Span(cell, "rowSpan");
      entry.columnSpan = Span(cell, "gridSpan");
      // A covered position belongs to what its neighbour above or to the left belongs to, as far
      // as that one's spans really reach.
      const Entry* neighbour = nullptr;
      if (FlagAttribute(cell, "vMerge") == 1 && row > 0 &&
          column < rowStarts_[row] - rowStarts_[row - 1]) {
        neighbour = &cells_[rowStarts_[row - 1] + column];
      } else if (FlagAttribute(cell, "hMerge") == 1 && column > 0) {
        neighbour = &cells_.back();
      }
      if (neighbour != nullptr) {
        const Entry& origin = cells_[rowStarts_[neighbour->originRow] + neighbour->originColumn];
        if (row - neighbour->originRow < origin.rowSpan &&
            column - neighbour->originColumn < origin.columnSpan) {
          entry.originRow = neighbour->originRow;
          entry.originColumn = neighbour->originColumn;
        }
      }
      cells_.push_back(entry);
      ++column;
    }
    columns_ = std::max(columns_, column);
    rowStarts_.push_back(cells_.size());
    ++row;
  }
}

bool TableGrid::Has(std::uint32_t row, std::uint32_t column) const {
  return row < Rows() && column < rowStarts_[row + 1] - rowStarts_[row];
}

void TableGrid::Origin(std::uint32_t& row, std::uint32_t& column) const {
  const Entry& entry = At(row, column);
  row = entry.originRow;
  column = entry.originColumn;
}

bool TableGrid::Merged(std::uint32_t row, std::uint32_t column) const {
  const Entry& entry = At(row, column);
  const bool covered = entry.originRow != row || entry.originColumn != column;
  return covered || entry.rowSpan > 1 || entry.columnSpan > 1;
}

pugi::xml_node TableGrid::Cell(std::uint32_t row, std::uint32_t column) const {
  return At(row, column).node;
}

}  // namespace quillmarch::host::deck
