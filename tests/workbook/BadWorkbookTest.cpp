#include <gtest/gtest.h>

#include <string>

#include "host/workbook/Workbook.h"
#include "package/zip/ZipBuilder.h"
#include "workbook/WorkbookBuilder.h"

namespace quillmarch::host::workbook {

namespace {

std::string RefusalOf(const std::string& bytes, const WorkbookLimits& limits = {}) {
  const auto opened = Workbook::Open(bytes, limits);
  EXPECT_FALSE(opened.ok());
  return opened.error().words;
}

// A compound file whose directory names one stream.
std::string CompoundFile(const std::string& stream) {
  std::string bytes("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1");
  bytes.resize(1024, '\0');
  std::string entry(128, '\0');
  for (std::size_t i = 0; i < stream.size(); ++i) entry[2 * i] = stream[i];
  entry[64] = static_cast<char>((stream.size() + 1) * 2);
  entry[66] = 2;
  return bytes + entry;
}

std::string SheetFaultOf(const BuiltWorkbook& built, const WorkbookLimits& limits = {}) {
  const auto opened = Workbook::Open(built.Bytes(), limits);
  EXPECT_TRUE(opened.ok()) << opened.error().words;
  EXPECT_EQ(opened.value()->Sheet(0), nullptr);
  return opened.value()->SheetFault(0);
}

}  // namespace

TEST(BadWorkbook, WhatIsNoXlsxIsNamed) {
  EXPECT_EQ(RefusalOf(""), "The workbook is empty.");
  EXPECT_EQ(RefusalOf("a;b;c"), "The workbook is not a zip archive, so it is not an .xlsx file.");
  EXPECT_EQ(RefusalOf(CompoundFile("EncryptedPackage")),
            "The workbook is password-protected (encrypted).");
  EXPECT_EQ(RefusalOf(CompoundFile("Workbook")), "The workbook is in the old .xls format.");
  EXPECT_EQ(RefusalOf(CompoundFile("Book")), "The workbook is in the old .xls format.");
  EXPECT_EQ(RefusalOf(CompoundFile("Other")),
            "The workbook is an OLE compound file, not an .xlsx file.");
  BuiltWorkbook built = OneSheet("");
  built.type = "application/vnd.ms-excel.sheet.binary.macroEnabled.main";
  EXPECT_EQ(RefusalOf(built.Bytes()), "The workbook is in the binary .xlsb format.");
  EXPECT_EQ(RefusalOf(BuildZip(MinimalEntries())), "The package is not an Excel workbook.");
}

TEST(BadWorkbook, OneWithMacrosIsRead) {
  BuiltWorkbook built = OneSheet("");
  built.type = "application/vnd.ms-excel.sheet.macroEnabled.main+xml";
  EXPECT_TRUE(Workbook::Open(built.Bytes()).ok());
}

TEST(BadWorkbook, ACutOffArchiveIsRefusedWherever) {
  const std::string bytes = OneSheet("<row r=\"1\">" + TextCell("A1", "x") + "</row>").Bytes();
  for (std::size_t length = 1; length < bytes.size(); length += 97) {
    EXPECT_TRUE(RefusalOf(bytes.substr(0, length)).ends_with('.')) << length;
  }
}

TEST(BadWorkbook, ABombIsRefusedBeforeItInflates) {
  BuiltWorkbook built = OneSheet("");
  built.more = {{"xl/media/bomb.xml", std::string(8 << 20, ' ')}};
  const std::string sentence = RefusalOf(built.Bytes());
  EXPECT_NE(sentence.find("as a zip bomb does"), std::string::npos) << sentence;
}

TEST(BadWorkbook, PartsCellsAndSheetsAreBounded) {
  BuiltWorkbook built = OneSheet("<row r=\"1\"><c/><c/><c/></row>");
  WorkbookLimits limits;
  limits.maxCells = 2;
  EXPECT_EQ(SheetFaultOf(built, limits),
            "The part xl/worksheets/sheet1.xml cannot be read: it has more than 2 cells.");
  limits = {};
  limits.maxXmlBytes = 1 << 20;
  built.sheets[0].rows.clear();
  for (int i = 0; i < 100000; ++i)
    built.sheets[0].rows += "<row spans=\"" + std::to_string(i) + "\"/>";
  EXPECT_EQ(SheetFaultOf(built, limits),
            "The part xl/worksheets/sheet1.xml cannot be read: it is larger than 1 MB.");
  built.sheets.assign(3, {"s", ""});
  limits.maxSheets = 2;
  EXPECT_EQ(RefusalOf(built.Bytes(), limits), "The workbook has more than 2 sheets.");
}

TEST(BadWorkbook, ASheetThatIsTwoHasAFault) {
  BuiltWorkbook other = OneSheet("");
  other.sheets[0].rows = "</sheetData></worksheet><worksheet><sheetData>";
  EXPECT_NE(SheetFaultOf(other).find("it is not good XML"), std::string::npos);
}

TEST(BadWorkbook, CellsBeyondTheSheetAndOddValuesAreNoCells) {
  const auto opened = Workbook::Open(
      OneSheet("<row r=\"1048577\"><c><v>1</v></c></row><row r=\"2\"><c r=\"A2\"><v>nan</v></c>"
               "<c r=\"B2\"><v>1e999</v></c><c r=\"C2\" t=\"s\"><v>-1</v></c>"
               "<c r=\"D2\" t=\"odd\"><v>7</v></c><c r=\"E2\" s=\"-5\"><v>7</v></c></row>")
          .Bytes());
  ASSERT_TRUE(opened.ok());
  Workbook& workbook = *opened.value();
  EXPECT_EQ(workbook.Sheet(0)->UsedRange(), (CellRange{{2, 1}, {2, 5}}));
  EXPECT_EQ(workbook.Value(0, {2, 1}).kind, CellValue::Kind::kEmpty);
  EXPECT_EQ(workbook.Value(0, {2, 2}).kind, CellValue::Kind::kEmpty);
  EXPECT_EQ(workbook.Text(0, {2, 3}), u"");
  EXPECT_EQ(workbook.Text(0, {2, 4}), u"7");
  EXPECT_EQ(workbook.Text(0, {2, 5}), u"7");
}

TEST(BadWorkbook, TwentyThousandCategoriesAreRead) {
  std::string rows;
  for (int i = 1; i <= 20000; ++i) {
    const std::string row = std::to_string(i);
    rows += "<row r=\"" + row + "\">" + TextCell("A" + row, "Category " + row) +
            NumberCell("B" + row, row) + "</row>";
  }
  const auto opened = Workbook::Open(OneSheet(rows).Bytes());
  ASSERT_TRUE(opened.ok()) << opened.error().words;
  Workbook& workbook = *opened.value();
  ASSERT_NE(workbook.Sheet(0), nullptr) << workbook.SheetFault(0);
  EXPECT_EQ(workbook.Sheet(0)->Cells().size(), 40000u);
  EXPECT_EQ(workbook.Text(0, {20000, 1}), u"Category 20000");
}

}  // namespace quillmarch::host::workbook
