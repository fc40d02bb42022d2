#include "host/workbook/format/NumberFormat.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/workbook/format/DecimalDigits.h"
#include "host/workbook/format/ShowNumber.h"

namespace quillmarch::host::workbook {
namespace {

constexpr std::size_t kTextSection = 3;

bool Holds(const FormatSection& section, double value) {
  switch (section.condition) {
    case FormatCondition::kLess:
      return value < section.bound;
    case FormatCondition::kLessEqual:
      return value <= section.bound;
    case FormatCondition::kEqual:
      return value == section.bound;
    case FormatCondition::kOther:
      return value != section.bound;
    case FormatCondition::kMore:
      return value > section.bound;
    case FormatCondition::kMoreEqual:
      return value >= section.bound;
    case FormatCondition::kNone:
      break;
  }
  return true;
}

bool HasCondition(const FormatSection& section) {
  return section.condition != FormatCondition::kNone;
}

}  // namespace

// Without conditions: positive numbers, negative ones, zero. `minus` tells whether a negative
// number still needs its sign: a section of its own brings one along.
const FormatSection& NumberFormat::SectionFor(double value, bool& minus) const {
  std::size_t count = std::min(sections_.size(), kTextSection);
  if (sections_.size() > 1 && sections_.back().text && count == sections_.size()) --count;
  minus = value < 0;
  const FormatSection& first = sections_[0];
  if (count == 1 && !HasCondition(first)) return first;
  if (HasCondition(first) ? Holds(first, value) : (count > 2 ? value > 0 : value >= 0)) {
    return first;
  }
  if (count == 1) {
    // Excel adds a General section to a lone condition.
    static const std::vector<FormatSection> kGeneral = ParseFormatCode("General");
    return kGeneral.front();
  }
  const FormatSection& second = sections_[1];
  const bool takes = HasCondition(second) ? Holds(second, value) : (count == 2 || value < 0);
  if (takes) {
    if (!HasCondition(first) || !HasCondition(second)) minus = false;
    return second;
  }
  return sections_[count - 1];
}

std::string NumberFormat::Show(double value, bool date1904) const {
  bool minus = false;
  const FormatSection& section = SectionFor(value, minus);
  if (section.date) return ShowDate(section, value, date1904);
  const std::string shown = ShowNumber(section, std::fabs(value));
  // A section without a place for the number shows no sign either.
  const bool any =
      std::any_of(section.tokens.begin(), section.tokens.end(), [](const FormatToken& token) {
        return token.kind == TokenKind::kDigit || token.kind == TokenKind::kGeneral ||
               token.kind == TokenKind::kText;
      });
  return minus && any ? "-" + shown : shown;
}

std::string NumberFormat::ShowText(std::string_view text) const {
  const FormatSection* section = nullptr;
  if (sections_.size() > kTextSection) {
    section = &sections_[kTextSection];
  } else if (sections_.back().text) {
    section = &sections_.back();
  }
  if (section == nullptr) return std::string(text);
  std::string shown;
  for (const FormatToken& token : section->tokens) {
    if (token.kind == TokenKind::kText || token.kind == TokenKind::kGeneral) shown += text;
    if (token.kind == TokenKind::kLiteral) shown += token.text;
  }
  return shown;
}

std::string_view BuiltInFormat(unsigned id) {
  switch (id) {
    case 0:
      return "General";
    case 1:
      return "0";
    case 2:
      return "0.00";
    case 3:
      return "#,##0";
    case 4:
      return "#,##0.00";
    case 5:
      return "$#,##0_);\\($#,##0\\)";
    case 6:
      return "$#,##0_);[Red]\\($#,##0\\)";
    case 7:
      return "$#,##0.00_);\\($#,##0.00\\)";
    case 8:
      return "$#,##0.00_);[Red]\\($#,##0.00\\)";
    case 9:
      return "0%";
    case 10:
      return "0.00%";
    case 11:
      return "0.00E+00";
    case 12:
      return "# ?/?";
    case 13:
      return "# ?"
             "?/?"
             "?";
    case 14:
      return "m/d/yyyy";
    case 15:
      return "d-mmm-yy";
    case 16:
      return "d-mmm";
    case 17:
      return "mmm-yy";
    case 18:
      return "h:mm AM/PM";
    case 19:
      return "h:mm:ss AM/PM";
    case 20:
      return "h:mm";
    case 21:
      return "h:mm:ss";
    case 22:
      return "m/d/yyyy h:mm";
    case 37:
      return "#,##0_);\\(#,##0\\)";
    case 38:
      return "#,##0_);[Red]\\(#,##0\\)";
    case 39:
      return "#,##0.00_);\\(#,##0.00\\)";
    case 40:
      return "#,##0.00_);[Red]\\(#,##0.00\\)";
    case 41:
      return "_(* #,##0_);_(* \\(#,##0\\);_(* \"-\"_);_(@_)";
    case 42:
      return "_($* #,##0_);_($* \\(#,##0\\);_($* \"-\"_);_(@_)";
    case 43:
      return "_(* #,##0.00_);_(* \\(#,##0.00\\);_(* \"-\"?"
             "?_);_(@_)";
    case 44:
      return "_($* #,##0.00_);_($* \\(#,##0.00\\);_($* \"-\"?"
             "?_);_(@_)";
    case 45:
      return "mm:ss";
    case 46:
      return "[h]:mm:ss";
    case 47:
      return "mm:ss.0";
    case 48:
      return "##0.0E+0";
    case 49:
      return "@";
    default:
      // What East Asian Excels keep for dates and times of their own; an English one shows plain
      // ones.
      if ((id >= 27 && id <= 31) || id == 36 || (id >= 50 && id <= 54) || id == 57 || id == 58) {
        return "m/d/yyyy";
      }
      if ((id >= 32 && id <= 35) || id == 55 || id == 56) return "h:mm:ss";
      return {};
  }
}

}  // namespace quillmarch::host::workbook
