// Small workbooks made to measure for the tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quillmarch::host::workbook {

struct BuiltSheet {
  std::string name;
  std::string rows;                      // the content of x:sheetData
  std::string before = {};               // between the root's start tag and x:sheetData
  std::string after = {};                // after x:sheetData; x:tableParts is added
  std::vector<std::string> tables = {};  // whole parts
  std::string attributes = {};           // of the sheet in the workbook part
};

struct BuiltWorkbook {
  std::vector<BuiltSheet> sheets;
  std::string sharedStrings = {};  // x:si elements
  std::string numberFormats = {};  // x:numFmt elements
  std::string cellFormats = {};    // x:xf elements after the first, which is General
  std::string names = {};          // x:definedName elements
  std::string properties = {};     // attributes of x:workbookPr
  bool strict = false;
  std::string type = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml";
  std::vector<std::pair<std::string, std::string>> more = {};  // other parts

  std::string Bytes() const;
};

// One sheet "Sheet1" with these rows.
BuiltWorkbook OneSheet(std::string rows);

// "<c r=.. ..>..</c>" of an inline text and of a number with a style.
std::string TextCell(const std::string& place, const std::string& text);
std::string NumberCell(const std::string& place, const std::string& number, int style = 0);

}  // namespace quillmarch::host::workbook
