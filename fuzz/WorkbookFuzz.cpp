// Workbooks from nowhere: the first byte chooses between a whole zip archive and a good workbook
// whose sheet, shared strings, styles and table are any bytes whatever, one after the other with a
// zero byte between them. Every cell is read, some are written, and what is saved must read back.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "host/workbook/Workbook.h"
#include "package/zip/ZipBuilder.h"

namespace quillmarch::host::workbook {

namespace {

constexpr std::size_t kMostCells = 2000;

void Require(bool holds) {
  if (!holds) std::abort();
}

std::vector<std::string> Pieces(const std::string& bytes) {
  std::vector<std::string> pieces(1);
  for (const char c : bytes) {
    if (c == '\0') {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  pieces.resize(4);
  return pieces;
}

std::string Around(const std::string& bytes) {
  const std::string package = "http://schemas.openxmlformats.org/package/2006/";
  const std::string office = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
  const std::string sheets = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
  const auto links = [&](const std::string& inside) {
    return "<Relationships xmlns=\"" + package + "relationships\">" + inside + "</Relationships>";
  };
  const auto link = [&](const std::string& id, const std::string& target) {
    return "<Relationship Id=\"" + id + "\" Type=\"" + office + "/" + id + "\" Target=\"" + target +
           "\"/>";
  };
  std::vector<std::string> pieces = Pieces(bytes);
  std::vector<BuiltEntry> entries;
  const auto add = [&](const std::string& name, const std::string& content) {
    entries.push_back({.name = name, .content = content, .stored = true});
  };
  add("[Content_Types].xml",
      "<Types xmlns=\"" + package +
          "content-types\"><Default Extension=\"xml\" ContentType=\"application/vnd."
          "openxmlformats-officedocument.spreadsheetml.sheet.main+xml\"/></Types>");
  add("_rels/.rels", links(link("officeDocument", "w.xml")));
  add("w.xml", "<workbook xmlns=\"" + sheets + "\" xmlns:r=\"" + office +
                   "\"><sheets><sheet name=\"S\" r:id=\"worksheet\"/></sheets></workbook>");
  add("_rels/w.xml.rels",
      links(link("worksheet", "s.xml") + link("sharedStrings", "t.xml") + link("styles", "f.xml")));
  add("s.xml", pieces[0]);
  add("t.xml", pieces[1]);
  add("f.xml", pieces[2]);
  add("_rels/s.xml.rels", links(link("table", "l.xml")));
  add("l.xml", pieces[3]);
  return BuildZip(entries);
}

// What is written into the cells that the input's bytes point at.
void Write(Workbook& workbook, std::size_t sheet, const std::string& bytes,
           std::vector<std::pair<CellPosition, Wide>>& written) {
  const Wide text = ToWide(bytes.substr(0, 40));
  std::size_t number = 0;
  for (const SheetCell& cell : workbook.Sheet(sheet)->Cells()) {
    if (static_cast<unsigned char>(bytes[++number % bytes.size()]) % 3 != 0) continue;
    const CellPosition at{cell.row, cell.column};
    const auto put = workbook.PutText(sheet, at, text + Decimal(static_cast<std::int64_t>(number)));
    Require(put.ok() || !put.error().words.empty());
    if (put.ok()) written.emplace_back(at, put.value());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  WorkbookLimits limits;
  limits.maxXmlBytes = 1 << 20;
  limits.maxCells = kMostCells;
  const std::string whole = data[0] == 'Z' ? bytes : Around(bytes);
  const auto opened = Workbook::Open(whole, limits);
  Require(opened.ok() || !opened.error().words.empty());
  if (!opened.ok()) return 0;
  Workbook& workbook = *opened.value();
  std::vector<std::vector<std::pair<CellPosition, Wide>>> written(workbook.Sheets().size());
  for (std::size_t sheet = 0; sheet < written.size(); ++sheet) {
    const SheetPart* const part = workbook.Sheet(sheet);
    Require((part == nullptr) == !workbook.SheetFault(sheet).empty());
    if (part == nullptr) continue;
    for (const SheetCell& cell : part->Cells()) {
      const CellPosition at{cell.row, cell.column};
      Require(part->Find(at) == &cell && part->UsedRange().Has(at));
      workbook.Text(sheet, at);
      workbook.Formula(sheet, at);
      Require(ParseCell(CellName(at)) == at);
    }
    Write(workbook, sheet, bytes, written[sheet]);
  }
  const auto saved = workbook.SaveBytes();
  // Two sheets of a foreign archive may share one part.
  if (!saved.ok() || data[0] == 'Z') return 0;
  const auto again = Workbook::Open(saved.value(), {.maxXmlBytes = 16 << 20});
  Require(again.ok());
  for (std::size_t sheet = 0; sheet < written.size(); ++sheet) {
    if (written[sheet].empty()) continue;
    Require(again.value()->Sheet(sheet) != nullptr);
    for (const auto& [at, text] : written[sheet]) {
      Require(again.value()->Value(sheet, at).text == workbook.Value(sheet, at).text);
    }
  }
  return 0;
}

}  // namespace quillmarch::host::workbook
