// The grid of a table: which element answers for each position, merged cells included.
#pragma once

#include <cstdint>
#include <pugixml.hpp>
#include <vector>

#include "host/deck/XmlNames.h"

namespace quillmarch::host::deck {

class TableGrid {
 public:
  TableGrid(const XmlNames& names, pugi::xml_node table);

  std::uint32_t Rows() const { return static_cast<std::uint32_t>(rowStarts_.size()) - 1; }
  // As many as the grid names, or as the longest row has where it has more.
  std::uint32_t Columns() const { return columns_; }
  // Whether the file holds a cell at this 0-based position; rows of a broken table may be short.
  bool Has(std::uint32_t row, std::uint32_t column) const;
  // The 0-based position whose text a position shows: its own, or the merged cell's origin.
  void Origin(std::uint32_t& row, std::uint32_t& column) const;
  // Whether the position belongs to a cell that covers several.
  bool Merged(std::uint32_t row, std::uint32_t column) const;
  pugi::xml_node Cell(std::uint32_t row, std::uint32_t column) const;
  pugi::xml_node node() const { return table_; }

 private:
  struct Entry {
    pugi::xml_node node;
    std::uint32_t originRow = 0, originColumn = 0;
    std::uint32_t rowSpan = 1, columnSpan = 1;
  };
  const Entry& At(std::uint32_t row, std::uint32_t column) const {
    return cells_[rowStarts_[row] + column];
  }

  pugi::xml_node table_;
  std::vector<Entry> cells_;
  std::vector<std::size_t> rowStarts_;  // one more than rows
  std::uint32_t columns_ = 0;
};

}  // namespace quillmarch::host::deck
