#include "host/workbook/format/ShowNumber.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "host/workbook/SerialDate.h"
#include "host/workbook/format/DecimalDigits.h"

namespace quillmarch::host::workbook {
namespace {

constexpr int kGroup = 3;
constexpr int kMostPlaces = 300;  // of a fraction that is worked out
constexpr double kSecondsPerDay = 86400;
constexpr double kMostDays = 2958466;  // the first day after the year 9999
constexpr std::string_view kNoDate = "########";

// Positions of a section's tokens that belong to the number.
struct NumberPlan {
  std::size_t point;     // of the decimal point, or the number of tokens
  std::size_t exponent;  // the same
  std::size_t slash;     // the same
  std::vector<std::size_t> whole;
  std::vector<std::size_t> fraction;
  std::vector<std::size_t> power;
};

NumberPlan PlanOf(const FormatSection& section) {
  const std::size_t none = section.tokens.size();
  NumberPlan plan{none, none, none, {}, {}, {}};
  for (std::size_t i = 0; i < none; ++i) {
    const FormatToken& token = section.tokens[i];
    if (token.kind == TokenKind::kPoint && plan.point == none && plan.exponent == none) {
      plan.point = i;
    } else if (token.kind == TokenKind::kExponent && plan.exponent == none) {
      plan.exponent = i;
    } else if (token.kind == TokenKind::kSlash && plan.slash == none) {
      plan.slash = i;
    } else if (token.kind == TokenKind::kDigit) {
      (plan.exponent != none ? plan.power
       : plan.point != none  ? plan.fraction
                             : plan.whole)
          .push_back(i);
    }
  }
  return plan;
}

// What each place of the whole part shows, from the last to the first; digits that have no place go
// before the first.
void FillWhole(const FormatSection& section, const std::vector<std::size_t>& places,
               const std::string& digits, bool grouped, std::vector<std::string>& shown) {
  std::size_t left = digits.size();
  int column = 0;
  for (std::size_t i = places.size(); i-- > 0;) {
    std::string& text = shown[places[i]];
    const char letter = section.tokens[places[i]].letter;
    const auto put = [&](char digit) {
      if (grouped && column > 0 && column % kGroup == 0 && digit != ' ') text.insert(0, 1, ',');
      text.insert(0, 1, digit);
      ++column;
    };
    if (left > 0) {
      put(digits[--left]);
    } else if (letter == '0') {
      put('0');
    } else if (letter == '?') {
      put(' ');
    }
    while (i == 0 && left > 0) put(digits[--left]);
  }
}

// Places after the point: "#" shows nothing and "?" a space where only zeros follow.
void FillFraction(const FormatSection& section, const std::vector<std::size_t>& places,
                  const std::string& digits, std::vector<std::string>& shown) {
  std::size_t needed = digits.find_last_not_of('0');
  needed = needed == std::string::npos ? 0 : needed + 1;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const char letter = section.tokens[places[i]].letter;
    if (i < needed || letter == '0') {
      shown[places[i]] = digits[i];
    } else if (letter == '?') {
      shown[places[i]] = " ";
    }
  }
}

std::string Join(const FormatSection& section, const std::vector<std::string>& shown) {
  std::string text;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const FormatToken& token = section.tokens[i];
    text += token.kind == TokenKind::kLiteral   ? token.text
            : token.kind == TokenKind::kPercent ? "%"
                                                : shown[i];
  }
  return text;
}

struct Ratio {
  std::int64_t top = 0;
  std::int64_t bottom = 1;
};

Ratio NearestRatio(double part, std::int64_t mostBottom) {
  Ratio best{std::llround(part), 1};
  double error = std::fabs(part - static_cast<double>(best.top));
  for (std::int64_t bottom = 2; bottom <= mostBottom; ++bottom) {
    const auto top = std::llround(part * static_cast<double>(bottom));
    const double off = std::fabs(part - static_cast<double>(top) / static_cast<double>(bottom));
    if (off + 1e-12 < error) {
      best = {top, bottom};
      error = off;
    }
  }
  return best;
}

// "# ?/?" and "# ??/16". The whole part is what lies before the last group of digits in front of
// the slash.
std::string ShowFraction(const FormatSection& section, const NumberPlan& plan, double value) {
  constexpr std::size_t kMostBottomDigits = 4;
  std::vector<std::size_t> top;
  std::vector<std::size_t> whole;
  std::vector<std::size_t> bottom;
  std::size_t fixedAt = section.tokens.size();
  std::int64_t fixed = 0;
  for (std::size_t i = plan.slash; i-- > 0;) {
    if (section.tokens[i].kind != TokenKind::kDigit) continue;
    const bool same = top.empty() || (whole.empty() && top.front() == i + 1);
    (same ? top : whole).insert((same ? top : whole).begin(), i);
  }
  for (std::size_t i = plan.slash + 1; i < section.tokens.size(); ++i) {
    if (section.tokens[i].kind == TokenKind::kDigit) bottom.push_back(i);
    if (section.tokens[i].kind == TokenKind::kLiteral && bottom.empty() && fixed == 0) {
      fixed = std::atoi(section.tokens[i].text.c_str());
      if (fixed > 0) fixedAt = i;
    }
  }
  std::vector<std::string> shown(section.tokens.size());
  double part = value;
  double integer = 0;
  if (!whole.empty()) part = std::modf(value, &integer);
  std::int64_t most = 1;
  for (std::size_t i = 0; i < std::min(bottom.size(), kMostBottomDigits); ++i) most *= 10;
  Ratio ratio = fixed > 0 ? Ratio{std::llround(part * static_cast<double>(fixed)), fixed}
                          : NearestRatio(part, most - 1);
  if (!whole.empty() && ratio.top == ratio.bottom) {
    integer += 1;
    ratio = {0, ratio.bottom};
  }
  const bool hidden = ratio.top == 0 && !whole.empty();
  const std::string wholeDigits = DigitsOf(integer).Whole();
  FillWhole(section, whole, wholeDigits.empty() && hidden ? "0" : wholeDigits, section.thousands,
            shown);
  const auto width = [&](const std::vector<std::size_t>& places) { return places.size(); };
  if (hidden) {
    for (const std::size_t i : top) shown[i] = " ";
    for (const std::size_t i : bottom) shown[i] = " ";
    shown[plan.slash] = " ";
  } else {
    FillWhole(section, top, std::to_string(ratio.top), false, shown);
    shown[plan.slash] = "/";
    std::string digits = std::to_string(ratio.bottom);
    if (!bottom.empty()) {
      // Below the line the digits begin at the left.
      digits.resize(std::max(digits.size(), width(bottom)), ' ');
      for (std::size_t i = 0; i + 1 < bottom.size(); ++i) shown[bottom[i]] = digits[i];
      shown[bottom.back()] = digits.substr(bottom.size() - 1);
    }
  }
  std::string text;
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const FormatToken& token = section.tokens[i];
    if (token.kind != TokenKind::kLiteral) {
      text += shown[i];
    } else {
      text += hidden && i == fixedAt ? std::string(token.text.size(), ' ') : token.text;
    }
  }
  return text;
}

std::string ShowScientific(const FormatSection& section, const NumberPlan& plan,
                           DecimalDigits number) {
  const int wide = std::max(static_cast<int>(plan.whole.size()), 1);
  const int places = static_cast<int>(plan.fraction.size());
  int exponent = 0;
  if (!number.IsZero()) {
    // "##0.0E+0" counts in steps of three; a single place has one digit in front of the point.
    const auto step = [&] {
      const int first = number.point - 1;
      return wide == 1 ? first : (first >= 0 ? first / wide : -((-first + wide - 1) / wide)) * wide;
    };
    exponent = step();
    number.Round(places - exponent);
    exponent = step();
    number.point -= exponent;
  }
  std::vector<std::string> shown(section.tokens.size());
  FillWhole(section, plan.whole, number.Whole(), false, shown);
  FillFraction(section, plan.fraction, number.Fraction(places), shown);
  if (plan.point < shown.size()) shown[plan.point] = ".";
  FillWhole(section, plan.power, std::to_string(std::abs(exponent)), false, shown);
  shown[plan.exponent] = "E";
  if (exponent < 0) {
    shown[plan.exponent] += "-";
  } else if (section.tokens[plan.exponent].letter == '+') {
    shown[plan.exponent] += "+";
  }
  return Join(section, shown);
}

std::string TwoDigits(std::int64_t number, bool padded) {
  std::string digits = std::to_string(number);
  return padded && digits.size() < 2 ? "0" + digits : digits;
}

constexpr const char* kMonths[] = {"January",   "February", "March",    "April",
                                   "May",       "June",     "July",     "August",
                                   "September", "October",  "November", "December"};
constexpr const char* kDays[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                 "Thursday", "Friday", "Saturday"};

// A date with its time, rounded to what the section shows.
struct Moment {
  DateParts date;
  std::int64_t units = 0;  // since the epoch
  std::int64_t perSecond = 1;
  std::int64_t Seconds() const { return units / perSecond; }
};

std::string ShowMonth(int month, unsigned count) {
  const std::string name = month >= 1 && month <= 12 ? kMonths[month - 1] : "";
  switch (count) {
    case 1:
    case 2:
      return TwoDigits(month, count == 2);
    case 3:
      return name.substr(0, 3);
    case 5:
      return name.substr(0, 1);
    default:
      return name;
  }
}

std::string ShowDay(const DateParts& date, unsigned count) {
  if (count <= 2) return TwoDigits(date.day, count == 2);
  const std::string name = kDays[date.weekday];
  return count == 3 ? name.substr(0, 3) : name;
}

std::string ShowDatePiece(const FormatToken& token, const Moment& moment, bool halfDay) {
  const std::int64_t seconds = moment.Seconds();
  const std::int64_t hour = seconds / 3600 % 24;
  const bool padded = token.count >= 2;
  switch (token.kind) {
    case TokenKind::kLiteral:
      return token.text;
    case TokenKind::kYear:
      return token.count <= 2 ? TwoDigits(moment.date.year % 100, true)
                              : std::to_string(moment.date.year);
    case TokenKind::kMonth:
      return ShowMonth(moment.date.month, token.count);
    case TokenKind::kDay:
      return ShowDay(moment.date, token.count);
    case TokenKind::kHour:
      return TwoDigits(!halfDay ? hour : hour % 12 == 0 ? 12 : hour % 12, padded);
    case TokenKind::kMinute:
      return TwoDigits(seconds / 60 % 60, padded);
    case TokenKind::kSecond:
      return TwoDigits(seconds % 60, padded);
    case TokenKind::kElapsedHours:
      return TwoDigits(seconds / 3600, padded);
    case TokenKind::kElapsedMinutes:
      return TwoDigits(seconds / 60, padded);
    case TokenKind::kElapsedSeconds:
      return TwoDigits(seconds, padded);
    case TokenKind::kSubSecond: {
      std::string digits = std::to_string(moment.units % moment.perSecond + moment.perSecond);
      digits = digits.substr(1);
      digits.resize(token.count, '0');
      return "." + digits;
    }
    case TokenKind::kHalfDay:
      return std::string(hour < 12 ? "AM" : "PM").substr(0, token.count);
    default:
      return {};
  }
}

}  // namespace

std::string ShowNumber(const FormatSection& section, double value) {
  const NumberPlan plan = PlanOf(section);
  if (plan.slash < section.tokens.size() && plan.point == section.tokens.size() &&
      value < static_cast<double>(std::numeric_limits<std::int32_t>::max())) {
    return ShowFraction(section, plan, value);
  }
  DecimalDigits number = DigitsOf(value);
  if (!number.IsZero()) number.point += section.power;
  if (plan.exponent < section.tokens.size()) return ShowScientific(section, plan, number);

  std::vector<std::string> shown(section.tokens.size());
  for (std::size_t i = 0; i < shown.size(); ++i) {
    const TokenKind kind = section.tokens[i].kind;
    if (kind == TokenKind::kGeneral || kind == TokenKind::kText) shown[i] = ShowGeneral(value);
    if (kind == TokenKind::kPoint) shown[i] = ".";
    if (kind == TokenKind::kSlash) shown[i] = "/";
  }
  const int places = std::min(static_cast<int>(plan.fraction.size()), kMostPlaces);
  number.Round(places);
  FillWhole(section, plan.whole, number.Whole(), section.thousands, shown);
  // Digits before a point that no place takes are shown all the same.
  if (plan.whole.empty() && plan.point < shown.size()) shown[plan.point] = number.Whole() + ".";
  FillFraction(section, plan.fraction, number.Fraction(static_cast<int>(plan.fraction.size())),
               shown);
  return Join(section, shown);
}

std::string ShowDate(const FormatSection& section, double value, bool date1904) {
  if (!(value >= 0) || !(value < kMostDays)) return std::string(kNoDate);
  constexpr unsigned kMostSubSecondDigits = 3;
  Moment moment;
  bool halfDay = false;
  for (const FormatToken& token : section.tokens) {
    halfDay = halfDay || token.kind == TokenKind::kHalfDay;
    if (token.kind != TokenKind::kSubSecond) continue;
    for (unsigned i = 0; i < std::min(token.count, kMostSubSecondDigits); ++i) {
      if (moment.perSecond < 1000) moment.perSecond *= 10;
    }
  }
  moment.units = std::llround(value * kSecondsPerDay * static_cast<double>(moment.perSecond));
  if (!DateOfDay(moment.Seconds() / static_cast<std::int64_t>(kSecondsPerDay), date1904,
                 moment.date)) {
    return std::string(kNoDate);
  }
  std::string shown;
  for (const FormatToken& token : section.tokens) shown += ShowDatePiece(token, moment, halfDay);
  return shown;
}

}  // namespace quillmarch::host::workbook
