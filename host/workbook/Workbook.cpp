#include "host/workbook/Workbook.h"

#include <algorithm>
#include <utility>

#include "host/package/InputFile.h"
#include "host/package/xml/Namespaces.h"
#include "host/package/xml/Splice.h"
#include "host/package/xml/XmlReader.h"
#include "host/package/xml/XmlText.h"
#include "host/package/zip/CompoundFile.h"
#include "host/workbook/CellNumber.h"
#include "host/workbook/RichText.h"
#include "host/workbook/StructuredReference.h"
#include "host/workbook/TextFold.h"
#include "host/workbook/XString.h"

namespace quillmarch::host::workbook {
namespace {

constexpr XmlNamespace kX = XmlNamespace::kSpreadsheet;
constexpr std::size_t kMostXmlNodes = 8000000;  // no tree is made of them
using Event = XmlReader::Event;

Error Refused(std::string sentence) {
  return {ErrorCode::kUnsupported, std::move(sentence)};
}

// Why bytes that may be no zip archive are no workbook; empty when nothing speaks against it.
std::string SignatureFault(std::string_view bytes) {
  InputFile file;
  std::string sentence = file.OpenBytes(bytes);
  if (!sentence.empty()) return "The workbook is empty.";
  switch (CompoundKindOf(file)) {
    case CompoundKind::kNone:
      break;
    case CompoundKind::kEncrypted:
      return "The workbook is password-protected (encrypted).";
    case CompoundKind::kWorkbook:
      return "The workbook is in the old .xls format.";
    default:
      return "The workbook is an OLE compound file, not an .xlsx file.";
  }
  if (!bytes.starts_with("PK"))
    return "The workbook is not a zip archive, so it is not an .xlsx file.";
  return {};
}

std::string TypeFault(const std::string& type) {
  if (type.ends_with("sheet.main+xml") || type.ends_with("template.main+xml")) {
    if (type.find("spreadsheetml") != std::string::npos) return {};
  }
  if (type == "application/vnd.ms-excel.sheet.macroEnabled.main+xml" ||
      type == "application/vnd.ms-excel.template.macroEnabled.main+xml") {
    return {};
  }
  if (type.find("ms-excel.sheet.binary") != std::string::npos) {
    return "The workbook is in the binary .xlsb format.";
  }
  return "The package is not an Excel workbook.";
}

const Relationship* OfKind(const std::vector<Relationship>& all, RelationshipKind kind) {
  const auto found = std::find_if(all.begin(), all.end(), [&](const Relationship& each) {
    return !each.external && RelationshipKindOf(each.type) == kind;
  });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

Result<std::unique_ptr<Workbook>> Workbook::Open(std::string_view bytes,
                                                 const WorkbookLimits& limits) {
  std::unique_ptr<Workbook> workbook(new Workbook(limits));
  std::string fault = workbook->Load(bytes);
  if (!fault.empty()) return Refused(std::move(fault));
  return workbook;
}

std::string Workbook::Load(std::string_view bytes) {
  std::string fault = SignatureFault(bytes);
  if (!fault.empty()) return fault;
  PackageLimits limits;
  limits.maxPartBytes = limits.maxXmlBytes = limits_.maxXmlBytes;
  limits.maxXmlNodes = kMostXmlNodes;
  auto opened = Package::OpenBytes(bytes, limits);
  if (!opened) return opened.error().words;
  package_ = *std::move(opened);

  const auto top = package_->Relationships("");
  if (!top.ok()) return top.error().words;
  const Relationship* const main = OfKind(top.value(), RelationshipKind::kOfficeDocument);
  if (main == nullptr) return "The package is not an Excel workbook.";
  part_ = main->target;
  fault = TypeFault(package_->ContentType(part_));
  if (!fault.empty()) return fault;
  auto part = package_->ReadXmlPart(part_);
  if (!part.ok()) return part.error().words;
  bytes_ = std::move(part.value());
  const auto relationships = package_->Relationships(part_);
  if (!relationships.ok()) return relationships.error().words;
  fault = ReadWorkbookPart(relationships.value());
  if (!fault.empty()) return fault;
  ReadStringsAndStyles(relationships.value());
  loaded_.resize(sheets_.size());
  return {};
}

std::string Workbook::ReadWorkbookPart(const std::vector<Relationship>& relationships) {
  XmlReader reader(bytes_);
  if (reader.Next() != Event::kStart || !reader.Is(kX, "workbook")) {
    return "The part " + part_ + " is not a workbook.";
  }
  std::vector<int> numberOf;  // of the worksheet, by the place in the list of all sheets
  for (Event event = reader.Next(); event != Event::kDone; event = reader.Next()) {
    if (event != Event::kStart || reader.space() != kX) continue;
    if (reader.local() == "workbookPr") {
      date1904_ = TrueAttribute(reader.RawAttribute("date1904"));
    } else if (reader.local() == "sheet") {
      if (numberOf.size() == limits_.maxSheets) {
        return "The workbook has more than " + std::to_string(limits_.maxSheets) + " sheets.";
      }
      const std::string id = reader.RelationshipAttribute("id");
      const auto found =
          std::find_if(relationships.begin(), relationships.end(),
                       [&](const Relationship& each) { return !id.empty() && each.id == id; });
      const bool known = found != relationships.end();
      const bool worksheet =
          !known || RelationshipKindOf(found->type) == RelationshipKind::kWorksheet;
      numberOf.push_back(worksheet ? static_cast<int>(sheets_.size()) : -1);
      if (!worksheet) continue;
      SheetEntry entry;
      entry.name = ToWide(DecodeXString(reader.Attribute("name")));
      const std::string_view state = reader.RawAttribute("state");
      if (state == "hidden") entry.state = SheetState::kHidden;
      if (state == "veryHidden") entry.state = SheetState::kVeryHidden;
      if (known && !found->external) entry.part = found->target;
      sheets_.push_back(std::move(entry));
    } else if (reader.local() == "definedName") {
      DefinedName name;
      name.name = ToWide(DecodeXString(reader.Attribute("name")));
      name.hidden = TrueAttribute(reader.RawAttribute("hidden"));
      const std::uint32_t place = WholeNumber(reader.RawAttribute("localSheetId"), UINT32_MAX);
      if (place < numberOf.size()) name.sheet = numberOf[place];
      name.formula = ToWide(ReadElementText(reader));
      names_.push_back(std::move(name));
    }
  }
  return {};
}

// Without them the cells still have their own numbers, shown plainly.
void Workbook::ReadStringsAndStyles(const std::vector<Relationship>& relationships) {
  if (const Relationship* const strings = OfKind(relationships, RelationshipKind::kSharedStrings)) {
    const auto part = package_->ReadXmlPart(strings->target);
    if (part.ok()) strings_ = SharedStrings(part.value());
  }
  if (const Relationship* const styles = OfKind(relationships, RelationshipKind::kStyles)) {
    const auto part = package_->ReadXmlPart(styles->target);
    if (part.ok()) styles_ = CellStyles(part.value());
  }
}

int Workbook::FindSheet(WideView name) const {
  const std::string wanted = FoldCase(ToUtf8(name));
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    if (FoldCase(ToUtf8(sheets_[i].name)) == wanted) return static_cast<int>(i);
  }
  return -1;
}

const SheetPart* Workbook::Sheet(std::size_t sheet) {
  LoadedSheet& loaded = loaded_[sheet];
  if (loaded.asked) return loaded.cells.get();
  loaded.asked = true;
  const std::string& part = sheets_[sheet].part;
  auto bytes = package_->ReadXmlPart(part);
  if (!bytes.ok()) {
    loaded.fault = bytes.error().words;
    return nullptr;
  }
  std::string why;
  loaded.cells = SheetPart::Parse(std::move(bytes.value()), date1904_, limits_.maxCells, why);
  if (!loaded.cells) loaded.fault = "The part " + part + " cannot be read: " + why + ".";
  return loaded.cells.get();
}

const std::vector<std::unique_ptr<TablePart>>& Workbook::Tables(std::size_t sheet) {
  LoadedSheet& loaded = loaded_[sheet];
  if (loaded.tablesAsked) return loaded.tables;
  loaded.tablesAsked = true;
  const SheetPart* const cells = Sheet(sheet);
  if (cells == nullptr || cells->TableIds().empty()) return loaded.tables;
  const auto relationships = package_->Relationships(sheets_[sheet].part);
  for (const std::string& id : cells->TableIds()) {
    for (const Relationship& each : relationships ? *relationships : std::vector<Relationship>()) {
      if (each.id != id || each.external) continue;
      auto part = package_->ReadXmlPart(each.target);
      if (!part.ok()) continue;
      std::unique_ptr<TablePart> table = TablePart::Parse(std::move(part.value()));
      if (!table) continue;
      loaded.tables.push_back(std::move(table));
      loaded.tableParts.push_back(each.target);
    }
  }
  return loaded.tables;
}

std::string Workbook::RawText(const SheetPart& sheet, const SheetCell& cell) const {
  if (const std::string* const written = sheet.Written({cell.row, cell.column})) return *written;
  if (cell.content != CellContent::kShared) return sheet.Text(cell);
  return std::string(strings_.Text(static_cast<std::size_t>(cell.number)));
}

CellValue Workbook::Value(std::size_t sheet, CellPosition at) {
  CellValue value;
  const SheetPart* const part = Sheet(sheet);
  const SheetCell* const cell = part == nullptr ? nullptr : part->Find(at);
  if (cell == nullptr) return value;
  const std::string* const written = part->Written(at);
  const CellContent content = written == nullptr ? cell->content
                              : written->empty() ? CellContent::kEmpty
                                                 : CellContent::kText;
  value.number = cell->number;
  switch (content) {
    case CellContent::kEmpty:
      value.number = 0;
      break;
    case CellContent::kNumber: {
      const NumberFormat& format = styles_.FormatOf(cell->style);
      value.kind = format.IsDate()       ? CellValue::Kind::kDate
                   : format.IsCurrency() ? CellValue::Kind::kCurrency
                                         : CellValue::Kind::kNumber;
      break;
    }
    case CellContent::kBoolean:
      value.kind = CellValue::Kind::kBoolean;
      break;
    default:
      value.kind =
          content == CellContent::kError ? CellValue::Kind::kError : CellValue::Kind::kText;
      value.number = 0;
      value.text = ToWide(RawText(*part, *cell));
  }
  return value;
}

Wide Workbook::Text(std::size_t sheet, CellPosition at) {
  const SheetPart* const part = Sheet(sheet);
  const SheetCell* const cell = part == nullptr ? nullptr : part->Find(at);
  if (cell == nullptr) return {};
  const CellValue value = Value(sheet, at);
  const NumberFormat& format = styles_.FormatOf(cell->style);
  switch (value.kind) {
    case CellValue::Kind::kEmpty:
      return {};
    case CellValue::Kind::kText:
      return ToWide(format.ShowText(ToUtf8(value.text)));
    case CellValue::Kind::kError:
      return value.text;
    case CellValue::Kind::kBoolean:
      return value.number != 0 ? u"TRUE" : u"FALSE";
    default:
      return ToWide(format.Show(value.number, date1904_));
  }
}

bool Workbook::HasFormula(std::size_t sheet, CellPosition at) {
  const SheetPart* const part = Sheet(sheet);
  return part != nullptr && part->HasFormula(at);
}

Wide Workbook::Formula(std::size_t sheet, CellPosition at) {
  const SheetPart* const part = Sheet(sheet);
  const SheetCell* const cell = part == nullptr ? nullptr : part->Find(at);
  return cell == nullptr ? Wide() : ToWide(part->Formula(*cell));
}

bool Workbook::ReadReference(WideView reference, bool visibleOnly, CellBlock& block) {
  block = {};
  const std::vector<SheetRange> areas = ParseReference(ToUtf8(reference));
  std::size_t cells = 0;
  for (const SheetRange& area : areas) {
    cells += std::size_t{area.range.Rows()} * area.range.Columns();
    if (cells > kMostBlockCells) return false;
  }
  for (const SheetRange& area : areas) {
    const int found = area.sheet.empty() ? 0 : FindSheet(ToWide(area.sheet));
    const auto sheet = static_cast<std::size_t>(found);
    const SheetPart* const part = found < 0 || sheets_.empty() ? nullptr : Sheet(sheet);
    if (part == nullptr) {
      block = {};
      return false;
    }
    std::uint32_t rows = 0;
    std::uint32_t columns = 0;
    for (std::uint32_t row = area.range.first.row; row <= area.range.last.row; ++row) {
      if (visibleOnly && part->RowHidden(row)) continue;
      columns = 0;
      for (std::uint32_t column = area.range.first.column; column <= area.range.last.column;
           ++column) {
        if (visibleOnly && part->ColumnHidden(column)) continue;
        const CellPosition at{row, column};
        block.cells.push_back({Value(sheet, at), Text(sheet, at)});
        ++columns;
      }
      ++rows;
    }
    block.rows = rows;
    block.columns = columns;
  }
  if (areas.size() > 1) {
    block.rows = static_cast<std::uint32_t>(block.cells.size());
    block.columns = 1;
  }
  return !block.cells.empty();
}

void Workbook::RenameInNames(const std::string& table, const std::string& from,
                             const std::string& to) {
  std::vector<Edit> edits;
  std::size_t index = 0;
  XmlReader reader(bytes_);
  for (Event event = reader.Next(); event != Event::kDone; event = reader.Next()) {
    if (event != Event::kStart || !reader.Is(kX, "definedName")) continue;
    const std::size_t begin = reader.end();
    const bool empty = reader.selfClosed();
    const std::string old = ReadElementText(reader);
    const std::string renamed = RenameTableColumn(old, table, from, to);
    if (!empty && renamed != old) {
      edits.push_back({begin, reader.begin() - begin, EscapeText(renamed)});
      names_[index].formula = ToWide(renamed);
    }
    ++index;
  }
  if (edits.empty()) return;
  bytes_ = ApplyEdits(bytes_, std::move(edits));
  namesEdited_ = true;
}

// Formulas name a table's columns; one that names a column that is gone would make Excel repair the
// workbook.
void Workbook::RenameColumn(const std::string& table, const std::string& from,
                            const std::string& to) {
  RenameInNames(table, from, to);
  for (std::size_t sheet = 0; sheet < sheets_.size(); ++sheet) {
    for (const auto& each : Tables(sheet)) each->RenameInFormulas(table, from, to);
    if (Sheet(sheet) != nullptr) loaded_[sheet].cells->RenameColumn(table, from, to);
  }
}

Result<Wide> Workbook::PutText(std::size_t sheet, CellPosition at, WideView text) {
  const SheetPart* const part = Sheet(sheet);
  if (part == nullptr) return Refused(loaded_[sheet].fault);
  const SheetCell* const cell = part->Find(at);
  const std::string name = CellName(at);
  if (cell == nullptr) return Refused("The cell " + name + " is empty.");
  if (part->HasFormula(at)) return Refused("The cell " + name + " holds a formula.");
  if (text.size() > kMostCellUnits) {
    return Refused("The text is longer than the " + std::to_string(kMostCellUnits) +
                   " characters that a cell holds.");
  }
  std::string put = ToUtf8(text);
  for (const auto& table : Tables(sheet)) {
    const int column = table->HeaderColumn(at);
    if (column < 0) {
      table->PutTotalsLabel(at, put);
      continue;
    }
    const auto index = static_cast<std::size_t>(column);
    // A header is never empty.
    put = table->FreeName(index, put.empty() ? "Column" + std::to_string(column + 1) : put);
    const std::string old = table->Columns()[index];
    if (old == put) break;
    table->Rename(index, put);
    RenameColumn(table->Name(), old, put);
    break;
  }
  loaded_[sheet].cells->PutText(*cell, put);
  return ToWide(put);
}

bool Workbook::Edited() const {
  return std::any_of(loaded_.begin(), loaded_.end(), [](const LoadedSheet& sheet) {
    return sheet.cells != nullptr && sheet.cells->Edited();
  });
}

Result<std::string> Workbook::SaveBytes() {
  for (std::size_t i = 0; i < sheets_.size(); ++i) {
    LoadedSheet& sheet = loaded_[i];
    if (sheet.cells && sheet.cells->Edited()) {
      package_->PutPart(sheets_[i].part, sheet.cells->EditedBytes());
    }
    for (std::size_t table = 0; table < sheet.tables.size(); ++table) {
      if (!sheet.tables[table]->Edited()) continue;
      package_->PutPart(sheet.tableParts[table], sheet.tables[table]->Bytes());
    }
  }
  if (namesEdited_) package_->PutPart(part_, bytes_);
  return package_->SaveBytes();
}

}  // namespace quillmarch::host::workbook
