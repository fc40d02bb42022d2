// A number as decimal digits, rounded as a spreadsheet does: 15 digits are taken as the number's
// true value, and a half goes away from zero.
#pragma once

#include <cstdint>
#include <string>

namespace quillmarch::host::workbook {

// 0.d1d2d3... times ten to the power of `point`, never negative. Without trailing zeros; no digits
// at all are zero.
struct DecimalDigits {
  std::string digits;
  int point = 0;

  bool IsZero() const { return digits.empty(); }
  // Rounds to so many places after the point; a negative number rounds before it.
  void Round(int places);
  // The digits before the point without leading zeros, and exactly `places` after it.
  std::string Whole() const;
  std::string Fraction(int places) const;
};

// Of the absolute value, which is finite.
DecimalDigits DigitsOf(double value);

// As the General format shows it where the column is wide enough.
std::string ShowGeneral(double value);

}  // namespace quillmarch::host::workbook
