#include "host/workbook/CellReference.h"

#include <algorithm>
#include <cstddef>

namespace quillmarch::host::workbook {
namespace {

constexpr std::uint32_t kLetters = 26;

// Column and row, each 0 when it is not given. False when the text is neither.
bool ParseCorner(std::string_view text, CellPosition& corner) {
  corner = {};
  std::size_t at = 0;
  if (at < text.size() && text[at] == '$') ++at;
  for (; at < text.size(); ++at) {
    const char letter = static_cast<char>(text[at] & ~0x20);
    if (letter < 'A' || letter > 'Z') break;
    corner.column = corner.column * kLetters + static_cast<std::uint32_t>(letter - 'A' + 1);
    if (corner.column > kMostColumns) return false;
  }
  if (at > 0 && at < text.size() && text[at] == '$' && corner.column > 0) ++at;
  const std::size_t digits = at;
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
    corner.row = corner.row * 10 + static_cast<std::uint32_t>(text[at] - '0');
    if (corner.row > kMostRows) return false;
  }
  if (at != text.size()) return false;
  return digits == at ? corner.column > 0 : corner.row > 0;
}

// The end of the sheet's name and the name itself, from `at` on; npos when no "!" follows.
std::size_t SheetName(std::string_view text, std::size_t at, std::string& name) {
  if (at < text.size() && text[at] == '\'') {
    for (++at; at < text.size(); ++at) {
      if (text[at] != '\'') {
        name += text[at];
      } else if (at + 1 < text.size() && text[at + 1] == '\'') {
        name += text[++at];
      } else {
        break;
      }
    }
    ++at;
  } else {
    const std::size_t end = std::min(text.find_first_of("!,()", at), text.size());
    name = text.substr(at, end - at);
    at = end;
  }
  return at < text.size() && text[at] == '!' ? at + 1 : std::string_view::npos;
}

}  // namespace

CellPosition ParseCell(std::string_view text) {
  CellPosition cell;
  const bool whole = ParseCorner(text, cell) && cell.row > 0 && cell.column > 0;
  return whole ? cell : CellPosition{};
}

CellRange ParseRange(std::string_view text) {
  const std::size_t colon = text.find(':');
  CellPosition from;
  CellPosition to;
  if (!ParseCorner(text.substr(0, colon), from)) return {};
  if (colon == std::string_view::npos) {
    return from.row > 0 && from.column > 0 ? CellRange{from, from} : CellRange{};
  }
  if (!ParseCorner(text.substr(colon + 1), to)) return {};
  if ((from.row == 0) != (to.row == 0) || (from.column == 0) != (to.column == 0)) return {};
  if (from.row == 0) {
    from.row = 1;
    to.row = kMostRows;
  }
  if (from.column == 0) {
    from.column = 1;
    to.column = kMostColumns;
  }
  return {{std::min(from.row, to.row), std::min(from.column, to.column)},
          {std::max(from.row, to.row), std::max(from.column, to.column)}};
}

std::string CellName(CellPosition cell) {
  std::string name;
  for (std::uint32_t column = cell.column; column > 0; column = (column - 1) / kLetters) {
    name += static_cast<char>('A' + (column - 1) % kLetters);
  }
  std::reverse(name.begin(), name.end());
  return name + std::to_string(cell.row);
}

std::vector<SheetRange> ParseReference(std::string_view text) {
  if (text.starts_with('=')) text.remove_prefix(1);
  if (text.size() >= 2 && text.front() == '(' && text.back() == ')') {
    text = text.substr(1, text.size() - 2);
  }
  std::vector<SheetRange> areas;
  for (std::size_t at = 0; at < text.size();) {
    SheetRange area;
    const std::size_t behind = SheetName(text, at, area.sheet);
    if (behind == std::string_view::npos) {
      area.sheet.clear();
    } else {
      at = behind;
    }
    // A bracket names another workbook.
    if (area.sheet.find('[') != std::string::npos) return {};
    const std::size_t end = std::min(text.find(',', at), text.size());
    area.range = ParseRange(text.substr(at, end - at));
    if (area.range.first.row == 0) return {};
    areas.push_back(std::move(area));
    at = end + 1;
  }
  return areas;
}

}  // namespace quillmarch::host::workbook
