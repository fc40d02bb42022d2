#include "host/workbook/SheetPart.h"

#include <algorithm>
#include <optional>

#include "host/package/xml/Splice.h"
#include "host/package/xml/XmlReader.h"
#include "host/package/xml/XmlText.h"
#include "host/workbook/CellNumber.h"
#include "host/workbook/RichText.h"
#include "host/workbook/SerialDate.h"
#include "host/workbook/StructuredReference.h"
#include "host/workbook/XString.h"

namespace quillmarch::host::workbook {
namespace {

constexpr XmlNamespace kX = XmlNamespace::kSpreadsheet;
using Event = XmlReader::Event;

bool ByPosition(const SheetCell& left, const SheetCell& right) {
  return left.row != right.row ? left.row < right.row : left.column < right.column;
}

// After the kStart of x:c: its content, up to its kEnd.
void ReadCell(XmlReader& reader, bool date1904, SheetCell& cell, std::vector<CellRange>& arrays) {
  const std::string_view type = reader.RawAttribute("t");
  const std::size_t depth = reader.depth();
  const std::string kind(type);
  std::optional<std::string> value;
  bool inlineText = false;
  while (true) {
    const Event event = reader.Next();
    if (event == Event::kDone || (event == Event::kEnd && reader.depth() == depth)) break;
    if (event != Event::kStart) continue;
    if (reader.Is(kX, "v")) {
      value = ReadElementText(reader);
    } else if (reader.Is(kX, "f")) {
      cell.formula = true;
      const std::string_view formula = reader.RawAttribute("t");
      if (formula == "array" || formula == "dataTable") {
        const CellRange covered = ParseRange(reader.Attribute("ref"));
        if (covered.first.row > 0) arrays.push_back(covered);
      }
      reader.SkipElement();
    } else {
      inlineText = inlineText || reader.Is(kX, "is");
      reader.SkipElement();
    }
  }
  if (kind == "inlineStr") {
    if (inlineText) cell.content = CellContent::kText;
  } else if (!value) {
    cell.content = CellContent::kEmpty;
  } else if (kind == "s") {
    cell.content = CellContent::kShared;
    cell.number = WholeNumber(*value, UINT32_MAX);
  } else if (kind == "str") {
    cell.content = CellContent::kText;
  } else if (kind == "e") {
    cell.content = CellContent::kError;
  } else if (kind == "b") {
    cell.content = CellContent::kBoolean;
    cell.number = TrueAttribute(TrimBlanks(*value)) ? 1 : 0;
  } else if (kind == "d") {
    if (SerialOfIso(TrimBlanks(*value), date1904, cell.number)) cell.content = CellContent::kNumber;
  } else if (RealNumber(*value, cell.number)) {
    cell.content = CellContent::kNumber;
  }
}

}  // namespace

std::unique_ptr<SheetPart> SheetPart::Parse(std::string bytes, bool date1904, std::size_t maxCells,
                                            std::string& fault) {
  std::unique_ptr<SheetPart> sheet(new SheetPart(std::move(bytes)));
  fault = sheet->Read(date1904, maxCells);
  return fault.empty() ? std::move(sheet) : nullptr;
}

std::string SheetPart::Read(bool date1904, std::size_t maxCells) {
  XmlReader reader(bytes_);
  if (reader.Next() != Event::kStart || !reader.Is(kX, "worksheet")) return "it is not a worksheet";
  SheetCell next;
  for (Event event = reader.Next(); event != Event::kDone; event = reader.Next()) {
    if (event != Event::kStart || reader.space() != kX) continue;
    const std::string_view local = reader.local();
    if (local == "row") {
      // A row or a cell without a place of its own follows the one before it.
      next.row = WholeNumber(reader.RawAttribute("r"), next.row + 1);
      next.column = 1;
      if (TrueAttribute(reader.RawAttribute("hidden"))) hiddenRows_.push_back(next.row);
    } else if (local == "c") {
      SheetCell cell = next;
      cell.offset = static_cast<std::uint32_t>(reader.begin());
      cell.style = WholeNumber(reader.RawAttribute("s"), 0);
      const CellPosition named = ParseCell(reader.RawAttribute("r"));
      if (named.row > 0) {
        cell.row = named.row;
        cell.column = named.column;
      }
      ReadCell(reader, date1904, cell, arrays_);
      next.column = cell.column + 1;
      if (cell.row == 0 || cell.row > kMostRows || cell.column > kMostColumns) continue;
      if (cells_.size() == maxCells) {
        return "it has more than " + std::to_string(maxCells) + " cells";
      }
      cells_.push_back(cell);
    } else if (local == "col") {
      if (!TrueAttribute(reader.RawAttribute("hidden"))) continue;
      hiddenColumns_.emplace_back(WholeNumber(reader.RawAttribute("min"), 1),
                                  WholeNumber(reader.RawAttribute("max"), 0));
    } else if (local == "mergeCell") {
      const CellRange range = ParseRange(reader.Attribute("ref"));
      if (range.first.row > 0) merged_.push_back(range);
    } else if (local == "tablePart") {
      tableIds_.push_back(reader.RelationshipAttribute("id"));
    }
  }
  if (!std::is_sorted(cells_.begin(), cells_.end(), ByPosition)) {
    std::stable_sort(cells_.begin(), cells_.end(), ByPosition);
  }
  cells_.erase(std::unique(cells_.begin(), cells_.end(),
                           [](const SheetCell& left, const SheetCell& right) {
                             return left.row == right.row && left.column == right.column;
                           }),
               cells_.end());
  std::sort(hiddenRows_.begin(), hiddenRows_.end());
  if (cells_.empty()) return {};
  used_ = {{cells_.front().row, kMostColumns}, {cells_.back().row, 1}};
  for (const SheetCell& cell : cells_) {
    used_.first.column = std::min(used_.first.column, cell.column);
    used_.last.column = std::max(used_.last.column, cell.column);
  }
  return {};
}

const SheetCell* SheetPart::Find(CellPosition at) const {
  const SheetCell wanted{at.row, at.column};
  const auto found = std::lower_bound(cells_.begin(), cells_.end(), wanted, ByPosition);
  const bool here = found != cells_.end() && found->row == at.row && found->column == at.column;
  return here ? &*found : nullptr;
}

std::string SheetPart::Text(const SheetCell& cell) const {
  // The namespaces of the elements around are not in force from here on, so only local names count.
  XmlReader inside(std::string_view(bytes_).substr(cell.offset));
  inside.Next();
  std::string text;
  bool phonetic = false;
  while (true) {
    const Event event = inside.Next();
    if (event == Event::kDone || (event == Event::kEnd && inside.depth() == 1)) break;
    if (inside.local() == "rPh") phonetic = event == Event::kStart;
    if (event != Event::kStart || phonetic) continue;
    if (inside.local() == "v" || inside.local() == "t") {
      text += DecodeXString(ReadElementText(inside));
    } else if (inside.local() == "f" || inside.local() == "extLst") {
      inside.SkipElement();
    }
  }
  return text;
}

std::string SheetPart::Formula(const SheetCell& cell) const {
  if (!cell.formula || Written({cell.row, cell.column}) != nullptr) return {};
  XmlReader inside(std::string_view(bytes_).substr(cell.offset));
  inside.Next();
  while (true) {
    const Event event = inside.Next();
    if (event == Event::kDone || (event == Event::kEnd && inside.depth() == 1)) return {};
    if (event == Event::kStart && inside.local() == "f") {
      const auto renamed = formulas_.find(cell.offset + inside.end());
      return renamed != formulas_.end() ? renamed->second.second : ReadElementText(inside);
    }
  }
}

bool SheetPart::HasFormula(CellPosition at) const {
  const SheetCell* const cell = Find(at);
  if (cell != nullptr && cell->formula) return true;
  return std::any_of(arrays_.begin(), arrays_.end(),
                     [&](const CellRange& range) { return range.Has(at); });
}

bool SheetPart::RowHidden(std::uint32_t row) const {
  return std::binary_search(hiddenRows_.begin(), hiddenRows_.end(), row);
}

bool SheetPart::ColumnHidden(std::uint32_t column) const {
  return std::any_of(hiddenColumns_.begin(), hiddenColumns_.end(), [&](const auto& range) {
    return column >= range.first && column <= range.second;
  });
}

const std::string* SheetPart::Written(CellPosition at) const {
  const SheetCell* const cell = Find(at);
  if (cell == nullptr || written_.empty()) return nullptr;
  const auto found = written_.find(static_cast<std::size_t>(cell - cells_.data()));
  return found == written_.end() ? nullptr : &found->second;
}

void SheetPart::PutText(const SheetCell& cell, std::string text) {
  written_.insert_or_assign(static_cast<std::size_t>(&cell - cells_.data()), std::move(text));
}

void SheetPart::RenameColumn(std::string_view table, std::string_view from, std::string_view to) {
  for (const SheetCell& cell : cells_) {
    if (!cell.formula) continue;
    const std::string_view rest = std::string_view(bytes_).substr(cell.offset);
    XmlReader inside(rest);
    inside.Next();
    while (true) {
      const Event event = inside.Next();
      if (event == Event::kDone || (event == Event::kEnd && inside.depth() == 1)) break;
      if (event != Event::kStart || inside.local() != "f" || inside.selfClosed()) continue;
      const std::size_t begin = cell.offset + inside.end();
      std::string old = ReadElementText(inside);
      const auto earlier = formulas_.find(begin);
      if (earlier != formulas_.end()) old = earlier->second.second;
      std::string renamed = RenameTableColumn(old, table, from, to);
      if (renamed == old) continue;
      const std::size_t length = cell.offset + inside.begin() - begin;
      formulas_.insert_or_assign(begin, std::make_pair(length, std::move(renamed)));
    }
  }
}

// The cell as an inline text: it needs no entry in the table of shared strings, whose entries other
// cells may use, so that the sheet is the only part that changes.
std::string SheetPart::CellXml(const SheetCell& cell, const std::string& text) const {
  XmlReader reader(std::string_view(bytes_).substr(cell.offset));
  reader.Next();
  const std::string name(reader.name());
  const std::string prefix(name.substr(0, name.size() - reader.local().size()));
  std::string xml = "<" + name;
  // Value and cell metadata ("vm", "cm") belong to the value that goes.
  for (const char* const kept : {"r", "s", "ph"}) {
    const std::string_view value = reader.RawAttribute(kept);
    if (value.data() == nullptr) continue;
    const char quote = value.find('"') == std::string_view::npos ? '"' : '\'';
    xml.append(" ").append(kept).append("=").append(1, quote).append(value).append(1, quote);
  }
  if (text.empty()) return xml + "/>";
  const std::string encoded = EncodeXString(text);
  const bool edges =
      encoded.find_first_of(" \t\n") == 0 || encoded.find_last_of(" \t\n") == encoded.size() - 1;
  xml += " t=\"inlineStr\"><" + prefix + "is><" + prefix + "t";
  if (edges || encoded.find('\n') != std::string::npos) xml += " xml:space=\"preserve\"";
  return xml + ">" + EscapeText(encoded) + "</" + prefix + "t></" + prefix + "is></" + name + ">";
}

std::string SheetPart::EditedBytes() const {
  std::vector<Edit> edits;
  for (const auto& [index, text] : written_) {
    const SheetCell& cell = cells_[index];
    const ElementSpan span = FindElement(bytes_, cell.offset + 1);
    edits.push_back({span.begin, span.end - span.begin, CellXml(cell, text)});
  }
  for (const auto& [offset, formula] : formulas_) {
    edits.push_back({offset, formula.first, EscapeText(formula.second)});
  }
  return ApplyEdits(bytes_, std::move(edits));
}

}  // namespace quillmarch::host::workbook
