// A chart's data: an .xlsx in memory, read cell by cell, and edits that change the text of single
// cells and nothing else. Sheets are read as they are asked for. One thread at a time.
//
// Sheets and tables are named by 0-based numbers, rows and columns by 1-based ones.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/text/Wide.h"
#include "host/package/Package.h"
#include "host/workbook/CellReference.h"
#include "host/workbook/CellStyles.h"
#include "host/workbook/SharedStrings.h"
#include "host/workbook/SheetPart.h"
#include "host/workbook/TablePart.h"

namespace quillmarch::host::workbook {

// Far beyond what a chart draws, and small beside a deck.
struct WorkbookLimits {
  std::uint64_t maxXmlBytes = 16ull << 20;  // of one part
  std::size_t maxCells = 500000;            // of one sheet
  std::size_t maxSheets = 1000;
};

// What a cell holds at most, in UTF-16 units; Excel takes no more.
inline constexpr std::size_t kMostCellUnits = 32767;

enum class SheetState : std::uint8_t { kVisible, kHidden, kVeryHidden };

struct SheetEntry {
  Wide name;
  SheetState state = SheetState::kVisible;
  std::string part;  // empty when it leads nowhere
};

struct DefinedName {
  Wide name;
  Wide formula;    // without "="
  int sheet = -1;  // where it holds; -1 in all of the workbook
  bool hidden = false;
};

struct CellValue {
  enum class Kind : std::uint8_t { kEmpty, kNumber, kDate, kCurrency, kText, kBoolean, kError };
  Kind kind = Kind::kEmpty;
  double number = 0;  // of a number, date (its serial number) or amount; 1 for a true boolean
  Wide text;          // of a text or an error, such as "#N/A"
};

// The cells of a chart's reference, row by row; several areas as one column.
struct CellBlock {
  struct Cell {
    CellValue value;
    Wide text;  // as the cell shows it
  };
  std::uint32_t rows = 0;
  std::uint32_t columns = 0;
  std::vector<Cell> cells;
};

// No reference to more cells is read.
inline constexpr std::size_t kMostBlockCells = 200000;

class Workbook {
 public:
  // `bytes` is the .xlsx or .xlsm. A sentence says why it is refused: encrypted, in one of Excel's
  // binary forms, damaged, too large, no workbook at all.
  static Result<std::unique_ptr<Workbook>> Open(std::string_view bytes,
                                                const WorkbookLimits& limits = {});

  // Worksheets in the order of their tabs; chart and dialog sheets are none.
  const std::vector<SheetEntry>& Sheets() const { return sheets_; }
  // By name without regard to case; -1 when there is none.
  int FindSheet(WideView name) const;
  const std::vector<DefinedName>& Names() const { return names_; }
  bool Date1904() const { return date1904_; }

  // Null when the sheet's part cannot be read; SheetFault then says why.
  const SheetPart* Sheet(std::size_t sheet);
  const std::string& SheetFault(std::size_t sheet) const { return loaded_[sheet].fault; }
  // The sheet's tables that can be read.
  const std::vector<std::unique_ptr<TablePart>>& Tables(std::size_t sheet);

  // A sheet that cannot be read has empty cells only.
  CellValue Value(std::size_t sheet, CellPosition at);
  // As the cell's format shows it. The width of the column is not taken into account.
  Wide Text(std::size_t sheet, CellPosition at);
  bool HasFormula(std::size_t sheet, CellPosition at);
  // Without "="; empty for none, or where another cell's formula covers this one.
  Wide Formula(std::size_t sheet, CellPosition at);

  // `reference` is one such as "Sheet1!$A$2:$A$5", with or without "="; with `visibleOnly` without
  // the cells of hidden rows and columns. False, and the block is empty, when it leads to no cells,
  // to a sheet that cannot be read, or to too many.
  bool ReadReference(WideView reference, bool visibleOnly, CellBlock& block);

  // Makes the cell hold that text, whatever it looks like; its format stays. The header of a
  // table's column keeps a name of its own in that table: where another column has it, a number
  // follows. The value is the text that the cell now holds. Refused, with nothing changed: a cell
  // that the file does not have, a formula, a text longer than a cell holds.
  Result<Wide> PutText(std::size_t sheet, CellPosition at, WideView text);

  bool Edited() const;
  // The .xlsx with all edits; every part without one has its bytes as before.
  Result<std::string> SaveBytes();

 private:
  struct LoadedSheet {
    std::unique_ptr<SheetPart> cells;
    std::vector<std::unique_ptr<TablePart>> tables;
    std::vector<std::string> tableParts;
    std::string fault;
    bool asked = false;
    bool tablesAsked = false;
  };

  explicit Workbook(const WorkbookLimits& limits) : limits_(limits) {}
  std::string Load(std::string_view bytes);
  std::string ReadWorkbookPart(const std::vector<Relationship>& relationships);
  void ReadStringsAndStyles(const std::vector<Relationship>& relationships);
  void RenameColumn(const std::string& table, const std::string& from, const std::string& to);
  void RenameInNames(const std::string& table, const std::string& from, const std::string& to);
  std::string RawText(const SheetPart& sheet, const SheetCell& cell) const;

  WorkbookLimits limits_;
  std::unique_ptr<Package> package_;
  std::string part_;   // the workbook's own
  std::string bytes_;  // of that part, edits included
  bool namesEdited_ = false;
  std::vector<SheetEntry> sheets_;
  std::vector<DefinedName> names_;
  std::vector<LoadedSheet> loaded_;
  SharedStrings strings_;
  CellStyles styles_;
  bool date1904_ = false;
};

}  // namespace quillmarch::host::workbook
