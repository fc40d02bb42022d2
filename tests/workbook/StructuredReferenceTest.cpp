#include "host/workbook/StructuredReference.h"

#include <gtest/gtest.h>

namespace quillmarch::host::workbook {

namespace {

std::string Renamed(const std::string& formula) {
  return RenameTableColumn(formula, "Sales", "Region", "Zone");
}

}  // namespace

TEST(StructuredReference, AColumnIsRenamedWhereverItsTableNamesIt) {
  EXPECT_EQ(Renamed("SUM(Sales[Region])"), "SUM(Sales[Zone])");
  EXPECT_EQ(Renamed("sales[REGION]"), "sales[Zone]");
  EXPECT_EQ(Renamed("Sales[[#This Row],[Region]]*2"), "Sales[[#This Row],[Zone]]*2");
  EXPECT_EQ(Renamed("Sales[[Region]:[Total]]"), "Sales[[Zone]:[Total]]");
  EXPECT_EQ(Renamed("Sales[@Region]"), "Sales[@Zone]");
}

TEST(StructuredReference, OtherTablesColumnsAndTextsStay) {
  for (const char* const same :
       {"Sales[Regional]", "Stock[Region]", "OldSales[Region]", "\"Sales[Region]\"",
        "'Sales[Region]'!A1", "Region", "[Region]", "Sales[#All]", "Sales[Region", "Sales[", ""}) {
    EXPECT_EQ(Renamed(same), same);
  }
}

TEST(StructuredReference, SignsThatMeanSomethingInBracketsAreEscaped) {
  EXPECT_EQ(RenameTableColumn("T['#1]", "T", "#1", "a[b]"), "T[a'[b']]");
}

}  // namespace quillmarch::host::workbook
