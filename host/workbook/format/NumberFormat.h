// Shows a cell's value as its number format says, in the manner of an English Excel.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/workbook/format/FormatCode.h"

namespace quillmarch::host::workbook {

class NumberFormat {
 public:
  explicit NumberFormat(std::string_view code) : sections_(ParseFormatCode(code)) {}

  // UTF-8. A date before the epoch or after the year 9999 shows "########".
  std::string Show(double value, bool date1904) const;
  std::string ShowText(std::string_view text) const;
  // Whether numbers with it are dates or times, or amounts of money.
  bool IsDate() const { return sections_.front().date; }
  bool IsCurrency() const { return sections_.front().currency && !IsDate(); }

 private:
  const FormatSection& SectionFor(double value, bool& minus) const;

  std::vector<FormatSection> sections_;
};

// The code of a format that every workbook has, by its number; empty when there is none.
std::string_view BuiltInFormat(unsigned id);

}  // namespace quillmarch::host::workbook
