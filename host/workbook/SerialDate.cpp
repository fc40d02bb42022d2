#include "host/workbook/SerialDate.h"

#include <charconv>
#include <chrono>

namespace quillmarch::host::workbook {
namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kInventedDay = 60;  // 29 February 1900
constexpr int kLastYear = 9999;
constexpr double kSecondsPerDay = 86400;

sys_days Epoch(bool date1904) {
  using namespace std::chrono;
  return date1904 ? sys_days(1904y / January / 1) : sys_days(1899y / December / 31);
}

// Digits at the front as a number; false when there are none.
bool TakeNumber(std::string_view& text, int& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || value < 0) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

bool TakeSign(std::string_view& text, char sign) {
  if (!text.starts_with(sign)) return false;
  text.remove_prefix(1);
  return true;
}

bool TakeTime(std::string_view text, double& days) {
  int hours = 0;
  int minutes = 0;
  double seconds = 0;
  if (!TakeNumber(text, hours) || !TakeSign(text, ':') || !TakeNumber(text, minutes)) return false;
  if (TakeSign(text, ':')) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error != std::errc() || !(seconds >= 0 && seconds < 61)) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  }
  TakeSign(text, 'Z');
  if (!text.empty() || hours > 24 || minutes > 59) return false;
  days = (hours * 3600 + minutes * 60 + seconds) / kSecondsPerDay;
  return true;
}

}  // namespace

bool DateOfDay(std::int64_t day, bool date1904, DateParts& parts) {
  constexpr std::int64_t kMostDays = 2958465;  // 31 December 9999 by the system of 1900
  if (day < 0 || day > kMostDays) return false;
  if (!date1904 && (day == 0 || day == kInventedDay)) {
    parts = day == 0 ? DateParts{1900, 1, 0, 6} : DateParts{1900, 2, 29, 3};
    return true;
  }
  const std::int64_t real = !date1904 && day > kInventedDay ? day - 1 : day;
  const year_month_day date(Epoch(date1904) + std::chrono::days(real));
  parts.year = static_cast<int>(date.year());
  parts.month = static_cast<int>(static_cast<unsigned>(date.month()));
  parts.day = static_cast<int>(static_cast<unsigned>(date.day()));
  // With the invented day, the weekdays before it are one off the calendar's, as Excel has them.
  constexpr std::int64_t kFridayOf1904 = 5;
  parts.weekday = static_cast<int>((date1904 ? day + kFridayOf1904 : day + 6) % 7);
  return parts.year <= kLastYear;
}

bool SerialOfIso(std::string_view text, bool date1904, double& serial) {
  double time = 0;
  const std::size_t mark = text.find('T');
  const std::string_view date = text.substr(0, mark);
  if (date.find('-') == std::string_view::npos) return TakeTime(text, serial);
  if (mark != std::string_view::npos && !TakeTime(text.substr(mark + 1), time)) return false;
  std::string_view rest = date;
  int year = 0;
  int month = 0;
  int day = 0;
  if (!TakeNumber(rest, year) || !TakeSign(rest, '-') || !TakeNumber(rest, month) ||
      !TakeSign(rest, '-') || !TakeNumber(rest, day) || !rest.empty() || year > kLastYear) {
    return false;
  }
  const year_month_day ymd{std::chrono::year(year),
                           std::chrono::month(static_cast<unsigned>(month)),
                           std::chrono::day(static_cast<unsigned>(day))};
  if (!ymd.ok()) return false;
  std::int64_t days = (sys_days(ymd) - Epoch(date1904)).count();
  if (!date1904 && days >= kInventedDay) ++days;
  serial = static_cast<double>(days) + time;
  return true;
}

}  // namespace quillmarch::host::workbook
