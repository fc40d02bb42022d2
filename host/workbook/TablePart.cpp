#include "host/workbook/TablePart.h"

#include <algorithm>

#include "host/package/xml/Splice.h"
#include "host/package/xml/XmlReader.h"
#include "host/package/xml/XmlText.h"
#include "host/workbook/CellNumber.h"
#include "host/workbook/RichText.h"
#include "host/workbook/StructuredReference.h"
#include "host/workbook/TextFold.h"
#include "host/workbook/XString.h"

namespace quillmarch::host::workbook {
namespace {

constexpr XmlNamespace kX = XmlNamespace::kSpreadsheet;
using Event = XmlReader::Event;

// In an attribute a line feed would turn into a space, so it is escaped as Excel does.
std::string ColumnAttribute(std::string_view name) {
  std::string text;
  for (const char c : EncodeXString(name)) {
    if (c == '\n') {
      text += "_x000a_";
    } else {
      text += c;
    }
  }
  return EscapeAttribute(text);
}

}  // namespace

std::unique_ptr<TablePart> TablePart::Parse(std::string bytes) {
  std::unique_ptr<TablePart> table(new TablePart(std::move(bytes)));
  return table->Read() ? std::move(table) : nullptr;
}

bool TablePart::Read() {
  columns_.clear();
  offsets_.clear();
  XmlReader reader(bytes_);
  if (reader.Next() != Event::kStart || !reader.Is(kX, "table")) return false;
  name_ = DecodeXString(reader.Attribute("displayName"));
  range_ = ParseRange(reader.Attribute("ref"));
  headerRows_ = WholeNumber(reader.RawAttribute("headerRowCount"), 1);
  totalsRows_ = WholeNumber(reader.RawAttribute("totalsRowCount"), 0);
  for (Event event = reader.Next(); event != Event::kDone; event = reader.Next()) {
    if (event != Event::kStart || !reader.Is(kX, "tableColumn")) continue;
    columns_.push_back(DecodeXString(reader.Attribute("name")));
    offsets_.push_back(reader.begin());
  }
  return range_.first.row > 0;
}

int TablePart::HeaderColumn(CellPosition at) const {
  if (headerRows_ == 0 || at.row != range_.first.row || !range_.Has(at)) return -1;
  const std::size_t column = at.column - range_.first.column;
  return column < columns_.size() ? static_cast<int>(column) : -1;
}

std::string TablePart::FreeName(std::size_t column, const std::string& name) const {
  const auto taken = [&](const std::string& text) {
    const std::string folded = FoldCase(text);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      if (i != column && FoldCase(columns_[i]) == folded) return true;
    }
    return false;
  };
  std::string free = name;
  for (std::size_t number = 2; taken(free); ++number) free = name + std::to_string(number);
  return free;
}

bool TablePart::PutAttribute(std::size_t column, std::string_view attribute,
                             std::string_view value) {
  const AttributeSpan span = FindAttribute(bytes_, offsets_[column] + 1, attribute);
  if (!span.found) return false;
  std::string text = ColumnAttribute(value);
  if (span.quote == '\'') {
    for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos;) {
      text.replace(at, 1, "&apos;");
    }
  }
  bytes_ = ApplyEdits(bytes_, {{span.valueBegin, span.valueEnd - span.valueBegin, text}});
  edited_ = true;
  Read();
  return true;
}

void TablePart::Rename(std::size_t column, std::string name) {
  PutAttribute(column, "name", name);
}

bool TablePart::PutTotalsLabel(CellPosition at, std::string_view text) {
  if (totalsRows_ == 0 || at.row != range_.last.row || !range_.Has(at)) return false;
  const std::size_t column = at.column - range_.first.column;
  return column < columns_.size() && PutAttribute(column, "totalsRowLabel", text);
}

void TablePart::RenameInFormulas(std::string_view table, std::string_view from,
                                 std::string_view to) {
  std::vector<Edit> edits;
  XmlReader reader(bytes_);
  for (Event event = reader.Next(); event != Event::kDone; event = reader.Next()) {
    if (event != Event::kStart || reader.selfClosed()) continue;
    if (!reader.Is(kX, "calculatedColumnFormula") && !reader.Is(kX, "totalsRowFormula")) continue;
    const std::size_t begin = reader.end();
    const std::string old = ReadElementText(reader);
    const std::string renamed = RenameTableColumn(old, table, from, to);
    if (renamed != old) edits.push_back({begin, reader.begin() - begin, EscapeText(renamed)});
  }
  if (edits.empty()) return;
  bytes_ = ApplyEdits(bytes_, std::move(edits));
  edited_ = true;
  Read();
}

}  // namespace quillmarch::host::workbook
