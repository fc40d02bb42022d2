#include "host/workbook/CellReference.h"

#include <gtest/gtest.h>

namespace quillmarch::host::workbook {

TEST(CellReference, CellsInAllSpellings) {
  EXPECT_EQ(ParseCell("A1"), (CellPosition{1, 1}));
  EXPECT_EQ(ParseCell("$xfd$1048576"), (CellPosition{kMostRows, kMostColumns}));
  EXPECT_EQ(ParseCell("AB12"), (CellPosition{12, 28}));
  for (const char* const none : {"", "A", "1", "A0", "XFE1", "A1048577", "A1B", "1A", "$", "A$"}) {
    EXPECT_EQ(ParseCell(none), CellPosition{}) << none;
  }
}

TEST(CellReference, NamesOfCells) {
  EXPECT_EQ(CellName({1, 1}), "A1");
  EXPECT_EQ(CellName({12, 28}), "AB12");
  EXPECT_EQ(CellName({kMostRows, kMostColumns}), "XFD1048576");
}

TEST(CellReference, RangesWhateverTheOrderOfTheirCorners) {
  const CellRange wanted{{2, 1}, {5, 3}};
  EXPECT_EQ(ParseRange("A2:C5"), wanted);
  EXPECT_EQ(ParseRange("$C$5:$A$2"), wanted);
  EXPECT_EQ(ParseRange("B2").Rows(), 1u);
  EXPECT_EQ(ParseRange("A:C").last, (CellPosition{kMostRows, 3}));
  EXPECT_EQ(ParseRange("2:3").last, (CellPosition{3, kMostColumns}));
  EXPECT_EQ(ParseRange("A2:3").first.row, 0u);
  EXPECT_EQ(ParseRange("A2:").first.row, 0u);
}

TEST(CellReference, ReferencesOfCharts) {
  auto areas = ParseReference("Sheet1!$A$2:$A$5");
  ASSERT_EQ(areas.size(), 1u);
  EXPECT_EQ(areas[0].sheet, "Sheet1");
  EXPECT_EQ(areas[0].range, (CellRange{{2, 1}, {5, 1}}));

  areas = ParseReference("='It''s, mine'!B1");
  ASSERT_EQ(areas.size(), 1u);
  EXPECT_EQ(areas[0].sheet, "It's, mine");

  areas = ParseReference("(Sheet1!$A$2,Sheet1!$A$4:$A$5)");
  ASSERT_EQ(areas.size(), 2u);
  EXPECT_EQ(areas[1].range, (CellRange{{4, 1}, {5, 1}}));

  EXPECT_EQ(ParseReference("A1").size(), 1u);
  for (const char* const none :
       {"", "[1]Sheet1!$A$1", "Sales", "SUM(A1:A2)", "Sheet1!#REF!", "'x"}) {
    EXPECT_TRUE(ParseReference(none).empty()) << none;
  }
}

}  // namespace quillmarch::host::workbook
