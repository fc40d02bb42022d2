// A number format's code taken apart: "#,##0.00;[Red]-#,##0.00;\"none\"" and the like.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillmarch::host::workbook {

enum class TokenKind : std::uint8_t {
  kLiteral,   // `text`
  kDigit,     // `letter` is 0, # or ?
  kPoint,     // the decimal point
  kPercent,   // shown; the value is multiplied by 100
  kExponent,  // `letter` is + or -, the digits after it are the exponent's
  kSlash,     // of a fraction
  kGeneral,
  kText,  // @
  kYear,  // `count` letters, as in all those below
  kMonth,
  kDay,
  kHour,
  kMinute,
  kSecond,
  kElapsedHours,  // [h]: not cut off at a day's end
  kElapsedMinutes,
  kElapsedSeconds,
  kSubSecond,  // ".000" after seconds: `count` digits
  kHalfDay,    // AM/PM; `count` 1 for A/P
};

struct FormatToken {
  TokenKind kind = TokenKind::kLiteral;
  char letter = 0;
  unsigned count = 0;
  std::string text;  // UTF-8
};

enum class FormatCondition : std::uint8_t {
  kNone,
  kLess,
  kLessEqual,
  kEqual,
  kOther,
  kMore,
  kMoreEqual
};

struct FormatSection {
  std::vector<FormatToken> tokens;
  FormatCondition condition = FormatCondition::kNone;
  double bound = 0;
  bool date = false;       // a date or a time
  bool text = false;       // holds @
  bool currency = false;   // holds a currency's sign
  bool thousands = false;  // digits in groups of three
  int power = 0;           // of ten, that the value is multiplied by: percent signs, scaling commas
};

// One to four sections. A code that cannot be read is the General format.
std::vector<FormatSection> ParseFormatCode(std::string_view code);

}  // namespace quillmarch::host::workbook
