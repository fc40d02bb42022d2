#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/workbook/Workbook.h"
#include "workbook/WorkbookBuilder.h"

namespace quillmarch::host::workbook {

namespace {

constexpr char kSpace[] = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr char kSheetPart[] = "xl/worksheets/sheet1.xml";

std::unique_ptr<Workbook> Opened(const std::string& bytes) {
  auto opened = Workbook::Open(bytes);
  EXPECT_TRUE(opened.ok()) << opened.error().words;
  return std::move(opened.value());
}

std::string Saved(Workbook& workbook) {
  auto saved = workbook.SaveBytes();
  EXPECT_TRUE(saved.ok()) << saved.error().words;
  return saved.value();
}

std::string Put(Workbook& workbook, const std::string& place, WideView text) {
  const auto put = workbook.PutText(0, ParseCell(place), text);
  return put.ok() ? ToUtf8(put.value()) : put.error().words;
}

std::string Part(const std::string& bytes, const std::string& name) {
  const auto package = Package::OpenBytes(bytes);
  return package.ok() ? package.value()->ReadPart(name).value() : package.error().words;
}

// The parts that differ between two packages of the same parts.
std::set<std::string> Changed(const std::string& before, const std::string& after) {
  std::set<std::string> changed;
  const auto old = Package::OpenBytes(before);
  const auto fresh = Package::OpenBytes(after);
  EXPECT_EQ(old.value()->PartNames(), fresh.value()->PartNames());
  for (const std::string& name : old.value()->PartNames()) {
    if (old.value()->ReadPart(name).value() != fresh.value()->ReadPart(name).value())
      changed.insert(name);
  }
  return changed;
}

std::string Table(const std::string& name, const std::string& range, const std::string& columns,
                  const std::string& attributes = "") {
  return "<table xmlns=\"" + std::string(kSpace) + "\" id=\"1\" name=\"" + name +
         "\" displayName=\"" + name + "\" ref=\"" + range + "\"" + attributes +
         "><autoFilter ref=\"" + range + "\"/><tableColumns>" + columns +
         "</tableColumns><tableStyleInfo name=\"TableStyleMedium2\"/></table>";
}

std::string Column(const std::string& id, const std::string& name, const std::string& more = "") {
  return "<tableColumn id=\"" + id + "\" name=\"" + name + "\"" +
         (more.empty() ? "/>" : ">" + more + "</tableColumn>");
}

}  // namespace

TEST(WorkbookWrite, ASharedTextThatOtherCellsUseIsLeftForThem) {
  BuiltWorkbook built = OneSheet(
      "<row r=\"1\" spans=\"1:2\">\n<c r=\"A1\" s=\"1\" t=\"s\"><v>0</v></c><c r=\"B1\" "
      "t=\"s\"><v>0</v></c>"
      "</row>");
  built.sharedStrings = "<si><t>word</t></si>";
  built.cellFormats = "<xf numFmtId=\"49\"/>";
  const std::string bytes = built.Bytes();
  const auto workbook = Opened(bytes);
  EXPECT_FALSE(workbook->Edited());
  EXPECT_EQ(Put(*workbook, "A1", u"Wort & <mehr>"), "Wort & <mehr>");
  EXPECT_TRUE(workbook->Edited());
  EXPECT_EQ(workbook->Text(0, {1, 1}), u"Wort & <mehr>");

  const std::string saved = Saved(*workbook);
  EXPECT_EQ(Changed(bytes, saved), std::set<std::string>{kSheetPart});
  std::string wanted = Part(bytes, kSheetPart);
  const std::string old = "<c r=\"A1\" s=\"1\" t=\"s\"><v>0</v></c>";
  wanted.replace(wanted.find(old), old.size(),
                 "<c r=\"A1\" s=\"1\" t=\"inlineStr\"><is><t>Wort &amp; &lt;mehr&gt;</t></is></c>");
  EXPECT_EQ(Part(saved, kSheetPart), wanted);
  const auto again = Opened(saved);
  EXPECT_EQ(again->Text(0, {1, 1}), u"Wort & <mehr>");
  EXPECT_EQ(again->Text(0, {1, 2}), u"word");
}

TEST(WorkbookWrite, WithoutAnEditTheBytesAreTheSame) {
  const std::string bytes = OneSheet("<row r=\"1\">" + TextCell("A1", "x") + "</row>").Bytes();
  const auto workbook = Opened(bytes);
  workbook->Text(0, {1, 1});
  EXPECT_EQ(Saved(*workbook), bytes);
}

TEST(WorkbookWrite, SpacesLineBreaksControlsAndEscapesComeBackAsTheyWere) {
  const auto workbook = Opened(OneSheet("<row r=\"1\">" + TextCell("A1", "x") + "</row>").Bytes());
  for (const WideView text : {u" lead", u"trail ", u"two\nlines", u"a\rb", u"\u0007", u"_x000D_",
                              u"\U0001F600", u"=1+1", u"12"}) {
    Put(*workbook, "A1", text);
    const auto again = Opened(Saved(*workbook));
    EXPECT_EQ(again->Text(0, {1, 1}), text);
    EXPECT_EQ(again->Value(0, {1, 1}).kind, CellValue::Kind::kText);
  }
  Put(*workbook, "A1", u" lead");
  EXPECT_NE(Part(Saved(*workbook), kSheetPart).find("<t xml:space=\"preserve\"> lead</t>"),
            std::string::npos);
}

TEST(WorkbookWrite, AnEmptyTextLeavesTheCellEmptyWithItsFormat) {
  const auto workbook = Opened(
      OneSheet("<row r=\"1\"><c r=\"A1\" s=\"0\" t=\"str\" vm=\"1\"><v>x</v></c></row>").Bytes());
  EXPECT_EQ(Put(*workbook, "A1", u""), "");
  EXPECT_EQ(workbook->Value(0, {1, 1}).kind, CellValue::Kind::kEmpty);
  EXPECT_NE(Part(Saved(*workbook), kSheetPart).find("<c r=\"A1\" s=\"0\"/>"), std::string::npos);
}

TEST(WorkbookWrite, PrefixesOfTheFileAreKept) {
  const std::string bytes = OneSheet("<x:row xmlns:x=\"" + std::string(kSpace) +
                                     "\" r=\"1\"><x:c r='A1' t='s'><x:v>0</x:v></x:c></x:row>")
                                .Bytes();
  const auto workbook = Opened(bytes);
  Put(*workbook, "A1", u"new");
  EXPECT_NE(Part(Saved(*workbook), kSheetPart)
                .find("<x:c r=\"A1\" t=\"inlineStr\"><x:is><x:t>new</x:t></x:is></x:c>"),
            std::string::npos);
}

TEST(WorkbookWrite, FormulasMissingCellsAndTextsTooLongAreRefused) {
  const std::string bytes = OneSheet("<row r=\"1\"><c r=\"A1\" t=\"str\"><f>\"x\"</f><v>x</v></c>" +
                                     TextCell("B1", "y") + "</row>")
                                .Bytes();
  const auto workbook = Opened(bytes);
  EXPECT_EQ(Put(*workbook, "A1", u"z"), "The cell A1 holds a formula.");
  EXPECT_EQ(Put(*workbook, "C7", u"z"), "The cell C7 is empty.");
  EXPECT_EQ(Put(*workbook, "B1", Wide(kMostCellUnits + 1, u'z')),
            "The text is longer than the 32767 characters that a cell holds.");
  EXPECT_EQ(Saved(*workbook), bytes);
}

TEST(WorkbookWrite, AHeaderRenamesTheColumnOfItsTable) {
  BuiltWorkbook built =
      OneSheet("<row r=\"1\">" + TextCell("A1", "Region") + TextCell("B1", "Sum") +
               "</row><row r=\"2\">" + TextCell("A2", "North") + "</row>");
  built.sheets[0].tables = {Table("Sales", "A1:B3", Column("1", "Region") + Column("2", "Sum"))};
  const std::string bytes = built.Bytes();
  const auto workbook = Opened(bytes);
  EXPECT_EQ(Put(*workbook, "A1", u"R\u00E9gion \"A\"\nB"), "R\u00E9gion \"A\"\nB");
  EXPECT_EQ(Put(*workbook, "A2", u"Nord"), "Nord");
  const std::string saved = Saved(*workbook);
  EXPECT_EQ(Changed(bytes, saved), (std::set<std::string>{kSheetPart, "xl/tables/table1.xml"}));
  std::string wanted = built.sheets[0].tables[0];
  wanted.replace(wanted.find("\"Region\""), 8, "\"R\u00E9gion &quot;A&quot;_x000a_B\"");
  EXPECT_EQ(Part(saved, "xl/tables/table1.xml"), wanted);
  EXPECT_EQ(Opened(saved)->Tables(0)[0]->Columns()[0], "R\u00E9gion \"A\"\nB");
}

TEST(WorkbookWrite, AHeaderThatAnotherColumnHasGetsANumber) {
  BuiltWorkbook built = OneSheet("<row r=\"1\">" + TextCell("A1", "One") + TextCell("B1", "Two") +
                                 TextCell("C1", "Three") + "</row>");
  built.sheets[0].tables = {
      Table("T", "A1:C2", Column("1", "One") + Column("2", "Two") + Column("3", "Three"))};
  const auto workbook = Opened(built.Bytes());
  EXPECT_EQ(Put(*workbook, "B1", u"oNE"), "oNE2");
  EXPECT_EQ(Put(*workbook, "C1", u"ONE"), "ONE3");
  EXPECT_EQ(Put(*workbook, "A1", u"One"), "One");
  EXPECT_EQ(Put(*workbook, "A1", u""), "Column1");
  const auto again = Opened(Saved(*workbook));
  EXPECT_EQ(again->Text(0, {1, 2}), u"oNE2");
  EXPECT_EQ(again->Tables(0)[0]->Columns(), (std::vector<std::string>{"Column1", "oNE2", "ONE3"}));
}

TEST(WorkbookWrite, ATableWithoutHeadersHasNoneToRename) {
  BuiltWorkbook built = OneSheet("<row r=\"1\">" + TextCell("A1", "One") + "</row>");
  built.sheets[0].tables = {Table("T", "A1:A2", Column("1", "Column1"), " headerRowCount=\"0\"")};
  const std::string bytes = built.Bytes();
  const auto workbook = Opened(bytes);
  Put(*workbook, "A1", u"Uno");
  EXPECT_EQ(Changed(bytes, Saved(*workbook)), std::set<std::string>{kSheetPart});
}

TEST(WorkbookWrite, TheLabelOfATotalsRowFollowsItsCell) {
  BuiltWorkbook built = OneSheet("<row r=\"1\">" + TextCell("A1", "One") + "</row><row r=\"3\">" +
                                 TextCell("A3", "Total") + "</row>");
  built.sheets[0].tables = {Table("T", "A1:A3",
                                  "<tableColumn id=\"1\" name=\"One\" totalsRowLabel=\"Total\"/>",
                                  " totalsRowCount=\"1\"")};
  const auto workbook = Opened(built.Bytes());
  Put(*workbook, "A3", u"Suma");
  EXPECT_NE(Part(Saved(*workbook), "xl/tables/table1.xml").find("totalsRowLabel=\"Suma\""),
            std::string::npos);
}

TEST(WorkbookWrite, FormulasFollowARenamedColumn) {
  BuiltWorkbook built = OneSheet(
      "<row r=\"1\">" + TextCell("A1", "Region") + TextCell("B1", "Sum") +
      "</row><row r=\"2\"><c r=\"D2\"><f>COUNTA(Sales[Region])&lt;5</f><v>1</v></c></row>");
  built.sheets.push_back({"Other",
                          "<row r=\"1\"><c r=\"A1\"><f>SUM(Sales[Sum])</f></c>"
                          "<c r=\"B1\"><f>Stock[Region]</f></c>"
                          "<c r=\"C1\"><f>Sales[[#Totals],[Region]]</f></c></row>"});
  built.sheets[0].tables = {Table(
      "Sales", "A1:B3",
      Column("1", "Region") + Column("2", "Sum",
                                     "<calculatedColumnFormula>LEN(Sales[[#This Row],[Region]])"
                                     "</calculatedColumnFormula>"))};
  built.names = "<definedName name=\"n\">Sales[Region]</definedName>";
  const std::string bytes = built.Bytes();
  const auto workbook = Opened(bytes);
  Put(*workbook, "A1", u"A&B");
  EXPECT_EQ(workbook->Formula(0, {2, 4}), u"COUNTA(Sales[A&B])<5");
  Put(*workbook, "A1", u"Zone");
  EXPECT_EQ(workbook->Formula(0, {2, 4}), u"COUNTA(Sales[Zone])<5");
  const std::string saved = Saved(*workbook);
  EXPECT_EQ(Changed(bytes, saved),
            (std::set<std::string>{kSheetPart, "xl/worksheets/sheet2.xml", "xl/tables/table1.xml",
                                   "xl/workbook.xml"}));
  const auto again = Opened(saved);
  EXPECT_EQ(again->Formula(0, {2, 4}), u"COUNTA(Sales[Zone])<5");
  EXPECT_EQ(again->Formula(1, {1, 1}), u"SUM(Sales[Sum])");
  EXPECT_EQ(again->Formula(1, {1, 2}), u"Stock[Region]");
  EXPECT_EQ(again->Formula(1, {1, 3}), u"Sales[[#Totals],[Zone]]");
  EXPECT_EQ(again->Names()[0].formula, u"Sales[Zone]");
  EXPECT_NE(Part(saved, "xl/tables/table1.xml").find("LEN(Sales[[#This Row],[Zone]])"),
            std::string::npos);
}

TEST(WorkbookWrite, ACellMayBeWrittenAgainAndSavedAgain) {
  const auto workbook = Opened(OneSheet("<row r=\"1\">" + TextCell("A1", "x") + "</row>").Bytes());
  Put(*workbook, "A1", u"one");
  EXPECT_EQ(Opened(Saved(*workbook))->Text(0, {1, 1}), u"one");
  Put(*workbook, "A1", u"two");
  EXPECT_EQ(Opened(Saved(*workbook))->Text(0, {1, 1}), u"two");
}

}  // namespace quillmarch::host::workbook
