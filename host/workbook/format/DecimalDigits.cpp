#include "host/workbook/format/DecimalDigits.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace quillmarch::host::workbook {
namespace {

constexpr int kGeneralWidth = 11;       // characters of a number, its sign apart
constexpr int kGeneralScientific = 6;   // digits of a mantissa
constexpr int kGeneralSmallPlaces = 9;  // after "0."

void DropZeros(DecimalDigits& number) {
  while (!number.digits.empty() && number.digits.back() == '0') number.digits.pop_back();
  if (number.digits.empty()) number.point = 0;
}

std::string Scientific(DecimalDigits number) {
  number.Round(kGeneralScientific - number.point);
  std::string text = number.digits.substr(0, 1);
  if (number.digits.size() > 1) text += "." + number.digits.substr(1);
  const int exponent = number.point - 1;
  text += exponent < 0 ? "E-" : "E+";
  const std::string digits = std::to_string(std::abs(exponent));
  return text + (digits.size() < 2 ? "0" : "") + digits;
}

}  // namespace

void DecimalDigits::Round(int places) {
  const int kept = point + places;
  if (kept >= static_cast<int>(digits.size())) return;
  if (kept < 0) {
    digits.clear();
    point = 0;
    return;
  }
  const bool up = digits[static_cast<std::size_t>(kept)] >= '5';
  digits.resize(static_cast<std::size_t>(kept));
  if (up) {
    std::size_t at = digits.size();
    while (at > 0 && digits[at - 1] == '9') digits[--at] = '0';
    if (at > 0) {
      ++digits[at - 1];
    } else {
      digits.insert(0, 1, '1');
      ++point;
    }
  }
  DropZeros(*this);
}

std::string DecimalDigits::Whole() const {
  if (point <= 0) return {};
  std::string whole = digits.substr(0, static_cast<std::size_t>(point));
  whole.resize(static_cast<std::size_t>(point), '0');
  return whole;
}

std::string DecimalDigits::Fraction(int places) const {
  std::string fraction;
  if (!digits.empty() && point < 0) {
    fraction.assign(static_cast<std::size_t>(std::min(-point, places)), '0');
  }
  const auto from = static_cast<std::size_t>(std::max(point, 0));
  if (from < digits.size()) fraction += digits.substr(from);
  fraction.resize(static_cast<std::size_t>(places), '0');
  return fraction;
}

DecimalDigits DigitsOf(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.14e", std::fabs(value));
  DecimalDigits number;
  number.digits.push_back(text[0]);
  number.digits.append(text + 2, 14);
  number.point = std::atoi(text + 17) + 1;
  DropZeros(number);
  return number;
}

std::string ShowGeneral(double value) {
  const DecimalDigits exact = DigitsOf(value);
  if (exact.IsZero()) return "0";
  const std::string sign = value < 0 ? "-" : "";
  if (exact.point > kGeneralWidth) return sign + Scientific(exact);
  const int places =
      exact.point > 0 ? std::max(kGeneralWidth - 1 - exact.point, 0) : kGeneralSmallPlaces;
  DecimalDigits number = exact;
  number.Round(places);
  // So small a number keeps its digits only with an exponent.
  const bool tiny = exact.point < -3;
  if (tiny && number.digits != exact.digits) return sign + Scientific(exact);
  if (number.point > kGeneralWidth) return sign + Scientific(exact);
  std::string text = number.Whole();
  if (text.empty()) text = "0";
  std::string fraction = number.Fraction(places);
  while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
  if (!fraction.empty()) text += "." + fraction;
  return sign + text;
}

}  // namespace quillmarch::host::workbook
