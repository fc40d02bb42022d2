// A table's grid and the texts of its cells.
#include "host/deck/TableGrid.h"

#include "deck/PartUnderTest.h"

namespace quillmarch::host::deck {

using testdeck::Cell;
using testdeck::TableFrame;

namespace {

std::string Table(const std::vector<std::string>& rows, int columns) {
  std::string xml = "<a:tbl><a:tblPr/><a:tblGrid>";
  for (int i = 0; i < columns; ++i) xml += "<a:gridCol w=\"100\"/>";
  xml += "</a:tblGrid>";
  for (const std::string& row : rows) xml += "<a:tr h=\"100\">" + row + "</a:tr>";
  return TableFrame(xml + "</a:tbl>");
}

Wide CellText(PartUnderTest& slide, std::uint32_t row, std::uint32_t column) {
  TextBody* const body = slide.part->CellText(0, row, column);
  return body == nullptr ? Wide(u"(none)") : AllText(*body);
}

}  // namespace

TEST(TableGrid, RowsAndColumnsAreCountedAndEachCellHasItsText) {
  PartUnderTest slide(Table({Cell("a") + Cell("b"), Cell("c") + Cell("")}, 2));
  const TableGrid& grid = *slide.part->Table(0);
  EXPECT_EQ(grid.Rows(), 2U);
  EXPECT_EQ(grid.Columns(), 2U);
  EXPECT_EQ(CellText(slide, 0, 1), u"b");
  EXPECT_EQ(CellText(slide, 1, 0), u"c");
  EXPECT_EQ(CellText(slide, 1, 1), u"");
  EXPECT_FALSE(grid.Merged(0, 0));
}

TEST(TableGrid, EveryPositionOfAMergedCellAnswersWithItsOrigin) {
  PartUnderTest slide(Table(
      {Cell("origin", " gridSpan=\"2\" rowSpan=\"2\"") + Cell("x", " hMerge=\"1\"") + Cell("c"),
       Cell("y", " vMerge=\"1\"") + Cell("z", " hMerge=\"1\" vMerge=\"1\"") + Cell("d")},
      3));
  for (const std::uint32_t row : {0U, 1U}) {
    for (const std::uint32_t column : {0U, 1U}) {
      EXPECT_EQ(CellText(slide, row, column), u"origin") << row << "," << column;
      EXPECT_TRUE(slide.part->Table(0)->Merged(row, column));
    }
  }
  EXPECT_EQ(CellText(slide, 0, 2), u"c");
  EXPECT_EQ(CellText(slide, 1, 2), u"d");
  EXPECT_FALSE(slide.part->Table(0)->Merged(1, 2));
}

TEST(TableGrid, AMergeBeyondItsOriginsSpanIsACellOfItsOwn) {
  PartUnderTest slide(Table({Cell("a") + Cell("b", " hMerge=\"1\"")}, 2));
  EXPECT_EQ(CellText(slide, 0, 1), u"b");
  EXPECT_FALSE(slide.part->Table(0)->Merged(0, 1));
}

TEST(TableGrid, AMergeAtTheEdgeHasNoNeighbourToBelongTo) {
  PartUnderTest slide(Table({Cell("a", " hMerge=\"1\" vMerge=\"1\"")}, 1));
  EXPECT_EQ(CellText(slide, 0, 0), u"a");
}

TEST(TableGrid, RowsOfABrokenTableMayBeShortOrLong) {
  PartUnderTest slide(Table({Cell("a"), Cell("b") + Cell("c") + Cell("d"), ""}, 2));
  const TableGrid& grid = *slide.part->Table(0);
  EXPECT_EQ(grid.Columns(), 3U) << "as the longest row has";
  EXPECT_EQ(grid.Rows(), 3U);
  EXPECT_FALSE(grid.Has(0, 1));
  EXPECT_TRUE(grid.Has(1, 2));
  EXPECT_FALSE(grid.Has(2, 0));
  EXPECT_FALSE(grid.Has(3, 0));
  EXPECT_EQ(slide.part->CellText(0, 0, 1), nullptr);
}

TEST(TableGrid, AbsurdSpansAreHeldToBounds) {
  PartUnderTest slide(Table({Cell("a", " gridSpan=\"99999999999\" rowSpan=\"-4\"")}, 1));
  EXPECT_EQ(CellText(slide, 0, 0), u"a");
  EXPECT_TRUE(slide.part->Table(0)->Merged(0, 0));
}

TEST(TableGrid, AFrameWithoutATableHasNoGrid) {
  PartUnderTest slide(TableFrame(""));
  EXPECT_EQ(slide.part->Table(0), nullptr);
  EXPECT_EQ(slide.part->CellText(0, 0, 0), nullptr);
}

TEST(TableGrid, ACellWithoutATextBodyHasNoText) {
  PartUnderTest slide(Table({"<a:tc><a:tcPr/></a:tc>"}, 1));
  EXPECT_TRUE(slide.part->Table(0)->Has(0, 0));
  EXPECT_EQ(slide.part->CellText(0, 0, 0), nullptr);
}

TEST(TableGrid, ATextPutThroughACoveredPositionIsWrittenIntoTheOriginOnly) {
  PartUnderTest slide(
      Table({Cell("origin", " gridSpan=\"2\"") + Cell("hidden", " hMerge=\"1\"")}, 2));
  TextBody* const body = slide.part->CellText(0, 0, 1);
  ASSERT_NE(body, nullptr);
  ASSERT_TRUE(PutText(*body, 0, 6, u"new"));
  EXPECT_EQ(slide.Bytes(), slide.With("<a:t>origin</a:t>", "<a:t>new</a:t>"));
}

TEST(TableGrid, EditsInSeveralCellsAreAllInTheBytes) {
  PartUnderTest slide(Table({Cell("one") + Cell("two"), Cell("three") + Cell("four")}, 2));
  ASSERT_TRUE(PutText(*slide.part->CellText(0, 1, 1), 0, 4, u"4"));
  ASSERT_TRUE(PutText(*slide.part->CellText(0, 0, 0), 0, 3, u"1"));
  std::string expected = slide.With("<a:t>one</a:t>", "<a:t>1</a:t>");
  expected.replace(expected.find("four"), 4, "4");
  EXPECT_EQ(slide.Bytes(), expected);
}

}  // namespace quillmarch::host::deck
