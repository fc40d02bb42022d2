#include <gtest/gtest.h>

#include <string>

#include "host/workbook/Workbook.h"
#include "workbook/WorkbookBuilder.h"

namespace quillmarch::host::workbook {

namespace {

std::unique_ptr<Workbook> Opened(const BuiltWorkbook& built) {
  auto opened = Workbook::Open(built.Bytes());
  EXPECT_TRUE(opened.ok()) << opened.error().words;
  return std::move(opened.value());
}

std::string Text(Workbook& workbook, const std::string& place, std::size_t sheet = 0) {
  return ToUtf8(workbook.Text(sheet, ParseCell(place)));
}

CellValue Value(Workbook& workbook, const std::string& place) {
  return workbook.Value(0, ParseCell(place));
}

std::string Row(int number, const std::string& cells) {
  return "<row r=\"" + std::to_string(number) + "\">" + cells + "</row>";
}

}  // namespace

TEST(WorkbookRead, SheetsComeInTheOrderOfTheirTabsWithNamesAndStates) {
  BuiltWorkbook built;
  built.sheets = {{"Data &amp; more", ""},
                  {"Hidden", "", "", "", {}, "state=\"hidden\""},
                  {"Deep", "", "", "", {}, "state=\"veryHidden\""}};
  const auto workbook = Opened(built);
  ASSERT_EQ(workbook->Sheets().size(), 3u);
  EXPECT_EQ(workbook->Sheets()[0].name, u"Data & more");
  EXPECT_EQ(workbook->Sheets()[0].state, SheetState::kVisible);
  EXPECT_EQ(workbook->Sheets()[1].state, SheetState::kHidden);
  EXPECT_EQ(workbook->Sheets()[2].state, SheetState::kVeryHidden);
  EXPECT_EQ(workbook->FindSheet(u"HIDDEN"), 1);
  EXPECT_EQ(workbook->FindSheet(u"Sheet1"), -1);
}

TEST(WorkbookRead, SharedStringsRichOnesAndPhoneticReadings) {
  BuiltWorkbook built =
      OneSheet(Row(1,
                   "<c r=\"A1\" t=\"s\"><v>0</v></c><c r=\"B1\" t=\"s\"><v>1</v></c>"
                   "<c r=\"C1\" t=\"s\"><v>2</v></c><c r=\"D1\" t=\"s\"><v>9</v></c>"));
  built.sharedStrings =
      "<si><t xml:space=\"preserve\"> Series &lt;1&gt;</t></si>"
      "<si><r><rPr><b/></rPr><t>Bold</t></r><r><t xml:space=\"preserve\"> plain</t></r></si>"
      "<si><t>\xE6\x9D\xB1</t><rPh sb=\"0\" eb=\"1\"><t>\xE3\x83\x92</t></rPh><phoneticPr/></si>";
  const auto workbook = Opened(built);
  EXPECT_EQ(Text(*workbook, "A1"), " Series <1>");
  EXPECT_EQ(Text(*workbook, "B1"), "Bold plain");
  EXPECT_EQ(Text(*workbook, "C1"), "\xE6\x9D\xB1");
  EXPECT_EQ(Text(*workbook, "D1"), "");
}

TEST(WorkbookRead, InlineTextsErrorsBooleansAndCachedFormulas) {
  const auto workbook = Opened(
      OneSheet(Row(1,
                   "<c r=\"A1\" t=\"inlineStr\"><is><r><t>in</t></r><r><t>line</t></r></is></c>"
                   "<c r=\"B1\" t=\"e\"><v>#N/A</v></c><c r=\"C1\" t=\"b\"><v>1</v></c>"
                   "<c r=\"D1\" t=\"str\"><f>A1&amp;\"x\"</f><v>inlinex</v></c>"
                   "<c r=\"E1\"><f t=\"shared\" si=\"0\"/><v>7</v></c><c r=\"F1\" s=\"1\"/>"
                   "<c r=\"G1\"><f t=\"array\" ref=\"G1:G2\">1</f><v>1</v></c>") +
               Row(2, "<c r=\"G2\"><v>2</v></c>")));
  EXPECT_EQ(Text(*workbook, "A1"), "inline");
  EXPECT_EQ(Value(*workbook, "A1").kind, CellValue::Kind::kText);
  EXPECT_EQ(Text(*workbook, "B1"), "#N/A");
  EXPECT_EQ(Value(*workbook, "B1").kind, CellValue::Kind::kError);
  EXPECT_EQ(Text(*workbook, "C1"), "TRUE");
  EXPECT_EQ(Value(*workbook, "C1").kind, CellValue::Kind::kBoolean);
  EXPECT_EQ(Text(*workbook, "D1"), "inlinex");
  EXPECT_EQ(workbook->Formula(0, {1, 4}), u"A1&\"x\"");
  EXPECT_TRUE(workbook->HasFormula(0, {1, 4}));
  EXPECT_TRUE(workbook->HasFormula(0, {1, 5}));
  EXPECT_EQ(Value(*workbook, "E1").number, 7);
  EXPECT_EQ(Value(*workbook, "F1").kind, CellValue::Kind::kEmpty);
  EXPECT_FALSE(workbook->HasFormula(0, {1, 1}));
  EXPECT_TRUE(workbook->HasFormula(0, {2, 7}));
}

TEST(WorkbookRead, NumbersAreShownAsTheirFormatSays) {
  BuiltWorkbook built = OneSheet(
      Row(1, NumberCell("A1", "4.3") + NumberCell("B1", "0.256", 1) + NumberCell("C1", "37261", 2) +
                 NumberCell("D1", "-1234.5", 3) + NumberCell("E1", "5", 99) +
                 "<c r=\"F1\" s=\"4\" t=\"inlineStr\"><is><t>w</t></is></c>"));
  built.numberFormats =
      "<numFmt numFmtId=\"164\" formatCode=\"$#,##0.00;($#,##0.00)\"/>"
      "<numFmt numFmtId=\"165\" formatCode=\"0;0;0;&quot;[&quot;@&quot;]&quot;\"/>";
  built.cellFormats =
      "<xf numFmtId=\"9\"/><xf numFmtId=\"14\"/><xf numFmtId=\"164\"/><xf numFmtId=\"165\"/>";
  const auto workbook = Opened(built);
  EXPECT_EQ(Text(*workbook, "A1"), "4.3");
  EXPECT_EQ(Text(*workbook, "B1"), "26%");
  EXPECT_EQ(Text(*workbook, "C1"), "1/5/2002");
  EXPECT_EQ(Value(*workbook, "C1").kind, CellValue::Kind::kDate);
  EXPECT_EQ(Text(*workbook, "D1"), "($1,234.50)");
  EXPECT_EQ(Value(*workbook, "D1").kind, CellValue::Kind::kCurrency);
  EXPECT_EQ(Text(*workbook, "E1"), "5");
  EXPECT_EQ(Text(*workbook, "F1"), "[w]");
}

TEST(WorkbookRead, TheSystemOf1904AndStrictDates) {
  BuiltWorkbook built = OneSheet(Row(1, NumberCell("A1", "35799", 1)));
  built.cellFormats = "<xf numFmtId=\"14\"/>";
  built.properties = "date1904=\"1\"";
  EXPECT_EQ(Text(*Opened(built), "A1"), "1/5/2002");

  built = OneSheet(Row(1, "<c r=\"A1\" s=\"1\" t=\"d\"><v>2002-01-05T12:00:00</v></c>"));
  built.cellFormats = "<xf numFmtId=\"22\"/>";
  built.strict = true;
  const auto workbook = Opened(built);
  EXPECT_EQ(Text(*workbook, "A1"), "1/5/2002 12:00");
  EXPECT_EQ(Value(*workbook, "A1").number, 37261.5);
}

TEST(WorkbookRead, TheUsedRangeIsAroundTheCellsThatAreThere) {
  auto workbook = Opened(OneSheet(Row(5, TextCell("C5", "a")) + Row(7, "<c r=\"D7\" s=\"0\"/>")));
  EXPECT_EQ(workbook->Sheet(0)->UsedRange(), (CellRange{{5, 3}, {7, 4}}));
  workbook = Opened(OneSheet(""));
  EXPECT_EQ(workbook->Sheet(0)->UsedRange(), (CellRange{{1, 1}, {1, 1}}));
  workbook =
      Opened(OneSheet(Row(1, TextCell("A1", "a")) + Row(1048576, TextCell("XFD1048576", "z"))));
  EXPECT_EQ(workbook->Sheet(0)->UsedRange(), (CellRange{{1, 1}, {kMostRows, kMostColumns}}));
  EXPECT_EQ(workbook->Sheet(0)->Cells().size(), 2u);
  EXPECT_EQ(Text(*workbook, "XFD1048576"), "z");
}

TEST(WorkbookRead, CellsWithoutAPlaceFollowTheOnesBeforeThem) {
  const auto workbook =
      Opened(OneSheet("<row/><row><c><v>1</v></c><c><v>2</v></c></row><row r=\"9\"><c><v>3</v></c>"
                      "<c r=\"D9\"><v>4</v></c><c><v>5</v></c></row><row><c><v>6</v></c></row>"));
  EXPECT_EQ(Text(*workbook, "B2"), "2");
  EXPECT_EQ(Text(*workbook, "A9"), "3");
  EXPECT_EQ(Text(*workbook, "E9"), "5");
  EXPECT_EQ(Text(*workbook, "A10"), "6");
}

TEST(WorkbookRead, MergedCellsHiddenRowsAndColumns) {
  BuiltWorkbook built = OneSheet("<row r=\"2\" hidden=\"1\">" + TextCell("A2", "a") + "</row>" +
                                 Row(3, TextCell("A3", "b")));
  built.sheets[0].before =
      "<cols><col min=\"2\" max=\"4\" hidden=\"true\"/><col min=\"5\" max=\"5\"/></cols>";
  built.sheets[0].after = "<mergeCells><mergeCell ref=\"A3:B4\"/></mergeCells>";
  const auto workbook = Opened(built);
  const SheetPart& sheet = *workbook->Sheet(0);
  EXPECT_TRUE(sheet.RowHidden(2));
  EXPECT_FALSE(sheet.RowHidden(3));
  EXPECT_FALSE(sheet.ColumnHidden(1));
  EXPECT_TRUE(sheet.ColumnHidden(2));
  EXPECT_TRUE(sheet.ColumnHidden(4));
  EXPECT_FALSE(sheet.ColumnHidden(5));
  ASSERT_EQ(sheet.Merged().size(), 1u);
  EXPECT_EQ(sheet.Merged()[0], (CellRange{{3, 1}, {4, 2}}));
}

TEST(WorkbookRead, TablesAndDefinedNames) {
  BuiltWorkbook built = OneSheet(Row(1, TextCell("A1", "x")));
  built.sheets[0].tables = {
      "<table xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" id=\"1\" "
      "name=\"t\" displayName=\"Sales\" ref=\"A1:B4\"><tableColumns count=\"2\">"
      "<tableColumn id=\"1\" name=\"Re_x000a_gion\"/><tableColumn id=\"2\" name=\"A &amp; B\"/>"
      "</tableColumns></table>"};
  built.names =
      "<definedName name=\"All\">Sheet1!$A$1:$B$4</definedName>"
      "<definedName name=\"Own\" localSheetId=\"0\" hidden=\"1\">Sheet1!$A$1</definedName>";
  const auto workbook = Opened(built);
  ASSERT_EQ(workbook->Tables(0).size(), 1u);
  const TablePart& table = *workbook->Tables(0)[0];
  EXPECT_EQ(table.Name(), "Sales");
  EXPECT_EQ(table.Range(), (CellRange{{1, 1}, {4, 2}}));
  EXPECT_EQ(table.Columns(), (std::vector<std::string>{"Re\ngion", "A & B"}));
  EXPECT_EQ(table.HeaderColumn({1, 2}), 1);
  EXPECT_EQ(table.HeaderColumn({2, 2}), -1);
  ASSERT_EQ(workbook->Names().size(), 2u);
  EXPECT_EQ(workbook->Names()[0].formula, u"Sheet1!$A$1:$B$4");
  EXPECT_EQ(workbook->Names()[0].sheet, -1);
  EXPECT_EQ(workbook->Names()[1].sheet, 0);
  EXPECT_TRUE(workbook->Names()[1].hidden);
}

TEST(WorkbookRead, AnyPrefixAndStrictNamespacesAreRead) {
  BuiltWorkbook built = OneSheet(Row(1, TextCell("A1", "strict")));
  built.strict = true;
  EXPECT_EQ(Text(*Opened(built), "A1"), "strict");

  built = OneSheet(
      "<x:row xmlns:x=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\" r=\"1\">"
      "<x:c r=\"A1\" t=\"inlineStr\"><x:is><x:t>prefixed</x:t></x:is></x:c></x:row>"
      "<y:row xmlns:y=\"urn:other\" r=\"2\"><y:c r=\"A2\"><y:v>1</y:v></y:c></y:row>");
  const auto workbook = Opened(built);
  EXPECT_EQ(Text(*workbook, "A1"), "prefixed");
  EXPECT_EQ(workbook->Sheet(0)->Cells().size(), 1u);
}

TEST(WorkbookRead, AReferenceGivesItsCellsWithoutHiddenOnesWhereAsked) {
  BuiltWorkbook built =
      OneSheet(Row(1, TextCell("A1", "a") + NumberCell("B1", "2")) + "<row r=\"2\" hidden=\"1\">" +
               TextCell("A2", "b") + "</row>" + Row(3, TextCell("B3", "c")));
  built.sheets.push_back({"Bob's data", Row(1, TextCell("A1", "other"))});
  const auto workbook = Opened(built);
  CellBlock block;
  ASSERT_TRUE(workbook->ReadReference(u"Sheet1!$A$1:$B$3", false, block));
  EXPECT_EQ(block.rows, 3u);
  EXPECT_EQ(block.columns, 2u);
  EXPECT_EQ(block.cells[1].value.number, 2);
  EXPECT_EQ(block.cells[2].text, u"b");
  EXPECT_EQ(block.cells[3].value.kind, CellValue::Kind::kEmpty);
  ASSERT_TRUE(workbook->ReadReference(u"=SHEET1!$A$1:$B$3", true, block));
  EXPECT_EQ(block.rows, 2u);
  EXPECT_EQ(block.cells[3].text, u"c");
  ASSERT_TRUE(workbook->ReadReference(u"('Bob''s data'!A1,Sheet1!A1:A2)", false, block));
  EXPECT_EQ(block.rows, 3u);
  EXPECT_EQ(block.columns, 1u);
  EXPECT_EQ(block.cells[0].text, u"other");
  for (const WideView none :
       {u"Nowhere!A1", u"Sheet1!#REF!", u"[1]Sheet1!A1", u"", u"Sheet1!A:C"}) {
    EXPECT_FALSE(workbook->ReadReference(none, false, block)) << ToUtf8(none);
    EXPECT_TRUE(block.cells.empty());
  }
}

TEST(WorkbookRead, ASheetThatCannotBeReadSaysWhyAndHasEmptyCells) {
  BuiltWorkbook built = OneSheet("");
  built.sheets[0].rows = "<row>";
  const auto workbook = Opened(built);
  EXPECT_EQ(workbook->Sheet(0), nullptr);
  EXPECT_TRUE(workbook->SheetFault(0).starts_with(
      "The part xl/worksheets/sheet1.xml cannot be read: it is not good XML"))
      << workbook->SheetFault(0);
  EXPECT_EQ(Text(*workbook, "A1"), "");
  EXPECT_FALSE(workbook->PutText(0, {1, 1}, u"x").ok());
}

}  // namespace quillmarch::host::workbook
