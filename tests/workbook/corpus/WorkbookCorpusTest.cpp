// The workbooks inside of real decks, judged by a script over another reader: what each cell holds
// and shows, and what writing one cell changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "host/workbook/Workbook.h"
#include "support/TempFolder.h"

namespace quillmarch::host::workbook {

namespace {

std::vector<std::string> Decks() {
  std::vector<std::string> decks;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLMARCH_DECKS)) {
    if (entry.path().extension() == ".pptx") decks.push_back(entry.path().string());
  }
  std::sort(decks.begin(), decks.end());
  return decks;
}

struct Embedded {
  std::string from;
  std::string bytes;
};

std::vector<Embedded> Workbooks() {
  std::vector<Embedded> workbooks;
  for (const std::string& path : Decks()) {
    const auto deck = Package::Open(path);
    if (!deck.ok()) continue;
    for (const std::string& name : deck.value()->PartNames()) {
      if (!name.starts_with("ppt/embeddings/") || !name.ends_with(".xlsx")) continue;
      workbooks.push_back({path + " " + name, deck.value()->ReadPart(name).value()});
    }
  }
  return workbooks;
}

// Text on one line: bytes in hexadecimal.
std::string Hex(const std::string& text) {
  std::string hex;
  for (const char c : text) {
    char pair[3];
    std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned char>(c));
    hex += pair;
  }
  return hex;
}

std::string Kind(CellValue::Kind kind) {
  switch (kind) {
    case CellValue::Kind::kEmpty:
      return "empty";
    case CellValue::Kind::kDate:
      return "date";
    case CellValue::Kind::kText:
      return "text";
    case CellValue::Kind::kBoolean:
      return "boolean";
    case CellValue::Kind::kError:
      return "error";
    default:
      return "number";
  }
}

// One line for each cell: sheet, place, kind, number, text, what it shows, whether by a formula.
std::string Told(Workbook& workbook) {
  std::string told;
  for (std::size_t sheet = 0; sheet < workbook.Sheets().size(); ++sheet) {
    const SheetPart* const part = workbook.Sheet(sheet);
    EXPECT_NE(part, nullptr) << workbook.SheetFault(sheet);
    if (part == nullptr) continue;
    for (const SheetCell& cell : part->Cells()) {
      const CellPosition at{cell.row, cell.column};
      const CellValue value = workbook.Value(sheet, at);
      char number[32];
      std::snprintf(number, sizeof number, "%.17g", value.number);
      told += Hex(ToUtf8(workbook.Sheets()[sheet].name)) + "\t" + CellName(at) + "\t" +
              Kind(value.kind) + "\t" + number + "\t" + Hex(ToUtf8(value.text)) + "\t" +
              Hex(ToUtf8(workbook.Text(sheet, at))) + "\t" + (cell.formula ? "f" : "v") + "\n";
    }
  }
  return told;
}

const Wide kNewText = u"N\u00FCr <ein> & \"Wort\" \u6771\u4EAC ";

// Writes the first cell that holds words, a header where there is one. Where it was, or nothing.
std::string WriteOne(Workbook& workbook) {
  for (std::size_t sheet = 0; sheet < workbook.Sheets().size(); ++sheet) {
    const SheetPart* const part = workbook.Sheet(sheet);
    for (const SheetCell& cell : part->Cells()) {
      const CellPosition at{cell.row, cell.column};
      if (workbook.Value(sheet, at).kind != CellValue::Kind::kText || part->HasFormula(at))
        continue;
      const auto put = workbook.PutText(sheet, at, kNewText);
      EXPECT_TRUE(put.ok()) << put.error().words;
      return Hex(ToUtf8(workbook.Sheets()[sheet].name)) + "\t" + CellName(at) + "\t" +
             Hex(ToUtf8(put.value())) + "\n";
    }
  }
  return {};
}

}  // namespace

TEST(WorkbookCorpus, AnotherReaderSeesTheSameCellsAndOneWrittenCellChangesNothingElse) {
  const std::vector<Embedded> workbooks = Workbooks();
  ASSERT_FALSE(workbooks.empty());
  const TempFolder folder;
  for (std::size_t i = 0; i < workbooks.size(); ++i) {
    const auto opened = Workbook::Open(workbooks[i].bytes);
    ASSERT_TRUE(opened.ok()) << workbooks[i].from << ": " << opened.error().words;
    const std::string number = std::to_string(i);
    folder.Put(number + ".from", workbooks[i].from);
    folder.Put(number + ".xlsx", workbooks[i].bytes);
    folder.Put(number + ".cells", Told(*opened.value()));
    EXPECT_EQ(opened.value()->SaveBytes().value(), workbooks[i].bytes) << workbooks[i].from;
    const std::string edit = WriteOne(*opened.value());
    if (edit.empty()) continue;
    folder.Put(number + ".edit", edit);
    folder.Put(number + ".edited.xlsx", opened.value()->SaveBytes().value());
  }
  const std::string command =
      std::string(QUILLMARCH_PYTHON " -B " QUILLMARCH_CHECK " ") + folder.Path("");
  EXPECT_EQ(std::system(command.c_str()), 0);
}

}  // namespace quillmarch::host::workbook
